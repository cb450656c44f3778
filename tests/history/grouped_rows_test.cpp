#include "history/grouped_rows.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "history/columns.h"
#include "history/history_table.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

CellValue Number(std::int64_t number) { return number; }
CellValue Text(std::string_view text) { return std::string(text); }

// Transaction 1: a batch of two rows, fed on the next day. 2: a batch and its feed. 10: a feed
// without a batch, recipe or user. Column 9, the time, names the record.
const std::vector<Cells>& SmallHistory() {
  static const std::vector<Cells> rows{{{1, Number(1)},
                                        {2, Text("STEERS")},
                                        {3, Text("BATCH")},
                                        {4, Text("9")},
                                        {5, Text("CORN")},
                                        {7, 100.1},
                                        {8, 60.1},
                                        {9, Text("a")},
                                        {10, Text("2011-03-14")},
                                        {11, 0.0},
                                        {13, 60.1}},
                                       {{1, Number(1)},
                                        {2, Text("STEERS")},
                                        {3, Text("BATCH")},
                                        {4, Text("9")},
                                        {5, Text("HAY")},
                                        {7, 100.2},
                                        {8, 40.2},
                                        {9, Text("b")},
                                        {10, Text("2011-03-14")},
                                        {11, 0.0},
                                        {14, 40.2}},
                                       {{1, Number(1)},
                                        {2, Text("STEERS")},
                                        {3, Text("FEED")},
                                        {4, Text("9")},
                                        {6, Text("PEN2")},
                                        {7, 50.0},
                                        {8, 0.0},
                                        {9, Text("c")},
                                        {10, Text("2011-03-15")},
                                        {11, 49.9},
                                        {13, 30.1}},
                                       {{1, Number(10)},
                                        {3, Text("FEED")},
                                        {6, Text("PEN10")},
                                        {7, 30.0},
                                        {8, 0.0},
                                        {9, Text("d")},
                                        {10, Text("2009-12-31")},
                                        {11, 30.5}},
                                       {{1, Number(2)},
                                        {2, Text("O'NEIL")},
                                        {3, Text("BATCH")},
                                        {4, Text("10")},
                                        {5, Text("CORN")},
                                        {7, 0.1},
                                        {8, 0.1},
                                        {9, Text("e")},
                                        {10, Text("2011-03-14")},
                                        {11, 0.0},
                                        {13, 0.1}},
                                       {{1, Number(2)},
                                        {2, Text("O'NEIL")},
                                        {3, Text("FEED")},
                                        {4, Text("10")},
                                        {6, Text("PEN2")},
                                        {7, 0.2},
                                        {8, 0.0},
                                        {9, Text("f")},
                                        {10, Text("2011-03-14")},
                                        {11, 0.2},
                                        {13, 0.2}}};
  return rows;
}

class GroupedRowsOfASmallHistory : public ::testing::Test {
 protected:
  void SetUp() override { table_.Store(SmallHistory()); }

  std::vector<std::string> Closed(int group, std::string_view name = "") {
    rows_.Show(*FindDataGroup(group), name);
    return Lines(rows_);
  }

  std::vector<std::string> Opened(int group, std::string_view name = "") {
    rows_.Show(*FindDataGroup(group), name);
    rows_.OpenAll();
    return Lines(rows_);
  }

  HistoryTable table_;
  GroupedRows rows_{table_.Database()};
};

TEST_F(GroupedRowsOfASmallHistory, Group0HasAllRecordsAndNeitherGroupsNorTotals) {
  EXPECT_THAT(Closed(0), ElementsAre("a", "b", "c", "d", "e", "f"));
  EXPECT_TRUE(rows_.ShowsRecords());
  EXPECT_THAT(Opened(0), ElementsAre("a", "b", "c", "d", "e", "f"));
}

TEST_F(GroupedRowsOfASmallHistory, Group1GoesByTransactionAndTypeNumbersInTheirOrder) {
  EXPECT_THAT(Closed(1), ElementsAre("+ 1", "+ 2", "+ 10"));
  EXPECT_THAT(Opened(1),
              ElementsAre("- 1", "  - BATCH", "    a", "    b", "  = BATCH 7:200.3 8:100.3 11:0",
                          "  - FEED", "    c", "  = FEED 7:50 8:0 11:49.9", "= 1", "- 2",
                          "  - BATCH", "    e", "  = BATCH 7:0.1 8:0.1 11:0", "  - FEED", "    f",
                          "  = FEED 7:0.2 8:0 11:0.2", "= 2", "- 10", "  - FEED", "    d",
                          "  = FEED 7:30 8:0 11:30.5", "= 10"));
}

TEST_F(GroupedRowsOfASmallHistory, Group2ShowsATransactionUnderEachOfItsDates) {
  EXPECT_THAT(Closed(2), ElementsAre("+ 2009-12-31", "+ 2011-03-14", "+ 2011-03-15"));
  EXPECT_THAT(
      Opened(2),
      ElementsAre("- 2009-12-31", "  - 10", "    - FEED", "      d", "    = FEED 7:30 8:0 11:30.5",
                  "  = 10", "= 2009-12-31", "- 2011-03-14", "  - 1", "    - BATCH", "      a",
                  "      b", "    = BATCH 7:200.3 8:100.3 11:0", "  = 1", "  - 2", "    - BATCH",
                  "      e", "    = BATCH 7:0.1 8:0.1 11:0", "    - FEED", "      f",
                  "    = FEED 7:0.2 8:0 11:0.2", "  = 2", "= 2011-03-14", "- 2011-03-15", "  - 1",
                  "    - FEED", "      c", "    = FEED 7:50 8:0 11:49.9", "  = 1", "= 2011-03-15"));
}

TEST_F(GroupedRowsOfASmallHistory, Group3PutsRowsWithoutARecipeIntoAGroupOfTheirOwn) {
  EXPECT_THAT(Closed(3), ElementsAre("+ NULL", "+ O'NEIL", "+ STEERS"));
  EXPECT_THAT(Opened(3),
              ElementsAre("- NULL", "  - FEED", "    d", "  = FEED 7:30 8:0 11:30.5", "= NULL",
                          "- O'NEIL", "  - BATCH", "    e", "  = BATCH 7:0.1 8:0.1 11:0",
                          "  - FEED", "    f", "  = FEED 7:0.2 8:0 11:0.2", "= O'NEIL", "- STEERS",
                          "  - BATCH", "    a", "    b", "  = BATCH 7:200.3 8:100.3 11:0",
                          "  - FEED", "    c", "  = FEED 7:50 8:0 11:49.9", "= STEERS"));
}

TEST_F(GroupedRowsOfASmallHistory, Group4HasTheRecipeOfThatNameApostropheOrNot) {
  EXPECT_THAT(Closed(4, "O'NEIL"), ElementsAre("+ O'NEIL"));
  EXPECT_THAT(Opened(4, "O'NEIL"),
              ElementsAre("- O'NEIL", "  - BATCH", "    e", "  = BATCH 7:0.1 8:0.1 11:0",
                          "  - FEED", "    f", "  = FEED 7:0.2 8:0 11:0.2", "= O'NEIL"));
}

TEST_F(GroupedRowsOfASmallHistory, AByNameGroupIsEmptyUntilANameIsPickedAndIsCaseSensitive) {
  for (const int group : {4, 7, 9}) {
    for (const char* name : {"", "Select...", "steers", "corn", "pen2"}) {
      EXPECT_THAT(Closed(group, name), IsEmpty()) << name;
      EXPECT_THAT(Opened(group, name), IsEmpty()) << name;
      EXPECT_FALSE(rows_.ShowsRecords());
    }
  }
}

TEST_F(GroupedRowsOfASmallHistory, Group5HasTheIngredientsOfEachRecipesBatches) {
  EXPECT_THAT(Closed(5), ElementsAre("+ O'NEIL", "+ STEERS"));
  EXPECT_THAT(Opened(5), ElementsAre("- O'NEIL", "  - CORN", "    e", "  = CORN 7:0.1 8:0.1 11:0",
                                     "= O'NEIL 7:0.1 11:0", "- STEERS", "  - CORN", "    a",
                                     "  = CORN 7:100.1 8:60.1 11:0", "  - HAY", "    b",
                                     "  = HAY 7:100.2 8:40.2 11:0", "= STEERS 7:200.3 11:0"));
}

TEST_F(GroupedRowsOfASmallHistory, Group6HasTheBatchedRowsOfEachIngredient) {
  EXPECT_THAT(Closed(6), ElementsAre("+ CORN", "+ HAY"));
  EXPECT_THAT(Opened(6), ElementsAre("- CORN", "  a", "  e", "= CORN 7:100.2 8:60.2 11:0", "- HAY",
                                     "  b", "= HAY 7:100.2 8:40.2 11:0"));
}

TEST_F(GroupedRowsOfASmallHistory, Group7HasTheIngredientOfThatName) {
  EXPECT_THAT(Closed(7, "CORN"), ElementsAre("+ CORN"));
  EXPECT_THAT(Opened(7, "CORN"), ElementsAre("- CORN", "  a", "  e", "= CORN 7:100.2 8:60.2 11:0"));
}

TEST_F(GroupedRowsOfASmallHistory, Group8HasTheFedRowsOfEachPen) {
  EXPECT_THAT(Closed(8), ElementsAre("+ PEN10", "+ PEN2"));
  EXPECT_THAT(Opened(8), ElementsAre("- PEN10", "  d", "= PEN10 7:30 8:0 11:30.5", "- PEN2", "  c",
                                     "  f", "= PEN2 7:50.2 8:0 11:50.1"));
}

TEST_F(GroupedRowsOfASmallHistory, Group9HasThePenOfThatName) {
  EXPECT_THAT(Opened(9, "PEN2"), ElementsAre("- PEN2", "  c", "  f", "= PEN2 7:50.2 8:0 11:50.1"));
}

TEST_F(GroupedRowsOfASmallHistory, Group10SumsTheIngredientsOfAPenAndTreatsNoWeightAsZero) {
  rows_.SumColumns({11, 13, 14, 112});
  EXPECT_THAT(Opened(10), ElementsAre("- PEN10", "  d", "= PEN10 11:30.5 13:0 14:0 112:0", "- PEN2",
                                      "  c", "  f", "= PEN2 11:50.1 13:30.3 14:0 112:0"));
}

TEST_F(GroupedRowsOfASmallHistory, Group11HasUsersAsNumbersThoseWithoutFirst) {
  EXPECT_THAT(Closed(11), ElementsAre("+ NULL", "+ 9", "+ 10"));
  EXPECT_THAT(Opened(11),
              ElementsAre("- NULL", "  - 10", "    d", "  = 10 8:0 11:30.5", "= NULL", "- 9",
                          "  - 1", "    a", "    b", "    c", "  = 1 8:100.3 11:49.9", "= 9",
                          "- 10", "  - 2", "    e", "    f", "  = 2 8:0.1 11:0.2", "= 10"));
}

TEST_F(GroupedRowsOfASmallHistory, Group12HasUsersAndWhatTheyBatchedAndFed) {
  EXPECT_THAT(Opened(12),
              ElementsAre("- NULL", "  - FEED", "    d", "  = FEED 7:30 8:0 11:30.5", "= NULL",
                          "- 9", "  - BATCH", "    a", "    b", "  = BATCH 7:200.3 8:100.3 11:0",
                          "  - FEED", "    c", "  = FEED 7:50 8:0 11:49.9", "= 9", "- 10",
                          "  - BATCH", "    e", "  = BATCH 7:0.1 8:0.1 11:0", "  - FEED", "    f",
                          "  = FEED 7:0.2 8:0 11:0.2", "= 10"));
}

TEST_F(GroupedRowsOfASmallHistory, RecordsShowOnlyOnceAGroupIsOpenDownToThem) {
  Closed(1);
  EXPECT_FALSE(rows_.ShowsRecords());
  rows_.Open(2);
  EXPECT_THAT(Lines(rows_), ElementsAre("+ 1", "- 2", "  + BATCH", "  + FEED", "= 2", "+ 10"));
  EXPECT_FALSE(rows_.ShowsRecords());
  rows_.Open(4);
  EXPECT_TRUE(rows_.ShowsRecords());
  EXPECT_EQ(rows_.KindOf(5), HistoryRowKind::kRecord);
  rows_.Close(4);
  EXPECT_FALSE(rows_.ShowsRecords());
  EXPECT_EQ(rows_.RowCount(), 6);
}

TEST_F(GroupedRowsOfASmallHistory, AGroupOpensAgainAsItWasLeft) {
  Closed(1);
  rows_.Open(2);
  rows_.Open(4);
  const std::vector<std::string> left = Lines(rows_);
  rows_.Close(2);
  EXPECT_THAT(Lines(rows_), ElementsAre("+ 1", "+ 2", "+ 10"));
  EXPECT_FALSE(rows_.ShowsRecords());
  rows_.Open(2);
  EXPECT_EQ(Lines(rows_), left);
  rows_.CloseAll();
  rows_.Open(2);
  EXPECT_THAT(Lines(rows_), ElementsAre("+ 1", "- 2", "  + BATCH", "  + FEED", "= 2", "+ 10"));
}

TEST_F(GroupedRowsOfASmallHistory, OpenAndCloseAreNothingForOtherRows) {
  const std::vector<std::string> all = Opened(1);
  for (std::int64_t row = -1; row <= rows_.RowCount() + 1; ++row) {
    rows_.Open(row);  // already open, or not a group row
  }
  rows_.Close(3);   // a record
  rows_.Close(5);   // a total row
  rows_.Close(99);  // missing
  EXPECT_EQ(Lines(rows_), all);
}

TEST_F(GroupedRowsOfASmallHistory, ARowThatIsNotThereIsRefused) {
  Closed(1);
  for (const std::int64_t row : {0, -1, 4}) {
    EXPECT_THROW(rows_.Row(row), std::out_of_range);
    EXPECT_THROW(rows_.KindOf(row), std::out_of_range);
  }
}

TEST_F(GroupedRowsOfASmallHistory, HasNoRowsBeforeItIsShown) {
  EXPECT_EQ(rows_.RowCount(), 0);
  EXPECT_FALSE(rows_.ShowsRecords());
  rows_.OpenAll();
  rows_.CloseAll();
  rows_.Open(1);
  EXPECT_EQ(rows_.RowCount(), 0);
  EXPECT_THROW(rows_.Row(1), std::out_of_range);
}

TEST_F(GroupedRowsOfASmallHistory, RecordsAreSortedWithinTheirGroupsEqualOnesAsStored) {
  Opened(8);
  rows_.SortBy(11, true);
  EXPECT_THAT(Lines(rows_), ElementsAre("- PEN10", "  d", "= PEN10 7:30 8:0 11:30.5", "- PEN2",
                                        "  f", "  c", "= PEN2 7:50.2 8:0 11:50.1"));
  Closed(0);
  rows_.SortBy(1, false);
  EXPECT_THAT(Lines(rows_), ElementsAre("d", "e", "f", "a", "b", "c"));
  rows_.SortBy(3, true);
  EXPECT_THAT(Lines(rows_), ElementsAre("a", "b", "e", "c", "d", "f"));
  rows_.SortBy(0, true);
  EXPECT_THAT(Lines(rows_), ElementsAre("a", "b", "c", "d", "e", "f"));
}

TEST_F(GroupedRowsOfASmallHistory, ASortReturnsTheNewRowOfARecord) {
  Opened(8);
  EXPECT_EQ(rows_.SortBy(11, true, 5), 6);   // c
  EXPECT_EQ(rows_.SortBy(11, false, 6), 5);  // c again
  EXPECT_EQ(rows_.SortBy(11, true, 4), 4);   // A group.
  EXPECT_EQ(rows_.SortBy(11, false, 7), 7);  // A total.
  EXPECT_EQ(rows_.SortBy(11, true, 0), 0);
  Closed(0);
  EXPECT_EQ(rows_.SortBy(1, false, 4), 1);  // d
  EXPECT_THAT(Lines(rows_).front(), "d");
}

TEST_F(GroupedRowsOfASmallHistory, NullSortsFirstUpwardsAndLastDownwardsUsersAsNumbers) {
  Closed(0);
  rows_.SortBy(4, true);
  EXPECT_THAT(Lines(rows_), ElementsAre("d", "a", "b", "c", "e", "f"));
  rows_.SortBy(4, false);
  EXPECT_THAT(Lines(rows_), ElementsAre("e", "f", "a", "b", "c", "d"));
}

TEST_F(GroupedRowsOfASmallHistory, ShowTakesTheStoredOrderAgainAndClosesAll) {
  Closed(0);
  rows_.SortBy(1, false);
  EXPECT_THAT(Closed(0), ElementsAre("a", "b", "c", "d", "e", "f"));
  Opened(1);
  EXPECT_THAT(Closed(1), ElementsAre("+ 1", "+ 2", "+ 10"));
}

TEST_F(GroupedRowsOfASmallHistory, AnInvalidColumnIsRefused) {
  EXPECT_THROW(rows_.SortBy(117, true), std::out_of_range);
  EXPECT_THROW(rows_.SumColumns({0}), std::out_of_range);
  Opened(8);
  rows_.SumColumns({});
  EXPECT_THAT(Lines(rows_),
              ElementsAre("- PEN10", "  d", "= PEN10", "- PEN2", "  c", "  f", "= PEN2"));
}

TEST_F(GroupedRowsOfASmallHistory, ARecordHasAllItsColumnsAsStored) {
  Closed(0);
  const HistoryRow row = rows_.Row(4);
  EXPECT_EQ(row.kind, HistoryRowKind::kRecord);
  EXPECT_EQ(row.depth, 1);
  ASSERT_EQ(row.cells.size(), std::size_t{kHistoryColumnCount});
  for (int column = 1; column <= kHistoryColumnCount; ++column) {
    const auto cell = SmallHistory()[3].find(column);
    EXPECT_EQ(row.cells[static_cast<std::size_t>(column) - 1],
              cell == SmallHistory()[3].end() ? CellValue() : cell->second)
        << column;
  }
}

TEST_F(GroupedRowsOfASmallHistory, SumsLoseNoDigit) {
  std::vector<Cells> rows(1000, Cells{{1, Number(3)}, {3, Text("FEED")}, {11, 0.1}});
  table_.Store(rows);
  Closed(1);
  rows_.Open(3);
  rows_.Open(4);
  EXPECT_EQ(rows_.Row(4 + 1000 + 1).cells[10], CellValue(100.0));
}

// Records are read 32 at a time.
TEST(GroupedRows, GroupsThatEndAtOrNearAPageAreWhole) {
  for (const int column : {0, 9}) {
    for (const std::int64_t count : {31, 32, 33, 64, 65}) {
      HistoryTable table;
      std::vector<Cells> records;
      for (std::int64_t i = 0; i < count; ++i) {
        records.push_back(
            {{3, CellValue("FEED")}, {6, CellValue("A")}, {9, CellValue(std::to_string(100 + i))}});
      }
      table.Store(records);
      GroupedRows rows(table.Database());
      rows.Show(*FindDataGroup(8), "");
      rows.OpenAll();
      rows.SortBy(column, true);
      ASSERT_EQ(rows.RowCount(), count + 2);
      for (std::int64_t i = count - 1; i >= 0; --i) {
        EXPECT_EQ(TextOf(rows.Row(2 + i).cells.at(8)), std::to_string(100 + i)) << count;
      }
    }
  }
}

TEST(GroupedRows, ManyThousandRecordsAreSortedThroughAFileAndReachedFromBothEnds) {
  HistoryTable table;
  std::vector<Cells> rows;
  for (std::int64_t i = 0; i < 30000; ++i) {
    rows.push_back({{1, Number(i)}, {7, static_cast<double>((i * 7919) % 30000)}});
  }
  table.Store(rows);
  GroupedRows grouped(table.Database());
  grouped.Show(*FindDataGroup(0), "");
  ASSERT_EQ(grouped.RowCount(), 30000);
  EXPECT_EQ(grouped.Row(30000).cells[0], Number(29999));
  grouped.SortBy(7, false);
  for (const std::int64_t row : {20000, 30000, 1, 8192, 8193, 15000, 24577, 2}) {
    EXPECT_EQ(grouped.Row(row).cells[6], CellValue(static_cast<double>(30000 - row))) << row;
  }
  // And a record is found again in the other order.
  for (const std::int64_t row : {20000, 30000, 1, 8192, 8193}) {
    EXPECT_EQ(grouped.SortBy(7, true, row), 30001 - row);
    grouped.SortBy(7, false);
  }
}

TEST_F(GroupedRowsOfASmallHistory, TheFirstOfTheNewestRecordsIsFoundInEveryGroupAndOrder) {
  const std::vector<std::pair<int, std::string>> views{
      {0, ""},     {1, ""}, {2, ""},     {3, ""},  {4, "O'NEIL"}, {5, ""}, {6, ""},
      {7, "CORN"}, {8, ""}, {9, "PEN2"}, {10, ""}, {11, ""},      {12, ""}};
  const auto shows = [this](const std::string& record) {
    const std::vector<std::string> lines = Lines(rows_);
    return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
      return line.find_last_of(' ') + 1 + record.size() == line.size() && line.ends_with(record);
    });
  };
  const std::string records = "abcdef";
  for (const auto& [group, name] : views) {
    for (std::size_t count = 1; count <= records.size(); ++count) {
      for (const int sort_column : {0, 9, 7}) {
        SCOPED_TRACE(std::to_string(group) + " newest " + std::to_string(count) + " sorted by " +
                     std::to_string(sort_column));
        Opened(group, name);
        std::string expected;
        for (const char record : records.substr(records.size() - count)) {
          expected = expected.empty() && shows({record}) ? std::string{record} : expected;
        }
        Closed(group, name);
        rows_.SortBy(sort_column, false);
        const std::int64_t row = rows_.OpenNewest(static_cast<std::int64_t>(count));
        if (expected.empty()) {
          EXPECT_EQ(row, 0);
        } else {
          ASSERT_GT(row, 0);
          EXPECT_EQ(rows_.Row(row).cells.at(8), Text(expected));
        }
      }
    }
  }
}

TEST_F(GroupedRowsOfASmallHistory, OnlyTheGroupsOfTheNewestRecordAreOpened) {
  Closed(1);
  EXPECT_EQ(rows_.OpenNewest(1), 5);
  EXPECT_THAT(Lines(rows_), ElementsAre("+ 1", "- 2", "  + BATCH", "  - FEED", "    f",
                                        "  = FEED 7:0.2 8:0 11:0.2", "= 2", "+ 10"));
}

TEST(GroupedRows, AnyPlaceOfALongTableWithManyGapsIsFoundInAnyOrder) {
  HistoryTable table;
  std::vector<Cells> rows;
  for (std::int64_t i = 1; i <= 40000; ++i) {
    rows.push_back({{1, Number(i)}});
  }
  table.Store(rows);
  table.Exec("DELETE FROM Transactions WHERE rowid % 5 = 0");
  GroupedRows grouped(table.Database());
  grouped.Show(*FindDataGroup(0), "");
  ASSERT_EQ(grouped.RowCount(), 32000);
  for (const std::int64_t row : {16000, 15990, 9000, 31000, 8200, 24000, 23000, 4100, 27910, 12300,
                                 20485, 1, 32000, 4097, 8193, 130, 31800}) {
    // Four of every five numbers remain.
    EXPECT_EQ(grouped.Row(row).cells[0], Number(row + (row - 1) / 4)) << row;
  }
}

TEST(GroupedRows, RowidsMayHaveGapsOfAnySize) {
  HistoryTable table;
  std::vector<Cells> rows(200, Cells{{3, Text("FEED")}});
  table.StoreAt(-9223372036854775807 - 1, {{1, Number(-1)}});
  table.StoreAt(-40, {{1, Number(-2)}});
  table.Store(rows);
  table.StoreAt(1'000'000'000'000, {{1, Number(-3)}});
  GroupedRows grouped(table.Database());
  grouped.Show(*FindDataGroup(0), "");
  ASSERT_EQ(grouped.RowCount(), 203);
  EXPECT_EQ(grouped.Row(203).cells[0], Number(-3));
  EXPECT_EQ(grouped.Row(202).cells[2], Text("FEED"));
  EXPECT_EQ(grouped.Row(150).cells[2], Text("FEED"));
  EXPECT_EQ(grouped.Row(2).cells[0], Number(-2));
  EXPECT_EQ(grouped.Row(1).cells[0], Number(-1));
}

}  // namespace
}  // namespace vrx::testing
