// Every data group of the small history, row by row as shown with all groups open.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/records.h"
#include "history/history_grid.h"
#include "support/small_history.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class ShownRows : public ::testing::Test {
 protected:
  std::vector<std::string> Shown(int group, const std::string& name = "") {
    HistoryGrid grid(transactions);
    grid.RefreshIngredientColumns(ReadIngredients(recipes));
    grid.SetUp(*FindDataGroup(group), name);
    grid.ExpandAll();
    return ShownLines(grid);
  }

  TempFolder folder;
  SQLite::Database transactions = SmallHistory(folder);
  SQLite::Database recipes = SmallRecipes(folder);
};

TEST_F(ShownRows, OfTransactionsAll) {
  const std::vector<std::string> expected{
      "1: 1|STEERS|BATCH|998|CORN|0||1000|2|08:30 AM|14-Mar-11|60||",
      "1: 1|STEERS|BATCH|602.5|HAY|0||600|2|08:31 AM|14-Mar-11|40||",
      "1: 1|STEERS|FEED|0||810.5|A01|800|2|02:05 PM|15-Mar-11||486.3|324.2",
      "1: 1|STEERS|FEED|0||780|A02|800|2|02:20 PM|15-Mar-11||468|312",
      "1: 2|HEIFER|BATCH|500|CORN|0||500||09:00 AM|15-Mar-11|100||",
      "1: 2|HEIFER|FEED|0||495.25|A01|500||09:30 AM|15-Mar-11||495.25|",
      "1: 3|STEERS|FEED|0||0|A02|300|10|10:00 AM|15-Mar-11|||",
      "1: ||BATCH|0||0||0||||||",
  };
  EXPECT_THAT(Shown(0), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfTransactionsBatchedFed) {
  const std::vector<std::string> expected{
      "[1] Trans:",
      "[2] BATCH",
      "3: |0||0||0|||",
      "=2: Total:|||||0|||",
      "=1: ||||||||",
      "[1] Trans:1",
      "[2] BATCH",
      "3: STEERS|998|CORN|0||1000|2|08:30 AM|14-Mar-11",
      "3: STEERS|602.5|HAY|0||600|2|08:31 AM|14-Mar-11",
      "=2: Total:|1600.5||||1600|||",
      "[2] FEED",
      "3: STEERS|0||810.5|A01|800|2|02:05 PM|15-Mar-11",
      "3: STEERS|0||780|A02|800|2|02:20 PM|15-Mar-11",
      "=2: Total:|||1590.5||1600|||",
      "=1: ||||||||",
      "[1] Trans:2",
      "[2] BATCH",
      "3: HEIFER|500|CORN|0||500||09:00 AM|15-Mar-11",
      "=2: Total:|500||||500|||",
      "[2] FEED",
      "3: HEIFER|0||495.25|A01|500||09:30 AM|15-Mar-11",
      "=2: Total:|||495.25||500|||",
      "=1: ||||||||",
      "[1] Trans:3",
      "[2] FEED",
      "3: STEERS|0||0|A02|300|10|10:00 AM|15-Mar-11",
      "=2: Total:|||||300|||",
      "=1: ||||||||",
  };
  EXPECT_THAT(Shown(1), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfTransactionsByDate) {
  const std::vector<std::string> expected{
      "[1] Date:",
      "[2] Trans:",
      "[3] BATCH",
      "4: |0||0||0||",
      "=3: Total:|||||0||",
      "=2: |||||||",
      "=1: |||||||",
      "[1] Date:14-Mar-11",
      "[2] Trans:1",
      "[3] BATCH",
      "4: STEERS|998|CORN|0||1000|2|08:30 AM",
      "4: STEERS|602.5|HAY|0||600|2|08:31 AM",
      "=3: Total:|1600.5||||1600||",
      "=2: |||||||",
      "=1: |||||||",
      "[1] Date:15-Mar-11",
      "[2] Trans:1",
      "[3] FEED",
      "4: STEERS|0||810.5|A01|800|2|02:05 PM",
      "4: STEERS|0||780|A02|800|2|02:20 PM",
      "=3: Total:|||1590.5||1600||",
      "=2: |||||||",
      "[2] Trans:2",
      "[3] BATCH",
      "4: HEIFER|500|CORN|0||500||09:00 AM",
      "=3: Total:|500||||500||",
      "[3] FEED",
      "4: HEIFER|0||495.25|A01|500||09:30 AM",
      "=3: Total:|||495.25||500||",
      "=2: |||||||",
      "[2] Trans:3",
      "[3] FEED",
      "4: STEERS|0||0|A02|300|10|10:00 AM",
      "=3: Total:|||||300||",
      "=2: |||||||",
      "=1: |||||||",
  };
  EXPECT_THAT(Shown(2), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfRecipesAll) {
  const std::vector<std::string> expected{
      "[1] Recipe:",
      "[2] BATCH",
      "3: |0||0||0|||",
      "=2: Total:|||||0|||",
      "=1: ||||||||",
      "[1] Recipe:HEIFER",
      "[2] BATCH",
      "3: 2|500|CORN|0||500||09:00 AM|15-Mar-11",
      "=2: Total:|500||||500|||",
      "[2] FEED",
      "3: 2|0||495.25|A01|500||09:30 AM|15-Mar-11",
      "=2: Total:|||495.25||500|||",
      "=1: ||||||||",
      "[1] Recipe:STEERS",
      "[2] BATCH",
      "3: 1|998|CORN|0||1000|2|08:30 AM|14-Mar-11",
      "3: 1|602.5|HAY|0||600|2|08:31 AM|14-Mar-11",
      "=2: Total:|1600.5||||1600|||",
      "[2] FEED",
      "3: 1|0||810.5|A01|800|2|02:05 PM|15-Mar-11",
      "3: 1|0||780|A02|800|2|02:20 PM|15-Mar-11",
      "3: 3|0||0|A02|300|10|10:00 AM|15-Mar-11",
      "=2: Total:|||1590.5||1900|||",
      "=1: ||||||||",
  };
  EXPECT_THAT(Shown(3), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfRecipeByName) {
  const std::vector<std::string> expected{
      "[1] Recipe:STEERS",
      "[2] BATCH",
      "3: 1|998|CORN|0||1000|2|08:30 AM|14-Mar-11",
      "3: 1|602.5|HAY|0||600|2|08:31 AM|14-Mar-11",
      "=2: Total:|1600.5||||1600|||",
      "[2] FEED",
      "3: 1|0||810.5|A01|800|2|02:05 PM|15-Mar-11",
      "3: 1|0||780|A02|800|2|02:20 PM|15-Mar-11",
      "3: 3|0||0|A02|300|10|10:00 AM|15-Mar-11",
      "=2: Total:|||1590.5||1900|||",
      "=1: ||||||||",
  };
  EXPECT_THAT(Shown(4, "STEERS"), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfRecipeIngredientAccum) {
  const std::vector<std::string> expected{
      "[1] Recipe:",       "[2] Ingred:  ",     "3: |0",       "=2: Total:|",    "=1: |",
      "[1] Recipe:HEIFER", "[2] Ingred:  CORN", "3: CORN|500", "=2: Total:|500", "=1: |",
      "[1] Recipe:STEERS", "[2] Ingred:  CORN", "3: CORN|998", "=2: Total:|998", "[2] Ingred:  HAY",
      "3: HAY|602.5",      "=2: Total:|602.5",  "=1: |",
  };
  EXPECT_THAT(Shown(5), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfIngredientsAll) {
  const std::vector<std::string> expected{
      "[1] Ingred:  ",
      "2: ||0|0|||",
      "=1: Total:|||0|||",
      "[1] Ingred:  CORN",
      "2: 1|STEERS|998|1000|2|08:30 AM|14-Mar-11",
      "2: 2|HEIFER|500|500||09:00 AM|15-Mar-11",
      "=1: Total:||1498|1500|||",
      "[1] Ingred:  HAY",
      "2: 1|STEERS|602.5|600|2|08:31 AM|14-Mar-11",
      "=1: Total:||602.5|600|||",
  };
  EXPECT_THAT(Shown(6), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfIngredientByName) {
  const std::vector<std::string> expected{
      "[1] Ingred:  CORN",
      "2: STEERS|1000|998|2|08:30 AM|14-Mar-11",
      "2: HEIFER|500|500||09:00 AM|15-Mar-11",
      "=1: Total:|1500|1498|||",
  };
  EXPECT_THAT(Shown(7, "CORN"), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfPensFedAll) {
  const std::vector<std::string> expected{
      "[1] Pen:A01",
      "2: 1|STEERS|810.5|800|2|02:05 PM|15-Mar-11",
      "2: 2|HEIFER|495.25|500||09:30 AM|15-Mar-11",
      "=1: Total:||1305.75|1300|||",
      "[1] Pen:A02",
      "2: 1|STEERS|780|800|2|02:20 PM|15-Mar-11",
      "2: 3|STEERS|0|300|10|10:00 AM|15-Mar-11",
      "=1: Total:||780|1100|||",
  };
  EXPECT_THAT(Shown(8), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfPenFedByName) {
  const std::vector<std::string> expected{
      "[1] Pen:A02",
      "2: STEERS|800|780|2|02:20 PM|15-Mar-11",
      "2: STEERS|300|0|10|10:00 AM|15-Mar-11",
      "=1: Total:|1100|780|||",
  };
  EXPECT_THAT(Shown(9, "A02"), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfPenIngredientAccum) {
  const std::vector<std::string> expected{
      "[1] Pen:A01",
      "2: A01|STEERS|800|810.5|486.3|324.2",
      "2: A01|HEIFER|500|495.25|495.25|",
      "=1: Total:||1300|1305.75|981.6|324.2",
      "[1] Pen:A02",
      "2: A02|STEERS|800|780|468|312",
      "2: A02|STEERS|300|0||",
      "=1: Total:||1100|780|468.0|312.0",
  };
  EXPECT_THAT(Shown(10), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfUserByTransactions) {
  const std::vector<std::string> expected{
      "[1] User ID:",
      "[2] Trans:",
      "3: |BATCH|0||0||0||",
      "=2: Total:||||||||",
      "[2] Trans:2",
      "3: HEIFER|BATCH|500|CORN|0||500|09:00 AM|15-Mar-11",
      "3: HEIFER|FEED|0||495.25|A01|500|09:30 AM|15-Mar-11",
      "=2: Total:||500||495.25||||",
      "=1: ||||||||",
      "[1] User ID:2",
      "[2] Trans:1",
      "3: STEERS|BATCH|998|CORN|0||1000|08:30 AM|14-Mar-11",
      "3: STEERS|BATCH|602.5|HAY|0||600|08:31 AM|14-Mar-11",
      "3: STEERS|FEED|0||810.5|A01|800|02:05 PM|15-Mar-11",
      "3: STEERS|FEED|0||780|A02|800|02:20 PM|15-Mar-11",
      "=2: Total:||1600.5||1590.5||||",
      "=1: ||||||||",
      "[1] User ID:10",
      "[2] Trans:3",
      "3: STEERS|FEED|0||0|A02|300|10:00 AM|15-Mar-11",
      "=2: Total:||||||||",
      "=1: ||||||||",
  };
  EXPECT_THAT(Shown(11), ElementsAreArray(expected));
}

TEST_F(ShownRows, OfUserByBatchedFed) {
  const std::vector<std::string> expected{
      "[1] User ID:",
      "[2] BATCH",
      "3: 2|HEIFER|500|CORN|0||500|09:00 AM|15-Mar-11",
      "3: ||0||0||0||",
      "=2: Total:||500||||500||",
      "[2] FEED",
      "3: 2|HEIFER|0||495.25|A01|500|09:30 AM|15-Mar-11",
      "=2: Total:||||495.25||500||",
      "=1: ||||||||",
      "[1] User ID:2",
      "[2] BATCH",
      "3: 1|STEERS|998|CORN|0||1000|08:30 AM|14-Mar-11",
      "3: 1|STEERS|602.5|HAY|0||600|08:31 AM|14-Mar-11",
      "=2: Total:||1600.5||||1600||",
      "[2] FEED",
      "3: 1|STEERS|0||810.5|A01|800|02:05 PM|15-Mar-11",
      "3: 1|STEERS|0||780|A02|800|02:20 PM|15-Mar-11",
      "=2: Total:||||1590.5||1600||",
      "=1: ||||||||",
      "[1] User ID:10",
      "[2] FEED",
      "3: 3|STEERS|0||0|A02|300|10:00 AM|15-Mar-11",
      "=2: Total:||||||300||",
      "=1: ||||||||",
  };
  EXPECT_THAT(Shown(12), ElementsAreArray(expected));
}

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
