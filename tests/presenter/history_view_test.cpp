#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "presenter/history.h"
#include "support/small_history.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

// Inspects the presenter after every notification of a change.
class WatchingScreen : public HistoryView {
 public:
  void HistoryChanged(HistoryPart part) override {
    if (on_change) {
      on_change(part);
    }
  }
  std::function<void(HistoryPart)> on_change;
};

class HistoryViewTest : public ::testing::Test, protected TestServices {
 protected:
  HistoryViewTest() {
    view.SetRecipeDatabase(&recipes);
    view.TabEntered();
    view.SelectGroup(0);
  }

  std::vector<std::string> Lines() { return ShownLines(view.Grid()); }
  void PickName(const std::string& name) {
    const auto& items = view.Picker().items;
    const auto place = std::find(items.begin(), items.end(), name);
    ASSERT_NE(place, items.end());
    view.PickName(static_cast<int>(place - items.begin()));
  }

  TempFolder folder;
  SQLite::Database transactions = SmallHistory(folder);
  SQLite::Database recipes = SmallRecipes(folder);
  std::optional<SQLite::Database> other;
  WatchingScreen screen;
  HistoryPresenter view{transactions, services, screen};
};

TEST_F(HistoryViewTest, TheTextOfTheSelectedItemIsTheCurrentDataGroup) {
  EXPECT_EQ(view.CurrentDataGroupText(), "Transactions (all)");
  view.SelectGroup(11);
  EXPECT_EQ(view.CurrentDataGroupText(), "User (by transactions)");
  EXPECT_EQ(view.GroupIndex(), 11);
}

TEST_F(HistoryViewTest, AnIndexThatIsNoGroupDoesNothing) {
  view.SelectGroup(3);
  view.SelectGroup(13);
  view.SelectGroup(-1);
  EXPECT_EQ(view.GroupIndex(), 3);
}

TEST_F(HistoryViewTest, TheGridIsHiddenThroughTheWholeChange) {
  std::vector<bool> visible;
  screen.on_change = [&](HistoryPart part) {
    if (part != HistoryPart::kGrid) {
      visible.push_back(view.GridVisible());
    }
  };
  view.SelectGroup(4);
  EXPECT_THAT(visible, Not(IsEmpty()));
  EXPECT_THAT(visible, Each(false));
  EXPECT_TRUE(view.GridVisible());
}

TEST_F(HistoryViewTest, GetNamedGroupColumnIsForTheThreeGroupsByName) {
  std::vector<std::string> columns;
  for (int group = 0; group < kDataGroupCount; ++group) {
    view.SelectGroup(group);
    columns.emplace_back(view.GetNamedGroupColumn());
  }
  EXPECT_THAT(columns,
              ElementsAre("", "", "", "", "Recipe", "", "", "Ingredient", "", "Pen", "", "", ""));
}

TEST_F(HistoryViewTest, AGroupByNameNeedsAnOpenRecipeDatabase) {
  struct Case {
    int group;
    std::string title;
    std::string names;
  };
  view.SetRecipeDatabase(nullptr);
  view.SelectGroup(8);
  const auto before = Lines();
  for (const auto& [group, title, names] :
       {Case{4, "No Recipe Names", "recipe"}, Case{7, "No Ingredient Names", "ingredient"},
        Case{9, "No Pen Names", "pen"}}) {
    op.boxes.clear();
    view.SelectGroup(group);
    ASSERT_EQ(op.boxes.size(), 1U);
    EXPECT_EQ(op.boxes[0].title, title);
    EXPECT_EQ(op.boxes[0].text, "You must first open a Recipe database so that all " + names +
                                    " names can be listed.");
    EXPECT_EQ(op.boxes[0].icon, Icon::kWarning);
    EXPECT_EQ(op.boxes[0].buttons, Buttons::kOk);
    EXPECT_EQ(view.GroupIndex(), 8);
    EXPECT_EQ(view.CurrentDataGroupText(), "Pens Fed (all)");
    EXPECT_EQ(view.Grid().Group().index, 8);
    EXPECT_EQ(Lines(), before);
    EXPECT_TRUE(view.GridVisible());
    EXPECT_FALSE(view.Picker().visible);
  }
}

TEST_F(HistoryViewTest, AGroupByNameStartsEmptyWithSelectInTheCombo) {
  for (const int group : {4, 7, 9}) {
    view.SelectGroup(group);
    EXPECT_TRUE(view.Picker().visible);
    EXPECT_TRUE(view.Picker().enabled);
    EXPECT_EQ(view.Picker().Text(), "Select...");
    EXPECT_EQ(view.Picker().index, 0);
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_FALSE(view.Grid().ColumnHeaders());
  }
}

TEST_F(HistoryViewTest, OnlyAPickOfAListedNameFillsTheGrid) {
  view.SelectGroup(9);
  PickName("A02");
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:A02"));
  EXPECT_TRUE(view.Grid().ColumnHeaders());
  view.PickName(0);
  EXPECT_THAT(Lines(), IsEmpty());
  EXPECT_EQ(view.Picker().Text(), "Select...");
  EXPECT_TRUE(view.Grid().ColumnHeaders());
}

TEST_F(HistoryViewTest, APickedNameIsOpenedWhileAllAreExpanded) {
  view.SetExpandAll(true);
  view.SelectGroup(7);
  PickName("CORN");
  EXPECT_THAT(Lines(),
              ElementsAre("[1] Ingred:  CORN", "2: STEERS|1000|998|2|08:30 AM|14-Mar-11",
                          "2: HEIFER|500|500||09:00 AM|15-Mar-11", "=1: Total:|1500|1498|||"));
}

TEST_F(HistoryViewTest, ThePickerOffersTheNamesOfRecordsWithADescription) {
  view.SelectGroup(4);
  EXPECT_THAT(view.Picker().items, ElementsAre("Select...", "HEIFER", "STEERS"));
  view.SelectGroup(7);
  EXPECT_THAT(view.Picker().items, ElementsAre("Select...", "CORN", "hAY"));
  view.SelectGroup(9);
  EXPECT_THAT(view.Picker().items, ElementsAre("Select...", "A01", "A02"));  // not PEN003
}

TEST_F(HistoryViewTest, ARecordWithoutDescriptionIsNotListedThoughTransactionsNameIt) {
  WritePen(recipes, {.id = 1, .name = "A01"});
  view.SelectGroup(9);
  EXPECT_THAT(view.Picker().items, ElementsAre("Select...", "A02"));
}

TEST_F(HistoryViewTest, ANameWithAnApostropheIsPickedLikeAnyOther) {
  transactions.exec("UPDATE Transactions SET Recipe = 'O''NEIL' WHERE Recipe = 'HEIFER'");
  WriteRecipe(recipes, {.id = 2, .name = "O'NEIL", .description = "x"});
  view.SelectGroup(4);
  PickName("O'NEIL");
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:O'NEIL"));
}

TEST_F(HistoryViewTest, NamesAreReadOncePerVisitToTheTab) {
  view.SelectGroup(9);
  WritePen(recipes, {.id = 7, .name = "B07", .description = "New"});
  view.SelectGroup(3);
  view.SelectGroup(9);
  EXPECT_THAT(view.Picker().items, Not(Contains("B07")));
  view.TabEntered();
  view.SelectGroup(9);
  EXPECT_THAT(view.Picker().items, Contains("B07"));
}

TEST_F(HistoryViewTest, EachKindOfNamesIsReadOnItsOwn) {
  view.SelectGroup(9);
  WriteRecipe(recipes, {.id = 7, .name = "CALVES", .description = "New"});
  view.SelectGroup(4);
  EXPECT_THAT(view.Picker().items, Contains("CALVES"));
}

TEST_F(HistoryViewTest, TheStandbyBoxBlinksItsSecondWordWhileNamesLoad) {
  std::vector<std::string> texts;
  screen.on_change = [&](HistoryPart part) {
    if (part == HistoryPart::kNamePicker &&
        (texts.empty() || texts.back() != view.Picker().standby)) {
      texts.push_back(view.Picker().standby);
    }
  };
  view.SelectGroup(4);
  std::vector<std::string> expected{""};
  for (int change = 0; change <= 10; ++change) {  // at first and at each tenth of 100 records
    expected.emplace_back(change % 2 == 0 ? "Standby... Loading" : "Standby...");
  }
  expected.emplace_back("");
  EXPECT_EQ(texts, expected);

  texts.clear();
  view.SelectGroup(4);  // nothing is read anew
  EXPECT_THAT(texts, ElementsAre(""));
}

TEST_F(HistoryViewTest, ThePickerIsDisabledAndEmptyWhileNamesLoad) {
  view.SelectGroup(7);
  bool seen = false;
  screen.on_change = [&](HistoryPart /*part*/) {
    if (!view.Picker().standby.empty()) {
      seen = true;
      EXPECT_FALSE(view.Picker().enabled);
      EXPECT_TRUE(view.Picker().visible);
      EXPECT_EQ(view.Picker().Text(), "");
    }
  };
  view.SelectGroup(4);
  EXPECT_TRUE(seen);
}

TEST_F(HistoryViewTest, LoadingYieldsToOtherEventsAfterEachChangeOfTheBox) {
  pump.pumps = 0;
  view.SelectGroup(9);
  EXPECT_EQ(pump.pumps, 1 + 1 + 40);  // the delay, the box, each tenth of 400 pens
}

TEST_F(HistoryViewTest, AGroupSelectedWhileNamesLoadIsTheOneThatStays) {
  pump.After(Milliseconds{1}, [this] { view.SelectGroup(8); });
  view.SelectGroup(9);
  EXPECT_EQ(view.GroupIndex(), 8);
  EXPECT_EQ(view.Grid().Group().index, 8);
  EXPECT_FALSE(view.Picker().visible);
  EXPECT_EQ(view.Picker().standby, "");
  EXPECT_TRUE(view.GridVisible());
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:A01", "[1] Pen:A02"));
}

TEST_F(HistoryViewTest, TheSameGroupSelectedAgainWhileItsNamesLoadIsSetUpOnce) {
  pump.After(Milliseconds{1}, [this] { view.SelectGroup(9); });
  view.SelectGroup(9);
  EXPECT_THAT(view.Picker().items, ElementsAre("Select...", "A01", "A02"));
  EXPECT_TRUE(view.Picker().enabled);
  EXPECT_EQ(view.Picker().standby, "");
  EXPECT_TRUE(view.GridVisible());
}

TEST_F(HistoryViewTest, ARecipeDatabaseClosedWhileNamesLoadIsNotReadAnyMore) {
  pump.After(Milliseconds{1}, [this] { view.SetRecipeDatabase(nullptr); });
  view.SelectGroup(9);
  EXPECT_THAT(view.Picker().items, ElementsAre("Select...", "A01", "A02"));
  view.SelectGroup(4);
  EXPECT_EQ(op.boxes.back().title, "No Recipe Names");
}

TEST_F(HistoryViewTest, AClosingProgramDoesNotWait) {
  pump.closing = true;
  const Milliseconds before = pump.Now();
  view.SelectGroup(9);
  EXPECT_EQ(pump.Now(), before);
}

TEST_F(HistoryViewTest, ReselectingAGroupQueriesAgain) {
  view.SelectGroup(8);
  transactions.exec("DELETE FROM Transactions WHERE Pen = 'A01'");
  view.SelectGroup(8);
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:A02"));
}

TEST_F(HistoryViewTest, ExpandAllHoldsForEveryGroupSelected) {
  view.SetExpandAll(true);
  view.SelectGroup(8);
  EXPECT_EQ(view.Grid().RowCount(), 8);
  EXPECT_TRUE(view.Grid().ColumnHeaders());
  view.SetExpandAll(false);
  EXPECT_EQ(view.Grid().RowCount(), 2);
  EXPECT_FALSE(view.Grid().ColumnHeaders());
}

TEST_F(HistoryViewTest, AChangeOfTabClosesGroupsUnlessAllAreExpanded) {
  view.SelectGroup(8);
  view.OpenGroup(1);
  EXPECT_EQ(view.Grid().RowCount(), 5);
  EXPECT_TRUE(view.Grid().ColumnHeaders());
  view.TabChanged();
  EXPECT_EQ(view.Grid().RowCount(), 2);
  EXPECT_FALSE(view.Grid().ColumnHeaders());
  view.SetExpandAll(true);
  view.CloseGroup(1);
  EXPECT_EQ(view.Grid().RowCount(), 5);
  view.TabChanged();
  EXPECT_EQ(view.Grid().RowCount(), 8);
}

TEST_F(HistoryViewTest, EnteringTheTabEmptiesThePickerAndKeepsTheRows) {
  view.SelectGroup(9);
  PickName("A02");
  view.TabChanged();
  view.TabEntered();
  EXPECT_FALSE(view.Picker().visible);
  EXPECT_EQ(view.Picker().Text(), "");
  EXPECT_EQ(view.GroupIndex(), 9);
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:A02"));
}

TEST_F(HistoryViewTest, EnteringTheTabTakesTheNamesOfTheIngredients) {
  view.SelectGroup(10);
  WriteIngredient(recipes, {.id = 1, .name = "MILO", .description = "Milo"});
  view.TabEntered();
  EXPECT_THAT(VisibleCaptions(view.Grid()),
              ElementsAre("Pen", "Recipe", "Feed Wt", "Target Wt", "MILO", "HAY"));
  view.SetRecipeDatabase(nullptr);
  view.TabEntered();
  EXPECT_THAT(VisibleCaptions(view.Grid()), ElementsAre("Pen", "Recipe", "Feed Wt", "Target Wt"));
}

TEST_F(HistoryViewTest, AnIngredientGridOfActiveOnesNamesNoOther) {
  WriteIngredient(recipes, {.id = 5, .name = "SALT"});
  view.SelectGroup(0);
  EXPECT_THAT(VisibleCaptions(view.Grid()), Contains("SALT"));
  view.SetShowActiveIngredientsOnly(true);
  view.SelectGroup(0);
  EXPECT_THAT(VisibleCaptions(view.Grid()), Not(Contains("SALT")));
  EXPECT_THAT(VisibleCaptions(view.Grid()), Contains("CORN"));
}

TEST_F(HistoryViewTest, AnotherTransactionDatabaseShowsTheSelectedGroup) {
  view.SelectGroup(8);
  other.emplace(SmallHistory(folder, "OTHER.TDB"));
  other->exec("UPDATE Transactions SET Pen = 'Z' WHERE Pen IS NOT NULL");
  view.SetTransactionDatabase(*other);
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:Z"));
  EXPECT_EQ(view.GroupIndex(), 8);
}

TEST_F(HistoryViewTest, AnotherTransactionDatabaseIsExpandedWhileAllAreExpanded) {
  view.SetExpandAll(true);
  view.SelectGroup(8);
  other.emplace(SmallHistory(folder, "OTHER.TDB"));
  const auto before = Lines();
  view.SetTransactionDatabase(*other);
  EXPECT_EQ(Lines(), before);
  EXPECT_TRUE(view.Grid().ColumnHeaders());
  view.SetExpandAll(false);
  view.OpenGroup(1);
  view.SetTransactionDatabase(transactions);
  EXPECT_FALSE(view.Grid().ColumnHeaders());
}

TEST_F(HistoryViewTest, ATransactionDatabaseThatCannotBeReadIsThrownAndTheOldOneStays) {
  view.SelectGroup(8);
  const auto before = Lines();
  other.emplace(SmallHistory(folder, "OTHER.TDB"));
  other->exec("DROP TABLE Transactions");
  EXPECT_THROW(view.SetTransactionDatabase(*other), DatabaseError);
  EXPECT_TRUE(op.boxes.empty());
  EXPECT_EQ(Lines(), before);
}

TEST_F(HistoryViewTest, AnotherRecipeDatabaseRelabelsTheIngredientColumnsAtOnce) {
  SQLite::Database oats = SmallRecipes(folder, "OATS.RDB");
  WriteIngredient(oats, {.id = 1, .name = "OATS", .description = "Oats"});
  view.SetRecipeDatabase(&oats);
  EXPECT_THAT(VisibleCaptions(view.Grid()), Contains("OATS"));
  SQLite::Database broken = SmallRecipes(folder, "BROKEN.RDB");
  broken.exec("DROP TABLE Ingredient");
  EXPECT_THROW(view.SetRecipeDatabase(&broken), DatabaseError);
  EXPECT_THAT(VisibleCaptions(view.Grid()), Contains("OATS"));
  view.SetRecipeDatabase(nullptr);
  EXPECT_THAT(VisibleCaptions(view.Grid()), Not(Contains("OATS")));
}

TEST_F(HistoryViewTest, GroupTenKeepsTheOrderOfTheGroupBefore) {
  view.SelectGroup(9);
  view.SelectGroup(10);
  EXPECT_THAT(VisibleCaptions(view.Grid()),
              ElementsAre("Pen", "Recipe", "Target Wt", "Feed Wt", "CORN", "HAY"));
  view.SelectGroup(3);
  view.SelectGroup(10);
  EXPECT_THAT(VisibleCaptions(view.Grid()),
              ElementsAre("Pen", "Recipe", "Feed Wt", "Target Wt", "CORN", "HAY"));
}

TEST_F(HistoryViewTest, AMovedColumnStaysWhereItWasPut) {
  view.SelectGroup(8);
  view.MoveColumn(11, 1);
  EXPECT_EQ(VisibleCaptions(view.Grid()).front(), "Feed Wt");
  view.OpenGroup(1);
  EXPECT_EQ(Lines()[1], "2: 810.5|1|STEERS|800|2|02:05 PM|15-Mar-11");
}

TEST_F(HistoryViewTest, AClickOnAHeaderSortsAndTheNextTurnsTheOrder) {
  view.SetExpandAll(true);
  view.SelectGroup(0);
  view.SortByColumn(7);
  EXPECT_EQ(view.Grid().Row(1).cells[6], "0");
  view.SortByColumn(7);
  EXPECT_EQ(view.Grid().Row(1).cells[6], "1000");
  view.SortByColumn(8);
  EXPECT_TRUE(view.Grid().SortAscending());
}

TEST_F(HistoryViewTest, AFailureOfTheStorageIsReportedAndTheOldGroupStays) {
  view.SelectGroup(9);
  view.SetExpandAll(true);
  PickName("A02");
  transactions.exec("ALTER TABLE Transactions RENAME TO Elsewhere");
  view.SelectGroup(3);
  transactions.exec("ALTER TABLE Elsewhere RENAME TO Transactions");
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].text, "There is an invalid table in the specified database.");
  EXPECT_EQ(op.boxes[0].icon, Icon::kCritical);
  EXPECT_THAT(op.boxes[0].cause, ::testing::HasSubstr("Transactions"));
  EXPECT_EQ(view.GroupIndex(), 9);
  EXPECT_EQ(view.CurrentDataGroupText(), "Pen Fed (by name...)");
  EXPECT_TRUE(view.Picker().visible);
  EXPECT_EQ(view.Picker().Text(), "A02");
  EXPECT_TRUE(view.GridVisible());
  EXPECT_THAT(Lines(),
              ElementsAre("[1] Pen:A02", "2: STEERS|800|780|2|02:20 PM|15-Mar-11",
                          "2: STEERS|300|0|10|10:00 AM|15-Mar-11", "=1: Total:|1100|780|||"));
}

TEST_F(HistoryViewTest, NamesThatCannotBeReadAreReportedAndTheOldGroupStays) {
  view.SelectGroup(8);
  recipes.exec("ALTER TABLE Pen RENAME TO Elsewhere");
  view.SelectGroup(9);
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].text, "There is an invalid table in the specified database.");
  EXPECT_EQ(view.GroupIndex(), 8);
  EXPECT_FALSE(view.Picker().visible);
}

}  // namespace
}  // namespace vrx::testing
