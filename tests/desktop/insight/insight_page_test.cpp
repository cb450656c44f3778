#include "desktop/insight/insight_page.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextCursor>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include <gmock/gmock.h>

#include "base/files.h"
#include "desktop/history/history_fixture.h"
#include "support/boxes.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

// The small history on the tab Insight.
class InsightPageTest : public HistoryFixture {
 protected:
  void ShowInsight() {
    ShowTab();
    GoToTab(kTabInsight);
    ASSERT_TRUE(WaitForRows());
  }
  bool WaitForRows() {
    return Until([this] { return Table().model()->rowCount() > 0; });
  }
  bool WaitForFirst(const QString& text) {
    return Until([&] { return Cell(0, 0) == text; });
  }
  void Ask(InsightTopic topic) {
    Find<QListWidget>(u"lstInsight"_qs).setCurrentRow(static_cast<int>(topic));
  }
  InsightTable& Table() { return Find<InsightTable>(u"grdInsight"_qs); }
  PictureView& Drawn() { return Find<PictureView>(u"picInsight"_qs); }
  QString Cell(int row, int column) {
    return Table().model()->index(row, column).data().toString();
  }
  QString Heading(int column) {
    return Table()
        .model()
        ->headerData(column, Qt::Horizontal, Qt::DisplayRole)
        .toString()
        .simplified();
  }
  // Whether the heading is the first line that is seen, or seen at all at the end of the chapter.
  static bool BeginsWith(QTextBrowser& manual, std::string_view heading) {
    const QScrollBar& bar = *manual.verticalScrollBar();
    const int height = bar.value() == bar.maximum() ? manual.viewport()->height()
                                                    : 2 * manual.fontMetrics().height();
    for (int y = 0; y < height; ++y) {
      if (manual.cursorForPosition({4, y}).block().text().toStdString() == heading) {
        return true;
      }
    }
    return false;
  }
  std::string Standby() { return LabelText(u"lblInsightStandby"_qs); }
};

TEST_F(InsightPageTest, ShowsTheFiguresWithUnitsAndTheTotalBelow) {
  ShowInsight();
  EXPECT_EQ(Cell(0, 0), u"(none)"_qs);
  EXPECT_EQ(Cell(1, 0), u"CORN"_qs);
  EXPECT_EQ(Cell(3, 0), u"Total"_qs);
  EXPECT_EQ(Heading(0), u"Ingredient"_qs);
  EXPECT_EQ(Heading(6), u"Target (LB)"_qs);
  EXPECT_EQ(Cell(1, 6), u"1500"_qs);
  EXPECT_EQ(Table().model()->index(1, 6).data(Qt::TextAlignmentRole).value<Qt::Alignment>(),
            Qt::AlignVCenter | Qt::AlignRight);
  EXPECT_FALSE(Drawn().Shown().plot.isEmpty());
  EXPECT_THAT(LabelText(u"lblInsightPictureHow"_qs), StartsWith("Each dot is a load"));
  EXPECT_THAT(LabelText(u"lblInsightNotes"_qs), HasSubstr("M. C. Barry"));
}

TEST_F(InsightPageTest, ALongCaptionTakesTwoLinesAndIsReadAndCopiedAsOne) {
  ShowInsight();
  const QAbstractItemModel& model = *Table().model();
  const auto caption = [&](int column, int role) {
    return model.headerData(column, Qt::Horizontal, role).toString();
  };
  EXPECT_EQ(caption(1, Qt::DisplayRole), u"Loads"_qs);
  EXPECT_EQ(caption(3, Qt::DisplayRole), u"Not loaded,\ntarget (LB)"_qs);
  EXPECT_EQ(caption(3, Qt::AccessibleTextRole), u"Not loaded, target (LB)"_qs);
  Table().selectRow(1);
  Table().copy();
  EXPECT_THAT(QGuiApplication::clipboard()->text().toStdString(),
              HasSubstr("\tNot loaded, target (LB)\t"));
}

TEST_F(InsightPageTest, DeliveriesAreCalledDeliveries) {
  ShowInsight();
  Ask(InsightTopic::kDelivery);
  ASSERT_TRUE(Until([this] { return Heading(1) == u"Deliveries"_qs; }));
  EXPECT_EQ(Heading(2), u"Not delivered"_qs);
  EXPECT_EQ(Heading(3), u"Not delivered, target (LB)"_qs);
}

TEST_F(InsightPageTest, DaysReadAsOnBatchedFed) {
  ShowInsight();
  ChooseItem(u"cboInsightTable"_qs, 4);
  EXPECT_TRUE(Until([this] { return Cell(1, 0) == u"14-Mar-11"_qs; }));
  Ask(InsightTopic::kDelivered);
  EXPECT_TRUE(Until([this] { return Cell(0, 1) == u"15-Mar-11"_qs; }));
}

TEST_F(InsightPageTest, CompletenessSaysWhereThereIsNothing) {
  ShowInsight();
  Ask(InsightTopic::kCompleteness);
  ASSERT_TRUE(WaitForFirst(u"From"_qs));
  EXPECT_EQ(Cell(0, 1), u"first record"_qs);
  EXPECT_EQ(Cell(1, 1), u"last record"_qs);
  EXPECT_EQ(
      Table().model()->headerData(1, Qt::Horizontal, Qt::TextAlignmentRole).value<Qt::Alignment>(),
      Qt::AlignVCenter | Qt::AlignLeft);
}

TEST_F(InsightPageTest, EveryQuestionShowsAnAnswerOrWhatItNeeds) {
  ShowInsight();
  for (int topic = 0; topic < kInsightTopics; ++topic) {
    Ask(static_cast<InsightTopic>(topic));
    const bool needs_name = topic == static_cast<int>(InsightTopic::kTrace) ||
                            topic == static_cast<int>(InsightTopic::kHolding);
    const InsightPresenter& presenter = Find<InsightPage>(u"pageInsight"_qs).Presenter();
    EXPECT_TRUE(needs_name || Until([&] { return presenter.IsAnswered(); })) << topic;
    EXPECT_EQ(Standby() == "Choose an ingredient above.", needs_name) << topic;
    EXPECT_FALSE(LabelText(u"lblInsightQuestion"_qs).empty());
  }
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(InsightPageTest, HoldingAsksForAnIngredientAndDays) {
  ShowInsight();
  Ask(InsightTopic::kHolding);
  EXPECT_EQ(Standby(), "Choose an ingredient above.");
  EXPECT_TRUE(Visible(u"txtInsightDays"_qs));
  EXPECT_FALSE(Visible(u"barInsightPeriod"_qs));
  EXPECT_FALSE(Visible(u"cboInsightRecipe"_qs));
  EXPECT_TRUE(Until([this] { return Find<QComboBox>(u"cboInsightIngredient"_qs).count() == 3; }));
  ChooseItem(u"cboInsightIngredient"_qs, 2);
  EXPECT_TRUE(WaitForFirst(u"A01"_qs));
  EXPECT_TRUE(Until([this] { return Cell(0, 1) == u"15-Mar-11 14:05"_qs; }))
      << Cell(0, 1).toStdString();
  auto& days = Find<QLineEdit>(u"txtInsightDays"_qs);
  Window().activateWindow();  // again after the list
  RunEvents();
  days.setFocus();
  days.selectAll();
  QTest::keyClicks(&days, u"0"_qs);
  QTest::keyClick(&days, Qt::Key_Tab);
  RunEvents();
  EXPECT_EQ(days.text(), u"0"_qs);
  EXPECT_FALSE(days.hasFocus());
  EXPECT_EQ(Standby(), "The days must be a whole number from 1 to 9999.");
}

TEST_F(InsightPageTest, APeriodChoosesTheRecords) {
  ShowInsight();
  auto& from = Find<QLineEdit>(u"txtInsightPeriodFrom"_qs);
  from.setFocus();
  from.setText(u"3/15/2011"_qs);
  QTest::keyClick(&from, Qt::Key_Tab);
  EXPECT_TRUE(Until([this] { return Cell(0, 0) == u"CORN"_qs; }));
  from.setFocus();
  from.setText(u"x"_qs);
  QTest::keyClick(&from, Qt::Key_Tab);
  EXPECT_THAT(LabelText(u"lblInsightPeriodNote"_qs), HasSubstr("is not a day"));
}

TEST_F(InsightPageTest, ARowLeadsToItsRecordsAndBack) {
  ShowInsight();
  Table().setFocus();
  Table().selectRow(1);
  QTest::keyClick(&Table(), Qt::Key_Return);
  RunEvents();
  EXPECT_EQ(Tabs().currentIndex(), kTabBatchedFed);
  EXPECT_EQ(GroupText(), "Ingredients (all)");
  EXPECT_THAT(Lines()[static_cast<std::size_t>(Grid().currentIndex().row())], HasSubstr("CORN"));
  EXPECT_TRUE(Visible(u"cmdBackToInsight"_qs));
  QTest::keyClick(&Grid(), Qt::Key_Left, Qt::AltModifier);
  RunEvents();
  EXPECT_EQ(Tabs().currentIndex(), kTabInsight);
  EXPECT_EQ(Table().CurrentRow(), 1);
  EXPECT_TRUE(Table().hasFocus());
  GoToTab(kTabBatchedFed);
  EXPECT_FALSE(Visible(u"cmdBackToInsight"_qs));
}

TEST_F(InsightPageTest, TheTotalLeadsNowhere) {
  ShowInsight();
  Table().selectRow(3);
  EXPECT_FALSE(Find<QPushButton>(u"cmdInsightRecords"_qs).isEnabled());
  Table().selectRow(2);
  EXPECT_TRUE(Find<QPushButton>(u"cmdInsightRecords"_qs).isEnabled());
}

TEST_F(InsightPageTest, AClickOnAMarkLeadsToItsBatch) {
  ShowInsight();
  ASSERT_FALSE(Drawn().Shown().hits.empty());
  QTest::mouseClick(Drawn().viewport(), Qt::LeftButton, {},
                    Drawn().Shown().hits.front().area.center().toPoint());
  RunEvents();
  EXPECT_EQ(Tabs().currentIndex(), kTabBatchedFed);
  EXPECT_EQ(GroupText(), "Transactions (batched/fed)");
  EXPECT_THAT(Lines()[static_cast<std::size_t>(Grid().currentIndex().row())], HasSubstr("Trans:1"));
}

TEST_F(InsightPageTest, SavesThePictureInTheFormatOfTheName) {
  ShowInsight();
  for (const auto& [name, begins] :
       {std::pair("ONE.SVG", "<svg"), std::pair("ONE.PNG", "\x89PNG")}) {
    chooser_.Choose(folder_ / name);
    Click(u"cmdInsightSave"_qs);
    EXPECT_THAT(ReadFileBytes(folder_ / name, 10'000'000), HasSubstr(begins)) << name;
  }
  EXPECT_THAT(ReadFileBytes(folder_ / "ONE.SVG", 10'000'000), HasSubstr("SMALL.TDB, all records"));
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(InsightPageTest, APictureReplacesNoDatabaseAndReportsAFolderThatIsGone) {
  ShowInsight();
  const std::string before = ReadFileBytes(Transactions(), 10'000'000);
  chooser_.Choose(Transactions());
  Click(u"cmdInsightSave"_qs);
  EXPECT_THAT(OnlyBox(operator_.boxes), IsBox(Icon::kWarning, "Save Picture", ::testing::_));
  EXPECT_EQ(ReadFileBytes(Transactions(), 10'000'000), before);
  operator_.boxes.clear();
  chooser_.Choose(folder_ / "GONE" / "ONE.SVG");
  Click(u"cmdInsightSave"_qs);
  EXPECT_THAT(OnlyBox(operator_.boxes), IsBox(Icon::kWarning, "Save Picture", HasSubstr("GONE")));
}

TEST_F(InsightPageTest, CopiesThePictureAndTheSelectedRows) {
  ShowInsight();
  Click(u"cmdInsightCopy"_qs);
  const QMimeData* const copied = QGuiApplication::clipboard()->mimeData();
  EXPECT_TRUE(copied->hasImage());
  EXPECT_TRUE(copied->data(u"image/svg+xml"_qs).contains("<svg"));
  Table().setFocus();
  Table().selectRow(1);
  Choose(u"mnuEditCopy"_qs);
  EXPECT_THAT(QGuiApplication::clipboard()->text().toStdString(),
              ::testing::AllOf(StartsWith("Ingredient\t"), HasSubstr("\nCORN\t")));
}

TEST_F(InsightPageTest, TheFiguresAreThoseOfTheTablesRoundedOnce) {
  ShowInsight();
  SQLite::Database database = OpenDatabase(Transactions(), Access::kRead);
  const AccuracyQuestion question{};
  const AnswerTable expected = TableOf(ReadAccuracy(database, question), question);
  for (std::size_t row = 0; row < expected.rows.size(); ++row) {
    for (std::size_t column = 0; column < expected.columns.size(); ++column) {
      EXPECT_EQ(Cell(static_cast<int>(row), static_cast<int>(column)).toStdString(),
                ShownText(expected.columns[column], expected.rows[row][column]));
    }
  }
}

TEST_F(InsightPageTest, FollowsTheDatabaseAndForgetsAClosedOne) {
  ShowInsight();
  Alter(Transactions(), "UPDATE Transactions SET Ingredient = 'BARLEY' WHERE Ingredient = 'CORN'");
  Choose(u"mnuViewRefresh"_qs);
  EXPECT_TRUE(Until([this] { return Cell(1, 0) == u"BARLEY"_qs; }));
  Choose(u"mnuFileCloseTransactionDB"_qs);
  EXPECT_EQ(Table().model()->rowCount(), 0);
}

TEST_F(InsightPageTest, ThePictureFollowsThePenOfTheRow) {
  ShowInsight();
  Ask(InsightTopic::kDelivered);
  ASSERT_TRUE(WaitForFirst(u"A01"_qs));
  EXPECT_THAT(Drawn().Shown().title.toStdString(), HasSubstr("A01"));
  Table().selectRow(1);
  EXPECT_THAT(Drawn().Shown().title.toStdString(), HasSubstr("A02"));
}

TEST_F(InsightPageTest, WhatStandsBelowLeadsToTheManual) {
  ShowInsight();
  QSignalSpy asked(&Find<InsightPage>(u"pageInsight"_qs), &InsightPage::ManualChosen);
  auto& how = Find<QLabel>(u"lblInsightHow"_qs);
  EXPECT_THAT(how.text().toStdString(), HasSubstr("<a href=\"accuracy-of-loading\">"));
  Q_EMIT how.linkActivated(u"accuracy-of-loading"_qs);
  EXPECT_EQ(asked.size(), 1);
}

// The manual as it is built, opened at the section of each question.
TEST_F(InsightPageTest, TheManualOpensAtTheSectionOfTheQuestion) {
  std::filesystem::create_directory(program_ / "manual");
  std::filesystem::copy_file(std::filesystem::path(VRX_BIN_DIR) / "manual/16-insight.html",
                             program_ / "manual/16-insight.html");
  ShowInsight();
  for (int topic = 0; topic < kInsightTopics; ++topic) {
    const InsightTopicRow& row = RowOf(static_cast<InsightTopic>(topic));
    Ask(static_cast<InsightTopic>(topic));
    auto& how = Find<QLabel>(u"lblInsightHow"_qs);
    ASSERT_TRUE(
        Until([&] { return how.text().toStdString().find(row.section) != std::string::npos; }));
    Window().activateWindow();
    RunEvents();
    how.setFocus();
    QTest::keyClick(&how, Qt::Key_Return);
    RunEvents();
    auto& manual = Find<QTextBrowser>(u"txtManual"_qs);
    EXPECT_TRUE(manual.isVisible());
    EXPECT_EQ(manual.source().fragment().toStdString(), row.section);
    EXPECT_TRUE(BeginsWith(manual, row.title)) << row.title;
    manual.window()->close();
    RunEvents();
  }
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(InsightPageTest, TheUnitIsRelabelledWhileAQuestionIsRead) {
  Alter(Transactions(),
        "WITH RECURSIVE Copy(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM Copy WHERE n < 50000) "
        "INSERT INTO Transactions ([Transaction], Recipe, Type, Date, Ingredient, Target, "
        "ActualBatch) SELECT n + 1000, 'STEERS', 'BATCH', '2011-03-14', 'CORN', 100, 99 FROM Copy");
  ShowTab();
  settings_.SetSystemUnits("KG");
  auto& presenter = Find<InsightPage>(u"pageInsight"_qs).Presenter();
  bool was_read = false;
  // The operator thinks before the answer.
  operator_.on_message = [&](const MessageBox& box) {
    if (box.title == "Weight Units") {
      was_read = Until([&] { return presenter.State().percent > 0; });
    }
  };
  operator_.answers = {Answer::kNo, Answer::kYes};  // of the recipes, of the transactions
  GoToTab(kTabInsight);
  ASSERT_TRUE(WaitForRows());
  EXPECT_TRUE(was_read);
  EXPECT_THAT(operator_.boxes, SizeIs(2));
  EXPECT_EQ(Heading(6), u"Target (KG)"_qs);
}

}  // namespace
}  // namespace vrx::testing
