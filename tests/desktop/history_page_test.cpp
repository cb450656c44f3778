#include "desktop/history_page.h"

#include <QCheckBox>
#include <QScrollBar>
#include <QWheelEvent>

#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>

#include "desktop/history_site.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

class HistoryPageTest : public HistorySite {
 protected:
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    auto& list = Find<QComboBox>(u"cboColName"_qs);
    for (int i = 0; i < list.count(); ++i) {
      names.push_back(list.itemText(i).toStdString());
    }
    return names;
  }
  std::string EmptyText() { return Grid().accessibleDescription().toStdString(); }
};

TEST_F(HistoryPageTest, TheListHoldsTheThirteenGroupsAndStandsOnTheFirst) {
  ShowTab();
  auto& list = Find<QComboBox>(u"lstGroupBy"_qs);
  std::vector<std::string> items;
  for (int i = 0; i < list.count(); ++i) {
    items.push_back(list.itemText(i).toStdString());
  }
  EXPECT_THAT(items, ElementsAre("Transactions (all)", "Transactions (batched/fed)",
                                 "Transactions (by date)", "Recipes (all)", "Recipe (by name...)",
                                 "Recipe (Ingredient Accum)", "Ingredients (all)",
                                 "Ingredient (by name...)", "Pens Fed (all)",
                                 "Pen Fed (by name...)", "Pen (Ingredient Accum)",
                                 "User (by transactions)", "User (by batched/fed)"));
  EXPECT_EQ(list.currentIndex(), 0);
  EXPECT_FALSE(Visible(u"cboColName"_qs));
  EXPECT_FALSE(Visible(u"lblName"_qs));
}

TEST_F(HistoryPageTest, TheCaptionsOfItsControlsAreTheToldOnes) {
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

// Groups that open and close, and the strip of headers.

TEST_F(HistoryPageTest, WithAllGroupsClosedThereIsNoHeaderStripUntilRecordsShow) {
  ShowTab();
  ChooseGroup(3);
  EXPECT_FALSE(Header().isVisible());
  ClickMark(2);
  EXPECT_FALSE(Header().isVisible());  // BATCH and FEED of STEERS, no record yet
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:", "[1] Recipe:HEIFER", "[1] Recipe:STEERS",
                                   "[2] BATCH", "[2] FEED", "=1: ||||||||"));
  ClickMark(3);
  EXPECT_TRUE(Header().isVisible());
  ClickMark(3);
  EXPECT_FALSE(Header().isVisible());
}

TEST_F(HistoryPageTest, TransactionsAllAlwaysHaveTheHeaderStrip) {
  ShowTab();
  EXPECT_TRUE(Header().isVisible());
  ExpandAll(true);
  ExpandAll(false);
  EXPECT_TRUE(Header().isVisible());
}

TEST_F(HistoryPageTest, AClickBesideTheMarkOnlySelectsTheGroup) {
  ShowTab();
  ChooseGroup(8);
  ClickRow(1);
  EXPECT_EQ(Grid().currentIndex().row(), 1);
  EXPECT_EQ(Lines().size(), 2U);
}

TEST_F(HistoryPageTest, ADoubleClickOpensAndClosesAGroup) {
  ShowTab();
  ChooseGroup(8);
  QTest::mouseDClick(Grid().viewport(), Qt::LeftButton, {}, RowPoint(0));
  EXPECT_EQ(Lines().size(), 5U);  // two records and their total
  QTest::mouseDClick(Grid().viewport(), Qt::LeftButton, {}, RowPoint(0));
  EXPECT_EQ(Lines().size(), 2U);
}

TEST_F(HistoryPageTest, KeysOpenAndCloseTheGroup) {
  ShowTab();
  ChooseGroup(8);
  Grid().setFocus();
  ClickRow(1);
  for (const auto& [open, close] : {std::pair<int, int>{Qt::Key_Right, Qt::Key_Left},
                                    {Qt::Key_Plus, Qt::Key_Minus},
                                    {Qt::Key_Space, Qt::Key_Space}}) {
    Press(open);
    EXPECT_THAT(Lines(), ElementsAre("[1] Pen:A01", "[1] Pen:A02", ::testing::_, ::testing::_,
                                     StartsWith("=1: Total:")));
    Press(close);
    EXPECT_EQ(Lines().size(), 2U);
  }
  Press(Qt::Key_Left);  // closed already
  EXPECT_EQ(Lines().size(), 2U);
  EXPECT_EQ(Grid().currentIndex().row(), 1);
}

TEST_F(HistoryPageTest, ExpandAllOpensEveryGroupAndHoldsForTheNextOne) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  EXPECT_EQ(Lines().size(), 8U);
  ChooseGroup(12);
  EXPECT_THAT(Lines(), Contains(StartsWith("3: ")));
  ExpandAll(false);
  EXPECT_THAT(Lines(), ElementsAre("[1] User ID:", "[1] User ID:2", "[1] User ID:10"));
}

TEST_F(HistoryPageTest, EveryChangeOfTheTabClosesAllGroups) {
  ShowTab();
  ChooseGroup(8);
  ClickMark(0);
  ASSERT_EQ(Lines().size(), 5U);
  GoToTab(kTabExport);
  GoToTab(kTabBatchedFed);
  EXPECT_EQ(Lines().size(), 2U);
}

TEST_F(HistoryPageTest, CtrlEndGoesToTheLastRowAndCtrlHomeBack) {
  ShowTab();
  ExpandAll(true);
  ChooseGroup(3);
  Grid().setFocus();
  ClickRow(0);
  const int column = Grid().currentIndex().column();
  Press(Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(Grid().currentIndex().row(), Grid().Model().rowCount() - 1);
  EXPECT_EQ(Grid().currentIndex().column(), column);
  Press(Qt::Key_Home, Qt::ControlModifier);
  EXPECT_EQ(Grid().currentIndex().row(), 0);
}

// Columns.

TEST_F(HistoryPageTest, AClickOnAHeaderSortsAndTheNextTurnsTheOrder) {
  ShowTab();
  ClickHeader(kTargetColumn);
  EXPECT_THAT(Lines().front(), HasSubstr("||BATCH|0||0||0"));
  EXPECT_TRUE(Header().isSortIndicatorShown());
  EXPECT_EQ(Header().sortIndicatorSection(), kTargetColumn - 1);
  EXPECT_EQ(Header().sortIndicatorOrder(), Qt::AscendingOrder);
  ClickHeader(kTargetColumn);
  EXPECT_THAT(Lines().front(), HasSubstr("|1000|"));
  EXPECT_EQ(Header().sortIndicatorOrder(), Qt::DescendingOrder);
  ChooseGroup(0);
  EXPECT_FALSE(Header().isSortIndicatorShown());
  EXPECT_THAT(Lines().front(), StartsWith("1: 1|STEERS|BATCH|998"));
}

TEST_F(HistoryPageTest, DatesSortAsDates) {
  Alter(Transactions(), "UPDATE Transactions SET Date = '2011-02-28' WHERE Pen = 'A02'");
  ShowTab();
  const int date = HistoryColumnOfKey("Date");
  ClickHeader(date);
  EXPECT_THAT(Lines()[1], HasSubstr("28-Feb-11"));  // behind the record without one
  EXPECT_THAT(Lines().back(), HasSubstr("15-Mar-11"));
}

TEST_F(HistoryPageTest, AColumnIsMovedWithTheMouse) {
  ShowTab();
  ASSERT_EQ(Captions()[2], "Type");
  QWidget* const strip = Header().viewport();
  const QPoint from = SectionPoint(HistoryColumnOfKey("Type"));
  const QPoint to = SectionPoint(HistoryColumnOfKey("Transaction")) - QPoint(20, 0);
  QTest::mousePress(strip, Qt::LeftButton, {}, from);
  QTest::mouseMove(strip, from - QPoint(30, 0));
  QTest::mouseMove(strip, to);
  QTest::mouseRelease(strip, Qt::LeftButton, {}, to);
  RunEvents();
  EXPECT_THAT(Captions(), ::testing::Contains("Transaction"));
  EXPECT_EQ(Captions().front(), "Type");
  EXPECT_THAT(Lines().front(), StartsWith("1: BATCH|1|STEERS|"));
}

TEST_F(HistoryPageTest, AWidthThatTheOperatorGaveStaysWithItsColumn) {
  ShowTab();
  const int column = HistoryColumnOfKey("Recipe");
  const int wider = Header().sectionSize(column - 1) + 60;
  Header().resizeSection(column - 1, wider);
  ChooseGroup(1);
  ChooseGroup(0);
  EXPECT_EQ(Header().sectionSize(column - 1), wider);
}

TEST_F(HistoryPageTest, IngredientColumnsBearTheNamesOfTheOpenRecipeDatabase) {
  ShowTab();
  EXPECT_THAT(Captions(), Contains("HAY"));
  Alter(Recipes(), "UPDATE Ingredient SET Name = 'Milo' WHERE ID = 1");
  GoToTab(kTabDataTransfer);
  GoToTab(kTabBatchedFed);
  EXPECT_THAT(Captions(), Contains("MILO"));
  EXPECT_THAT(Captions(), Not(Contains("CORN")));
}

TEST_F(HistoryPageTest, ASlotOfItsDefaultNameHasNoColumnThoughItsWeightsAreStored) {
  Alter(Recipes(), "UPDATE Ingredient SET Name = 'ING002', Description = 'Hay' WHERE ID = 2");
  Alter(Recipes(), "UPDATE Ingredient SET Name = 'SALT', Description = 'Salt' WHERE ID = 100");
  Alter(Transactions(), "UPDATE Transactions SET Ing100Wt = 7 WHERE Pen = 'A01'");
  ShowTab();
  EXPECT_EQ(Captions().back(), "SALT");
  EXPECT_THAT(Captions(), Not(Contains("ING002")));
  EXPECT_THAT(Captions(), Not(Contains("HAY")));
}

TEST_F(HistoryPageTest, WithoutRecipeDatabaseNoIngredientHasAColumn) {
  Show();
  OpenTransactions();
  EXPECT_EQ(Captions().back(), "Ing% Of Batch");
  OpenRecipes();
  GoToTab(kTabBatchedFed);
  EXPECT_EQ(Captions().back(), "HAY");
  Choose(u"mnuFileCloseRecipeDB"_qs);
  GoToTab(kTabBatchedFed);
  EXPECT_EQ(Captions().back(), "Ing% Of Batch");
}

// An operator of two databases need not leave the tab to see other names.
TEST_F(HistoryPageTest, AnotherRecipeDatabaseRelabelsTheColumnsAtOnce) {
  ShowTab();
  const SQLite::Database other = SmallRecipes(folder_, "OTHER.RDB");
  Alter(folder_ / "OTHER.RDB", "UPDATE Ingredient SET Name = 'OATS' WHERE ID = 1");
  const BoundDatabase bound =
      BindUserDatabase(folder_ / "OTHER.RDB", std::chrono::milliseconds{100});
  Window().Rebind(DatabaseKind::kRecipe, bound);
  EXPECT_THAT(Captions(), Contains("OATS"));
  Window().Rebind(DatabaseKind::kRecipe, Main().Databases().Bound(DatabaseKind::kRecipe));
  EXPECT_THAT(Captions(), Contains("CORN"));
}

// The navigator.

TEST_F(HistoryPageTest, TheNavigatorShowsWhileItsBoxIsTicked) {
  ShowTab();
  EXPECT_FALSE(Visible(u"navHistory"_qs));
  Click(u"chkUseHistoryNavigator"_qs);
  EXPECT_TRUE(Visible(u"navHistory"_qs));
  EXPECT_EQ(LabelText(u"lblHistoryNavigator"_qs), "Transaction:");
  EXPECT_EQ(LabelText(u"lblHistoryCount"_qs), "of 8");
  Click(u"chkUseHistoryNavigator"_qs);
  EXPECT_FALSE(Visible(u"navHistory"_qs));
}

TEST_F(HistoryPageTest, TheNavigatorMovesThroughTheRowsAndStopsAtBothEnds) {
  ShowTab();
  Click(u"chkUseHistoryNavigator"_qs);
  auto& number = Find<QLineEdit>(u"txtHistoryRow"_qs);
  Click(u"cmdHistoryNavigate(3)"_qs);
  EXPECT_EQ(Grid().currentIndex().row(), 7);
  EXPECT_EQ(number.text(), u"8"_qs);
  EXPECT_FALSE(Find<QWidget>(u"cmdHistoryNavigate(2)"_qs).isEnabled());
  Click(u"cmdHistoryNavigate(1)"_qs);
  EXPECT_EQ(number.text(), u"7"_qs);
  Click(u"cmdHistoryNavigate(0)"_qs);
  EXPECT_EQ(number.text(), u"1"_qs);
  EXPECT_FALSE(Find<QWidget>(u"cmdHistoryNavigate(1)"_qs).isEnabled());
  Click(u"cmdHistoryNavigate(2)"_qs);
  EXPECT_EQ(Grid().currentIndex().row(), 1);
}

TEST_F(HistoryPageTest, ATypedNumberGoesToThatRowOrTheNearest) {
  ShowTab();
  Click(u"chkUseHistoryNavigator"_qs);
  auto& number = Find<QLineEdit>(u"txtHistoryRow"_qs);
  for (const auto& [typed, row] : {std::pair{"5", 4}, {"900", 7}, {"0", 0}}) {
    number.setFocus();
    number.selectAll();
    QTest::keyClicks(&number, typed);
    QTest::keyClick(&number, Qt::Key_Return);
    EXPECT_EQ(Grid().currentIndex().row(), row) << typed;
  }
}

// Databases.

TEST_F(HistoryPageTest, AClosedGridIsEmptyAndSaysWhatWouldFillIt) {
  Show();
  EXPECT_EQ(Grid().Model().rowCount(), 0);
  EXPECT_EQ(EmptyText(), "Open a transaction database to see its records here.");
}

TEST_F(HistoryPageTest, AnEmptyGridSaysWhatWouldFillIt) {
  ShowTab();
  ChooseGroup(4);
  EXPECT_EQ(EmptyText(), "Pick the name of a recipe above to see its records.");
  GoToTab(kTabDataTransfer);
  GoToTab(kTabBatchedFed);
  EXPECT_EQ(EmptyText(), "Choose the data group again to pick the name of a recipe.");
  Alter(Transactions(), "DELETE FROM Transactions");
  for (const auto& [group, text] :
       {std::pair{0, "No transactions are stored yet. Import a transaction file and store it."},
        {5, "No batch records are stored yet. Import a transaction file and store it."},
        {8, "No feed records are stored yet. Import a transaction file and store it."}}) {
    ChooseGroup(group);
    EXPECT_EQ(EmptyText(), text);
  }
  ChooseGroup(9);
  PickName(u"A01"_qs);
  EXPECT_EQ(EmptyText(), "No records are stored for the pen A01.");
}

// A store ends with a save, which binds the database anew.
TEST_F(HistoryPageTest, WhatIsStoredWhileTheTabIsOnShowIsSeenAfterTheSave) {
  ShowTab();
  Alter(Transactions(),
        "INSERT INTO Transactions ([Transaction], Recipe, Type, Target, ActualBatch, ActualFeed) "
        "VALUES (4, 'NEW', 'BATCH', 1, 2, 0)");
  EXPECT_EQ(Lines().size(), 8U);
  Choose(u"mnuFileSaveTransactionDB"_qs);
  EXPECT_EQ(Lines().size(), 9U);
  EXPECT_THAT(Lines().back(), StartsWith("1: 4|NEW|BATCH|2"));
}

TEST_F(HistoryPageTest, AnotherTransactionDatabaseShowsTheChosenGroup) {
  ShowTab();
  ChooseGroup(8);
  {
    SQLite::Database other = SmallHistory(folder_, "OTHER.TDB");
    other.exec("UPDATE Transactions SET Pen = 'Z' WHERE Pen IS NOT NULL");
  }
  MakeUsers(folder_ / "OTHER.TDB", kUserTransDb);
  chooser_.Choose(folder_ / "OTHER.TDB");
  Choose(u"mnuFileOpenTransactionDB"_qs);
  EXPECT_EQ(GroupText(), "Pens Fed (all)");
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:Z"));
}

TEST_F(HistoryPageTest, AnotherDatabaseOpensItsGroupsWhileAllAreExpanded) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  Choose(u"mnuFileSaveTransactionDB"_qs);
  EXPECT_EQ(Lines().size(), 8U);
  EXPECT_TRUE(Header().isVisible());
}

TEST_F(HistoryPageTest, NoStatementStaysOpenBetweenEvents) {
  ShowTab();
  for (int group = 0; group < kDataGroupCount; ++group) {
    ChooseGroup(group);
    ExpandAll(group % 2 == 0);
    RunEvents();
    SQLite::Database other = OpenDatabase(Transactions(), Access::kWrite);
    EXPECT_NO_THROW(other.exec("BEGIN EXCLUSIVE; ROLLBACK")) << group;
  }
}

TEST_F(HistoryPageTest, TheEndOfTheProgramLetsGoOfBothDatabases) {
  ShowTab();
  ChooseGroup(3);
  Main().ReleaseDataControls();
  EXPECT_EQ(Grid().Model().rowCount(), 0);
  ExpandAll(true);  // finds nothing to do
  EXPECT_EQ(Grid().Model().rowCount(), 0);
  SQLite::Database other = OpenDatabase(Transactions(), Access::kWrite);
  EXPECT_NO_THROW(other.exec("PRAGMA locking_mode=EXCLUSIVE; BEGIN EXCLUSIVE; COMMIT"));
}

TEST_F(HistoryPageTest, AGroupThatCannotBeReadIsToldAndTheOldOneStays) {
  ShowTab();
  ChooseGroup(8);
  const auto before = Lines();
  Alter(Transactions(), "ALTER TABLE Transactions RENAME TO Elsewhere");
  ChooseGroup(3);
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(LastBox().text, "There is an invalid table in the specified database.");
  EXPECT_EQ(GroupText(), "Pens Fed (all)");
  Alter(Transactions(), "ALTER TABLE Elsewhere RENAME TO Transactions");
  EXPECT_EQ(Lines(), before);
}

TEST_F(HistoryPageTest, ARowThatCannotBeReadIsToldOnceAndBlank) {
  ShowTab();
  Alter(Transactions(), "ALTER TABLE Transactions RENAME TO Elsewhere");
  ClickHeader(kTargetColumn);  // forgets what was read
  Grid().viewport()->repaint();
  RunEvents();
  EXPECT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(LastBox().icon, Icon::kCritical);
  EXPECT_EQ(Cells(0), std::string(Captions().size() - 1, '|'));
}

// For the printed page.

TEST_F(HistoryPageTest, TellsTheVisibleColumnsWithTheirWidths) {
  ShowTab();
  auto& page = Find<HistoryPage>(u"pageBatchedFed"_qs);
  Header().resizeSection(HistoryColumnOfKey("Recipe") - 1, 123);
  const std::vector<ShownColumn> columns = page.Columns();
  EXPECT_EQ(columns.size(), Captions().size());
  EXPECT_EQ(columns[1].column, HistoryColumnOfKey("Recipe"));
  EXPECT_EQ(columns[1].width, 123);
  EXPECT_FALSE(page.FitAllColumns());
  Click(u"chkBatFitPage"_qs);
  EXPECT_TRUE(page.FitAllColumns());
  EXPECT_EQ(page.View()->GroupIndex(), 0);
}

}  // namespace
}  // namespace vrx::testing
