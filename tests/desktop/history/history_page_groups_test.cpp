#include <gmock/gmock.h>

#include "database/records.h"
#include "desktop/history/history_fixture.h"
#include "history/data_group.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The name that a group by name is asked for.
QString NameFor(const DataGroup& group) {
  if (group.named_column == "Recipe") {
    return u"STEERS"_qs;
  }
  return group.named_column == "Ingredient" ? u"CORN"_qs : u"A02"_qs;
}

class HistoryPageGroups : public HistoryFixture, public ::testing::WithParamInterface<int> {
 protected:
  // What the logic shows of the same files, with the columns in the order that group 0 leaves.
  HistoryGrid Specified(SQLite::Database& transactions, const DataGroup& group) {
    HistoryGrid grid(transactions);
    SQLite::Database recipes = OpenDatabase(Recipes(), Access::kRead);
    grid.RefreshIngredientColumns(ReadIngredients(recipes));
    grid.SetUp(DataGroups().front(), "");
    grid.SetUp(group, NameFor(group).toStdString());
    return grid;
  }
};

TEST_P(HistoryPageGroups, ShowRowsBlanksTotalsAndColumnsAsTheLogicAnswers) {
  const DataGroup& group = *FindDataGroup(GetParam());
  SQLite::Database transactions = OpenDatabase(Transactions(), Access::kRead);
  HistoryGrid expected = Specified(transactions, group);
  ShowTab();
  ChooseGroup(GetParam());
  if (!group.named_column.empty()) {
    EXPECT_THAT(Lines(), IsEmpty());
    PickName(NameFor(group));
  }
  EXPECT_EQ(GroupText(), group.item);
  EXPECT_EQ(Lines(), ShownLines(expected));
  EXPECT_EQ(Captions(), VisibleCaptions(expected));
  ExpandAll(true);
  expected.ApplyExpandState(true);
  EXPECT_EQ(Lines(), ShownLines(expected));
  EXPECT_EQ(Captions(), VisibleCaptions(expected));
  EXPECT_TRUE(Header().isVisible());
  EXPECT_TRUE(operator_.boxes.empty());
}

INSTANTIATE_TEST_SUITE_P(AllThirteen, HistoryPageGroups, ::testing::Range(0, kDataGroupCount));

// By hand.

class HistoryPageRows : public HistoryFixture {};

TEST_F(HistoryPageRows, TransactionsAllShowEveryRecordWithItsIngredients) {
  ShowTab();
  EXPECT_THAT(Captions(), ElementsAre("Transaction", "Recipe", "Type", "Batch Wt", "Ingredient",
                                      "Feed Wt", "Pen", "Target Wt", "User ID", "Time", "Date",
                                      "Ing% Of Batch", "CORN", "HAY"));
  EXPECT_THAT(Lines(),
              ElementsAre("1: 1|STEERS|BATCH|998|CORN|0||1000|2|08:30 AM|14-Mar-11|60||",
                          "1: 1|STEERS|BATCH|602.5|HAY|0||600|2|08:31 AM|14-Mar-11|40||",
                          "1: 1|STEERS|FEED|0||810.5|A01|800|2|02:05 PM|15-Mar-11||486.3|324.2",
                          "1: 1|STEERS|FEED|0||780|A02|800|2|02:20 PM|15-Mar-11||468|312",
                          "1: 2|HEIFER|BATCH|500|CORN|0||500||09:00 AM|15-Mar-11|100||",
                          "1: 2|HEIFER|FEED|0||495.25|A01|500||09:30 AM|15-Mar-11||495.25|",
                          "1: 3|STEERS|FEED|0||0|A02|300|10|10:00 AM|15-Mar-11|||",
                          "1: ||BATCH|0||0||0||||||"));
}

TEST_F(HistoryPageRows, NestedGroupsTotalTheInnermostLevelOnly) {
  ShowTab();
  ExpandAll(true);
  ChooseGroup(3);
  EXPECT_THAT(Captions(), ElementsAre("Transaction", "Batch Wt", "Ingredient", "Feed Wt", "Pen",
                                      "Target Wt", "User ID", "Time", "Date"));
  EXPECT_THAT(Lines(),
              ElementsAre("[1] Recipe:", "[2] BATCH", "3: |0||0||0|||", "=2: Total:|||||0|||",
                          "=1: ||||||||",                                 //
                          "[1] Recipe:HEIFER", "[2] BATCH",               //
                          "3: 2|500|CORN|0||500||09:00 AM|15-Mar-11",     //
                          "=2: Total:|500||||500|||", "[2] FEED",         //
                          "3: 2|0||495.25|A01|500||09:30 AM|15-Mar-11",   //
                          "=2: Total:|||495.25||500|||", "=1: ||||||||",  //
                          "[1] Recipe:STEERS", "[2] BATCH",               //
                          "3: 1|998|CORN|0||1000|2|08:30 AM|14-Mar-11",   //
                          "3: 1|602.5|HAY|0||600|2|08:31 AM|14-Mar-11",   //
                          "=2: Total:|1600.5||||1600|||", "[2] FEED",     //
                          "3: 1|0||810.5|A01|800|2|02:05 PM|15-Mar-11",   //
                          "3: 1|0||780|A02|800|2|02:20 PM|15-Mar-11",     //
                          "3: 3|0||0|A02|300|10|10:00 AM|15-Mar-11",      //
                          "=2: Total:|||1590.5||1900|||", "=1: ||||||||"));
}

// A sum of nothing but zero is blank for batch and feed weights, and only there.
TEST_F(HistoryPageRows, AGroupTotalOfZeroIsBlank) {
  ShowTab();
  ExpandAll(true);
  ChooseGroup(1);
  EXPECT_THAT(Lines(), ::testing::Contains("=2: Total:|||||0|||"));
}

TEST_F(HistoryPageRows, GroupTenShowsTheNamedIngredientsOfEachPen) {
  ShowTab();
  ExpandAll(true);
  ChooseGroup(10);
  EXPECT_THAT(Captions(), ElementsAre("Pen", "Recipe", "Feed Wt", "Target Wt", "CORN", "HAY"));
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:A01", "2: A01|STEERS|810.5|800|486.3|324.2",
                                   "2: A01|HEIFER|495.25|500|495.25|",
                                   "=1: Total:||1305.75|1300|981.6|324.2", "[1] Pen:A02",
                                   "2: A02|STEERS|780|800|468|312", "2: A02|STEERS|0|300||",
                                   "=1: Total:||780|1100|468.0|312.0"));
}

TEST_F(HistoryPageRows, GroupTenKeepsTheOrderOfTheGroupBefore) {
  ShowTab();
  ChooseGroup(9);
  ChooseGroup(10);
  EXPECT_THAT(Captions(), ElementsAre("Pen", "Recipe", "Target Wt", "Feed Wt", "CORN", "HAY"));
  ChooseGroup(3);
  ChooseGroup(10);
  EXPECT_THAT(Captions(), ElementsAre("Pen", "Recipe", "Feed Wt", "Target Wt", "CORN", "HAY"));
}

}  // namespace
}  // namespace vrx::testing
