// Every data group of the small history, row by row as shown with all groups open.

#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/records.h"
#include "history/history_grid.h"
#include "support/golden.h"
#include "support/small_history.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

class ShownRows : public ::testing::Test {
 protected:
  std::vector<std::string> Shown(int group, const std::string& name = "") {
    HistoryGrid grid(transactions);
    OpenAll(grid, group, name);
    return ShownLines(grid);
  }
  std::string Page(int group, const std::string& name) {
    HistoryGrid grid(transactions);
    OpenAll(grid, group, name);
    std::string page;
    for (const std::string& caption : VisibleCaptions(grid)) {
      page += (page.empty() ? "" : "|") + caption;
    }
    for (const std::string& line : ShownLines(grid)) {
      page += "\n" + line;
    }
    return page + "\n";
  }

  TempFolder folder;
  SQLite::Database transactions = SmallHistory(folder);
  SQLite::Database recipes = SmallRecipes(folder);

 private:
  void OpenAll(HistoryGrid& grid, int group, const std::string& name) {
    grid.RefreshIngredientColumns(ReadIngredients(recipes));
    grid.SetUp(*FindDataGroup(group), name);
    grid.ExpandAll();
  }
};

class RowsOfEveryGroup : public ShownRows, public ::testing::WithParamInterface<int> {};

// The captions of the visible columns, then the rows.
TEST_P(RowsOfEveryGroup, AreTheGoldenOnes) {
  const int group = GetParam();
  const std::map<int, std::string> names{{4, "STEERS"}, {7, "CORN"}, {9, "A02"}};
  const auto name = names.find(group);
  const std::string number = (group < 10 ? "0" : "") + std::to_string(group);
  EXPECT_TRUE(IsGolden(Page(group, name == names.end() ? "" : name->second),
                       "history/golden/group_" + number + ".txt"));
}

INSTANTIATE_TEST_SUITE_P(AllGroups, RowsOfEveryGroup, ::testing::Range(0, kDataGroupCount));

TEST_F(ShownRows, OfANameWithoutTransactionsAreEmpty) {
  for (const int group : {4, 7, 9}) {
    EXPECT_THAT(Shown(group), ElementsAre());
    EXPECT_THAT(Shown(group, "Select..."), ElementsAre());
  }
}

TEST_F(ShownRows, ANameIsComparedWhole) {
  EXPECT_THAT(Shown(4, "STEER"), ElementsAre());
  EXPECT_THAT(Shown(4, "steers"), ElementsAre());
}

TEST_F(ShownRows, ANameWithAnApostropheIsJustAName) {
  transactions.exec("UPDATE Transactions SET Pen = 'O''NEIL' WHERE Pen = 'A02'");
  EXPECT_THAT(Shown(9, "O'NEIL"),
              ElementsAre("[1] Pen:O'NEIL", "2: STEERS|800|780|2|02:20 PM|15-Mar-11",
                          "2: STEERS|300|0|10|10:00 AM|15-Mar-11", "=1: Total:|1100|780|||"));
}

TEST_F(ShownRows, ATransactionUnderANameChangedSinceIsOnlyInTheAllGroups) {
  WritePen(recipes, {.id = 2, .name = "B02", .description = "South"});
  EXPECT_THAT(Shown(9, "B02"), ElementsAre());
  EXPECT_THAT(Shown(8), ::testing::Contains("[1] Pen:A02"));
}

TEST_F(ShownRows, WithoutARecipeDatabaseHaveNoIngredientColumns) {
  HistoryGrid grid(transactions);
  grid.RefreshIngredientColumns({});
  grid.SetUp(*FindDataGroup(10), "");
  EXPECT_THAT(VisibleCaptions(grid), ElementsAre("Pen", "Recipe", "Target Wt", "Feed Wt"));
}

TEST_F(ShownRows, AValueOfAWrongKindIsShownUnchanged) {
  transactions.exec(
      "UPDATE Transactions SET Date = 'someday', Time = 'late', ActualFeed = 'much' "
      "WHERE Pen = 'A01' AND Recipe = 'HEIFER'");
  EXPECT_THAT(Shown(9, "A01"),
              ElementsAre("[1] Pen:A01", "2: STEERS|800|810.5|2|02:05 PM|15-Mar-11",
                          "2: HEIFER|500|much||late|someday", "=1: Total:|1300|810.5|||"));
}

}  // namespace
}  // namespace vrx::testing
