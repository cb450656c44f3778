#include "desktop/history/history_page.h"

#include <QCheckBox>
#include <QWheelEvent>

#include <gmock/gmock.h>

#include "desktop/history/history_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class HistoryPageTest : public HistoryFixture {
 protected:
  static std::vector<std::string> Items(const QComboBox& list) {
    std::vector<std::string> items;
    items.reserve(static_cast<std::size_t>(list.count()));
    for (int i = 0; i < list.count(); ++i) {
      items.push_back(list.itemText(i).toStdString());
    }
    return items;
  }
  std::vector<std::string> Names() { return Items(Find<QComboBox>(u"cboColName"_qs)); }
};

TEST_F(HistoryPageTest, TheListHasTheThirteenGroupsAndSelectsTheFirst) {
  ShowTab();
  auto& list = Find<QComboBox>(u"lstGroupBy"_qs);
  EXPECT_THAT(
      Items(list),
      ElementsAre("Transactions (all)", "Transactions (batched/fed)", "Transactions (by date)",
                  "Recipes (all)", "Recipe (by name...)", "Recipe (Ingredient Accum)",
                  "Ingredients (all)", "Ingredient (by name...)", "Pens Fed (all)",
                  "Pen Fed (by name...)", "Pen (Ingredient Accum)", "User (by transactions)",
                  "User (by batched/fed)"));
  EXPECT_EQ(list.currentIndex(), 0);
  EXPECT_FALSE(Visible(u"cboColName"_qs));
  EXPECT_FALSE(Visible(u"lblName"_qs));
}

TEST_F(HistoryPageTest, TheCaptionsOfItsControlsAreAsSpecified) {
  ShowTab();
  const auto caption = [this](const QString& name) {
    return Find<QCheckBox>(name).text().remove(u'&');
  };
  EXPECT_EQ(caption(u"chkExpandAll"_qs), u" Expand All"_qs);
  EXPECT_EQ(caption(u"chkUseHistoryNavigator"_qs), u"Navigator"_qs);
  EXPECT_EQ(caption(u"chkBatFitPage"_qs), u"Fit/Print All Columns on Page"_qs);
  EXPECT_EQ(LabelText(u"lblGroupBy"_qs), "Data Group");
  EXPECT_EQ(LabelText(u"lblName"_qs), "Name");
}

// Groups by name.

TEST_F(HistoryPageTest, AGroupByNameIsEmptyUntilAListedNameIsPicked) {
  ShowTab();
  ChooseGroup(9);
  EXPECT_THAT(Names(), ElementsAre("Select...", "A01", "A02"));
  EXPECT_EQ(Find<QComboBox>(u"cboColName"_qs).currentText(), u"Select..."_qs);
  EXPECT_TRUE(Visible(u"lblName"_qs));
  EXPECT_THAT(Lines(), IsEmpty());
  PickName(u"A02"_qs);
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:A02"));
  EXPECT_TRUE(Header().isVisible());
  PickName(u"Select..."_qs);
  EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(HistoryPageTest, AnotherNameBeginsWithoutACurrentRow) {
  ShowTab();
  ChooseGroup(9);
  PickName(u"A02"_qs);
  auto& grid = Find<HistoryTableView>(u"grdTRANS"_qs);
  grid.GoToRow(0);
  ASSERT_TRUE(grid.currentIndex().isValid());
  PickName(u"A01"_qs);
  EXPECT_FALSE(grid.currentIndex().isValid());
}

TEST_F(HistoryPageTest, AGroupByNameWithoutRecipeDatabaseIsRefusedAndTheGroupStays) {
  Show();
  OpenTransactions();
  ChooseGroup(8);
  const auto before = Lines();
  for (const auto& [group, title] :
       {std::pair{4, "No Recipe Names"}, {7, "No Ingredient Names"}, {9, "No Pen Names"}}) {
    operator_.boxes.clear();
    ChooseGroup(group);
    EXPECT_EQ(LastBox().title, title);
    EXPECT_EQ(LastBox().icon, Icon::kWarning);
    EXPECT_EQ(GroupText(), "Pens Fed (all)");
    EXPECT_EQ(Lines(), before);
    EXPECT_TRUE(Grid().isVisible());
    EXPECT_FALSE(Visible(u"cboColName"_qs));
  }
}

TEST_F(HistoryPageTest, ANameWithAnApostropheIsJustAName) {
  Alter(Transactions(), "UPDATE Transactions SET Recipe = 'O''NEIL' WHERE Recipe = 'HEIFER'");
  Alter(Recipes(), "UPDATE Recipe SET Name = 'O''NEIL', Description = 'x' WHERE ID = 2");
  ShowTab();
  ChooseGroup(4);
  PickName(u"O'NEIL"_qs);
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:O'NEIL"));
}

TEST_F(HistoryPageTest, ANameThatWasChangedSinceIsReachedByTheAllGroupAlone) {
  Alter(Recipes(), "UPDATE Recipe SET Name = 'CALVES' WHERE Name = 'HEIFER'");
  ShowTab();
  ChooseGroup(4);
  PickName(u"CALVES"_qs);
  EXPECT_THAT(Lines(), IsEmpty());
  ChooseGroup(3);
  EXPECT_THAT(Lines(), Contains("[1] Recipe:HEIFER"));
}

TEST_F(HistoryPageTest, ARecordWithoutDescriptionIsNotListed) {
  Alter(Recipes(), "UPDATE Pen SET Description = '' WHERE Name = 'A01'");
  ShowTab();
  ChooseGroup(9);
  EXPECT_THAT(Names(), ElementsAre("Select...", "A02"));
}

TEST_F(HistoryPageTest, TheGridIsHiddenAndTheBoxBlinksWhileNamesLoad) {
  ShowTab();
  std::vector<QString> texts;
  bool grid_seen = false;
  bool picker_on = false;
  std::function<void()> look = [&] {
    auto& box = Find<QLabel>(u"txtStandby"_qs);
    if (box.isVisible() && !box.text().isEmpty()) {
      texts.push_back(box.text());
    }
    grid_seen = grid_seen || Grid().isVisible();
    picker_on = picker_on || Find<QWidget>(u"cboColName"_qs).isEnabled();
    if (texts.size() < 3) {
      pump_.After(Milliseconds{0}, look);
    }
  };
  pump_.After(Milliseconds{1}, look);
  ChooseGroup(9);
  EXPECT_THAT(texts,
              ElementsAre(u"Standby... Loading"_qs, u"Standby..."_qs, u"Standby... Loading"_qs));
  EXPECT_FALSE(grid_seen);
  EXPECT_FALSE(picker_on);
  EXPECT_TRUE(Grid().isVisible());
  EXPECT_FALSE(Visible(u"txtStandby"_qs));
}

TEST_F(HistoryPageTest, EnteringTheTabHidesThePickerAndKeepsTheRows) {
  ShowTab();
  ChooseGroup(9);
  PickName(u"A02"_qs);
  GoToTab(kTabDataTransfer);
  GoToTab(kTabBatchedFed);
  EXPECT_FALSE(Visible(u"cboColName"_qs));
  EXPECT_FALSE(Visible(u"lblName"_qs));
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_EQ(GroupText(), "Pen Fed (by name...)");
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:A02"));
}

TEST_F(HistoryPageTest, NamesAreReadOncePerVisitToTheTab) {
  ShowTab();
  ChooseGroup(9);
  Alter(Recipes(), "UPDATE Pen SET Name = 'B07', Description = 'New' WHERE ID = 7");
  ChooseGroup(9);
  EXPECT_THAT(Names(), Not(Contains("B07")));
  GoToTab(kTabDataTransfer);
  GoToTab(kTabBatchedFed);
  ChooseGroup(9);
  EXPECT_THAT(Names(), Contains("B07"));
}

TEST_F(HistoryPageTest, ReselectingTheGroupAsksTheDatabaseAgain) {
  ShowTab();
  ChooseGroup(8);
  Alter(Transactions(), "UPDATE Transactions SET Pen = 'Z' WHERE Pen = 'A02'");
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:A01", "[1] Pen:A02"));
  ChooseGroup(8);
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:A01", "[1] Pen:Z"));
}

TEST_F(HistoryPageTest, NoKeyAndNoWheelInPassingChoosesAGroup) {
  ShowTab();
  auto& list = Find<QComboBox>(u"lstGroupBy"_qs);
  list.setFocus();
  QWheelEvent turn({5, 5}, list.mapToGlobal(QPointF{5, 5}), {}, {0, -120}, Qt::NoButton,
                   Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&list, &turn);
  EXPECT_EQ(list.currentIndex(), 0);
}

TEST_F(HistoryPageTest, TheBoxesAreBesideTheChoicesIfThereIsSpaceOtherwiseBelow) {
  ShowTab();
  ChooseGroup(9);
  const auto bottom = [this](const QString& name) {
    auto& control = Find<QWidget>(name);
    return control.mapTo(&Window(), control.rect().bottomRight());
  };
  const auto top = [this](const QString& name) {
    return Find<QWidget>(name).mapTo(&Window(), QPoint()).y();
  };
  for (const auto& [width, below] : {std::pair{1024, false}, {800, true}, {1024, false}}) {
    Window().resize(width, 600);
    RunEvents();
    EXPECT_EQ(top(u"chkExpandAll"_qs) > bottom(u"cboColName"_qs).y(), below) << width;
    EXPECT_GT(top(u"grdTRANS"_qs), bottom(u"chkExpandAll"_qs).y());
    EXPECT_LT(bottom(u"cboColName"_qs).x(), width);
    EXPECT_LT(bottom(u"chkBatFitPage"_qs).x(), width);
  }
}

// For the printed page.

TEST_F(HistoryPageTest, ReportsWhatIsShownAndWhetherItFitsThePage) {
  ShowTab();
  auto& page = Find<HistoryPage>(u"pageBatchedFed"_qs);
  EXPECT_FALSE(page.FitAllColumns());
  Click(u"chkBatFitPage"_qs);
  EXPECT_TRUE(page.FitAllColumns());
  EXPECT_EQ(page.View()->GroupIndex(), 0);
}

}  // namespace
}  // namespace vrx::testing
