#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QProgressBar>
#include <QSignalSpy>

#include <gmock/gmock.h>

#include "desktop/history/history_fixture.h"
#include "support/boxes.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class HistoryFindBar : public HistoryFixture {
 protected:
  QLineEdit& Field() { return Find<QLineEdit>(u"txtFind"_qs); }
  bool IsOpen() { return Visible(u"barFind"_qs); }
  std::string Count() { return LabelText(u"lblFindCount"_qs); }
  std::string Note() { return LabelText(u"lblFindNote"_qs); }
  std::string CurrentLine() { return Lines().at(static_cast<std::size_t>(Row())); }
  int Row() { return Grid().currentIndex().row(); }

  // Opens the bar from the menu, types and presses Enter.
  void Look(const QString& text) {
    Window().activateWindow();  // again after a list of choices
    Choose(u"mnuEditFind"_qs);
    QTest::keyClicks(&Field(), text);
    PressIn(Field(), Qt::Key_Return);
  }
  void PressIn(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(&widget, key, modifiers);
    RunEvents();
  }
  bool MayFind() { return Find<QAction>(u"mnuEditFind"_qs).isEnabled(); }
};

TEST_F(HistoryFindBar, OpensOnItsTabWithADatabaseOnly) {
  Show();
  RunEvents();
  EXPECT_FALSE(MayFind());
  ShowTab();
  EXPECT_TRUE(MayFind());
  EXPECT_FALSE(IsOpen());
  GoToTab(kTabExport);
  EXPECT_FALSE(MayFind());
  GoToTab(kTabBatchedFed);
  Choose(u"mnuEditFind"_qs);
  EXPECT_TRUE(IsOpen());
  EXPECT_TRUE(Field().hasFocus());
  Choose(u"mnuFileCloseTransactionDB"_qs);
  EXPECT_FALSE(MayFind());
}

TEST_F(HistoryFindBar, MarksTheCellThatHasTheText) {
  ShowTab();
  ChooseGroup(3);
  Look(u"hay"_qs);
  EXPECT_THAT(CurrentLine(), HasSubstr("|HAY|"));
  EXPECT_EQ(Grid().currentIndex().column(), HistoryColumnOfKey("Ingredient") - 1);
  EXPECT_TRUE(Grid().viewport()->rect().intersects(Grid().visualRect(Grid().currentIndex())));
  EXPECT_EQ(Count(), "1 of 1");
  EXPECT_TRUE(Field().hasFocus());
  EXPECT_FALSE(Visible(u"prgFind"_qs));
  EXPECT_FALSE(Visible(u"cmdFindCancel"_qs));
}

TEST_F(HistoryFindBar, FindsADifference) {
  constexpr int kFeedDifference = 115;
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  Find<QCheckBox>(u"chkDifferences"_qs).setChecked(true);
  const auto is_difference = [](const QString& text) {
    return text.startsWith(u'-') || text.startsWith(u'+');
  };
  QString shown;
  for (int row = 0; row < Grid().model()->rowCount() && !is_difference(shown); ++row) {
    shown = Grid().model()->index(row, kFeedDifference - 1).data().toString();
  }
  ASSERT_TRUE(is_difference(shown));
  Look(shown);
  EXPECT_EQ(Grid().currentIndex().data().toString(), shown);
  EXPECT_EQ(Grid().currentIndex().column(), kFeedDifference - 1);
}

TEST_F(HistoryFindBar, GoesOnWithEnterTheButtonsAndF3) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  Look(u"STEERS"_qs);
  ASSERT_EQ(Count(), "1 of 3");
  PressIn(Field(), Qt::Key_Return);
  EXPECT_EQ(Count(), "2 of 3");
  PressIn(Field(), Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(Count(), "1 of 3");
  Click(u"cmdFindNext"_qs);
  EXPECT_EQ(Count(), "2 of 3");
  Click(u"cmdFindPrevious"_qs);
  EXPECT_EQ(Count(), "1 of 3");
  Grid().setFocus();
  Press(Qt::Key_F3);
  EXPECT_EQ(Count(), "2 of 3");
  Press(Qt::Key_F3, Qt::ShiftModifier);
  Press(Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(Count(), "3 of 3");
  EXPECT_EQ(Note(), "The search went on at the bottom.");
  EXPECT_EQ(Grid().selectionModel()->selectedRows().size(), 1);  // Shift selects no more
}

TEST_F(HistoryFindBar, ClosesWithEscapeAndKeepsItsText) {
  ShowTab();
  Look(u"hay"_qs);
  PressIn(Field(), Qt::Key_Escape);
  EXPECT_FALSE(IsOpen());
  EXPECT_TRUE(Grid().hasFocus());
  Press(Qt::Key_F3);
  EXPECT_TRUE(IsOpen());
  EXPECT_EQ(Count(), "1 of 1");
  Grid().setFocus();
  Press(Qt::Key_Escape);
  EXPECT_FALSE(IsOpen());
  Choose(u"mnuEditFind"_qs);
  EXPECT_EQ(Field().selectedText(), u"hay"_qs);
  Click(u"cmdFindClose"_qs);
  EXPECT_FALSE(IsOpen());
}

TEST_F(HistoryFindBar, SaysThatNothingWasFoundAndGoesNowhere) {
  ShowTab();
  Look(u"oats"_qs);
  EXPECT_EQ(Note(), "Nothing was found.");
  EXPECT_EQ(Count(), "");
  EXPECT_EQ(Row(), -1);
}

TEST_F(HistoryFindBar, ADayGoesToItsGroup) {
  ShowTab();
  ChooseGroup(2);
  Look(u"2011-03-15"_qs);
  EXPECT_EQ(CurrentLine(), "[1] Date:15-Mar-11");
  EXPECT_THAT(Lines().at(static_cast<std::size_t>(Row()) + 1), StartsWith("[2] "));
}

// A search that takes its time.

class LongHistoryFindBar : public HistoryFindBar {
 protected:
  LongHistoryFindBar() {
    Alter(Transactions(),
          "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300000) "
          "INSERT INTO Transactions ([Transaction], Recipe, Type, Ingredient) "
          "SELECT i / 9, 'PADDING', 'BATCH', 'OATS' FROM n");
  }
};

TEST_F(LongHistoryFindBar, IsStoppedByTheButtonAndByClosingTheDatabase) {
  ShowTab();
  ChooseGroup(3);
  Look(u"zzz"_qs);
  // The slices of the test come only with its pump.
  EXPECT_THAT(Count(), ::testing::EndsWith("..."));
  QMetaObject::invokeMethod(&Find<QPushButton>(u"cmdFindCancel"_qs), "click");
  EXPECT_EQ(Note(), "The search was stopped.");
  Click(u"cmdFindNext"_qs);
  EXPECT_THAT(Count(), ::testing::EndsWith("..."));
  Choose(u"mnuFileCloseTransactionDB"_qs);
  RunEvents();
  EXPECT_FALSE(Find<QWidget>(u"barFind"_qs).isVisible());
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

// Typing in the list of groups.

class HistoryTypeAhead : public HistoryFixture {
 protected:
  // A key at a time on the clock of the keyboard, in milliseconds.
  void TypeAt(quint64 time, char character) {
    QKeyEvent press(QEvent::KeyPress, 0, {}, QString(QChar::fromLatin1(character)));
    press.setTimestamp(time);
    QApplication::sendEvent(&Grid(), &press);
  }
  std::string Current() {
    return Lines().at(static_cast<std::size_t>(Grid().currentIndex().row()));
  }
};

TEST_F(HistoryTypeAhead, GoesToTheFirstGroupThatBeginsSo) {
  ShowTab();
  ChooseGroup(3);
  Grid().setFocus();
  QTest::keyClicks(&Grid(), u"st"_qs);
  EXPECT_EQ(Current(), "[1] Recipe:STEERS");
}

TEST_F(HistoryTypeAhead, BeginsAnewAfterAPause) {
  ShowTab();
  ChooseGroup(8);
  const auto pause = static_cast<quint64>(QApplication::keyboardInputInterval());
  ClickRow(0);
  TypeAt(1000, 'a');
  TypeAt(1010, '0');
  TypeAt(1020, '2');
  EXPECT_EQ(Current(), "[1] Pen:A02");
  TypeAt(1021 + pause, 'a');
  EXPECT_EQ(Current(), "[1] Pen:A01");
  QTest::keyPress(&Grid(), Qt::Key_Shift);  // does not begin anew
  TypeAt(1025 + pause, 'x');
  EXPECT_EQ(Current(), "[1] Pen:A01");
}

TEST_F(HistoryTypeAhead, TakesTheSignsOfADateAndABlankIntoIt) {
  ShowTab();
  Alter(Transactions(), "UPDATE Transactions SET Pen = 'A 02' WHERE Pen = 'A02'");
  ChooseGroup(2);
  Grid().setFocus();
  QTest::keyClicks(&Grid(), u"15-m"_qs);
  EXPECT_EQ(Current(), "[1] Date:15-Mar-11");
  ChooseGroup(8);
  Grid().setFocus();
  QTest::keyClicks(&Grid(), u"a 0"_qs);
  EXPECT_EQ(Current(), "[1] Pen:A 02");
  EXPECT_EQ(Lines().size(), 2U);  // the blank has opened no group
}

// The clipboard.

class HistoryCopy : public HistoryFixture {
 protected:
  HistoryCopy() { QApplication::clipboard()->clear(); }
  static std::string Text() { return QApplication::clipboard()->text().toStdString(); }
  static qsizetype LineCount() { return QApplication::clipboard()->text().count(u'\n'); }
};

TEST_F(HistoryCopy, CtrlCTakesTheSelectedRowsInBothForms) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  Window().activateWindow();  // again after the list of choices
  Grid().setFocus();
  ClickRow(1);
  Press(Qt::Key_Down, Qt::ShiftModifier);
  Press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_THAT(Text(), StartsWith("Transaction\tRecipe\tFeed Wt\t"));
  EXPECT_THAT(Text(), HasSubstr("\n1\tSTEERS\t810.5\t800\t"));
  EXPECT_THAT(Text(), HasSubstr("\n2\tHEIFER\t495.25\t500\t"));
  EXPECT_EQ(LineCount(), 3);
  const QMimeData* const data = QApplication::clipboard()->mimeData();
  ASSERT_TRUE(data->hasHtml());
  EXPECT_THAT(data->html().toStdString(), HasSubstr("<td align=\"right\">810.5</td>"));
}

TEST_F(HistoryCopy, TheMenuTakesRowsWithShiftAndCtrlClicks) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  ClickRow(0);
  QTest::mouseClick(Grid().viewport(), Qt::LeftButton, Qt::ShiftModifier, RowPoint(2));
  QTest::mouseClick(Grid().viewport(), Qt::LeftButton, Qt::ControlModifier, RowPoint(5));
  Choose(u"mnuEditCopy"_qs);
  EXPECT_EQ(LineCount(), 5);  // the captions and four rows
  EXPECT_THAT(Text(), HasSubstr("\nPen:A01\n"));
}

TEST_F(HistoryCopy, AChangeOfTheRowsLeavesTheCurrentRowSelected) {
  ShowTab();
  ChooseGroup(3);
  Grid().setFocus();
  ClickRow(0);
  Press(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(Grid().selectionModel()->selectedRows().size(), 3);
  Press(Qt::Key_Right);
  EXPECT_EQ(Grid().selectionModel()->selectedRows().size(), 1);
  EXPECT_EQ(Grid().currentIndex().row(), 0);
}

TEST_F(HistoryCopy, TakesTheTextOfAFieldThatHasTheKeyboard) {
  ShowTab();
  auto& field = Find<QLineEdit>(u"txtPeriodFrom"_qs);
  field.setText(u"3/14/2011"_qs);
  field.setFocus();
  field.selectAll();
  EXPECT_EQ(Window().focusWidget(), &field);
  EXPECT_EQ(field.selectedText(), u"3/14/2011"_qs);
  EXPECT_TRUE(On(u"mnuEditCopy"_qs));
  Choose(u"mnuEditCopy"_qs);
  EXPECT_EQ(Text(), "3/14/2011");
}

TEST_F(HistoryCopy, RefusesMoreRowsThanTheClipboardTakes) {
  Alter(Transactions(),
        "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20000) "
        "INSERT INTO Transactions ([Transaction], Type) SELECT i, 'BATCH' FROM n");
  ShowTab();
  Grid().setFocus();
  Press(Qt::Key_A, Qt::ControlModifier);
  Press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_THAT(OnlyBox(operator_.boxes).text, StartsWith("20008 rows are selected"));
  EXPECT_EQ(Text(), "");
}

}  // namespace
}  // namespace vrx::testing
