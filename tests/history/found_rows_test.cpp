#include "history/found_rows.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "history/find_text.h"
#include "history/history_grid.h"
#include "history/history_table.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

CellValue Words(const char* text) { return std::string(text); }

// Searches to the end.
void FindAll(HistoryGrid& grid, const std::string& typed) {
  grid.Find(typed);
  while (grid.Found() != nullptr && !grid.Found()->IsComplete()) {
    grid.FindMore();
  }
}

// The rows that a search goes to, one after the other.
std::vector<std::int64_t> RowsFound(HistoryGrid& grid) {
  std::vector<std::int64_t> rows;
  for (std::int64_t index = 0; index < grid.Found()->Count(); ++index) {
    rows.push_back(grid.OpenFound(index).value_or(FoundCell{-1, -1}).row);
  }
  return rows;
}

// The rows of the open grid that have the text, read one after the other.
std::vector<std::int64_t> RowsWith(HistoryGrid& grid, const std::string& typed) {
  const FindText text(typed);
  std::vector<std::int64_t> rows;
  for (std::int64_t row = 1; row <= grid.RowCount(); ++row) {
    const RowPlace place = grid.PlaceOf(row);
    const ShownRow shown = grid.Row(row);
    bool has = false;
    if (place.kind == HistoryRowKind::kGroup) {
      const std::string_view key = grid.Group().levels[place.groups.size() - 1];
      has = text.IsIn(HistoryColumnAt(HistoryColumnOfKey(key)), place.groups.back());
    } else if (place.kind == HistoryRowKind::kRecord) {
      const std::vector<int> columns = grid.Columns().VisibleColumns();
      has = std::any_of(columns.begin(), columns.end(), [&](int column) {
        const std::string& cell = shown.cells[static_cast<std::size_t>(column) - 1];
        const bool is_date = HistoryColumnAt(column).content == ColumnContent::kDate;
        const std::optional<Date> day = is_date ? ParseTypedDate(cell) : std::nullopt;
        return !cell.empty() && text.IsIn(HistoryColumnAt(column),
                                          day ? CellValue(StoredText(*day)) : CellValue(cell));
      });
    }
    if (has) {
      rows.push_back(row);
    }
  }
  return rows;
}

class FoundRowsOfATable : public ::testing::Test {
 protected:
  // Names, users, numbers and days of every kind, in rowids far from each other.
  void StoreAny(int rows) {
    const CellValue null;
    std::mt19937 random(static_cast<unsigned>(rows));
    const auto any = [&random](std::initializer_list<CellValue> values) {
      return values
          .begin()[std::uniform_int_distribution<std::size_t>(0, values.size() - 1)(random)];
    };
    std::vector<Cells> stored;
    for (int row = 1; row <= rows; ++row) {
      stored.push_back({{1, any({null, std::int64_t{5}, std::int64_t{12}})},
                        {2, any({null, Words("STEERS"), Words("5"), Words("HEIFER 5")})},
                        {3, any({Words("BATCH"), Words("FEED")})},
                        {4, any({null, Words("10"), Words("9"), Words("09"), Words("x")})},
                        {5, any({null, Words("CORN"), Words("Hay 5")})},
                        {6, any({null, Words("P10"), Words("P5")})},
                        {7, any({5.0, 15.0, 0.5})},
                        {10, any({null, Words("2011-03-14"), Words("2011-03-05")})},
                        {11, any({5.0, 0.0, 2.25})}});
    }
    table.Store(stored);
    table.Exec("UPDATE Transactions SET rowid = rowid * 997");
  }

  HistoryTable table;
};

class FoundRowsOfEveryGroup : public FoundRowsOfATable,
                              public ::testing::WithParamInterface<int> {};

constexpr std::array kSought{"5", "steers", "a", "batch", "14-mar-11", "p5", "0.5", "nothing", "x"};

// With all groups open at first, with stored order and sorted, for all days and for one of them.
TEST_P(FoundRowsOfEveryGroup, AreThoseOnTheScreenInItsOrder) {
  StoreAny(60);
  HistoryGrid grid(table.Database());
  const DataGroup& group = *FindDataGroup(GetParam());
  grid.SetUp(group, group.named_column == "Recipe"       ? "STEERS"
                    : group.named_column == "Ingredient" ? "CORN"
                                                         : "P5");
  const std::optional<Date> day = ParseStoredDate("2011-03-05");
  std::size_t found = 0;
  for (const Period& period : {Period{}, Period{.from = day, .to = day}}) {
    grid.ShowPeriod(period);
    for (const int sort : {0, 11, 11, 4, 5}) {
      if (sort != 0) {
        grid.SortByColumn(sort);
      }
      grid.ExpandAll();
      for (const char* const typed : kSought) {
        const std::vector<std::int64_t> expected = RowsWith(grid, typed);
        FindAll(grid, typed);
        EXPECT_THAT(RowsFound(grid), ElementsAreArray(expected)) << typed << ", sorted by " << sort;
        found += expected.size();
      }
    }
  }
  EXPECT_GT(found, 0U);
}

TEST_P(FoundRowsOfEveryGroup, AreCountedFromEveryRow) {
  StoreAny(40);
  HistoryGrid grid(table.Database());
  const DataGroup& group = *FindDataGroup(GetParam());
  grid.SetUp(group, group.named_column == "Recipe"       ? "STEERS"
                    : group.named_column == "Ingredient" ? "CORN"
                                                         : "P5");
  for (const int sort : {0, 11, 11}) {
    if (sort != 0) {
      grid.SortByColumn(sort);
    }
    grid.ExpandAll();
    FindAll(grid, "5");
    const std::vector<std::int64_t> found = RowsFound(grid);
    ASSERT_FALSE(found.empty());
    for (std::int64_t row = 1; row <= grid.RowCount(); ++row) {
      const RowPlace place = grid.PlaceOf(row);
      const auto at = std::lower_bound(found.begin(), found.end(), row);
      const auto after = std::upper_bound(found.begin(), found.end(), row);
      EXPECT_EQ(grid.Found()->FirstFrom(place, true), at - found.begin()) << row;
      EXPECT_EQ(grid.Found()->FirstFrom(place, false), after - found.begin()) << row;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(AllGroups, FoundRowsOfEveryGroup, ::testing::Range(0, kDataGroupCount));

TEST_F(FoundRowsOfATable, OpenTheGroupsAroundThem) {
  table.Store({{{2, Words("HEIFER")}, {3, Words("BATCH")}, {5, Words("HAY")}},
               {{2, Words("STEERS")}, {3, Words("BATCH")}, {5, Words("CORN")}},
               {{2, Words("STEERS")}, {3, Words("FEED")}, {6, Words("CORNER")}}});
  HistoryGrid grid(table.Database());
  grid.SetUp(*FindDataGroup(3), "");
  FindAll(grid, "corn");
  ASSERT_EQ(grid.Found()->Count(), 2);
  const std::optional<FoundCell> first = grid.OpenFound(0);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->row, 4);
  EXPECT_EQ(first->column, HistoryColumnOfKey("Ingredient"));
  EXPECT_TRUE(grid.ColumnHeaders());
  const std::optional<FoundCell> second = grid.OpenFound(1);
  ASSERT_TRUE(second);
  EXPECT_EQ(second->row, 7);
  EXPECT_EQ(second->column, HistoryColumnOfKey("Pen"));
}

TEST_F(FoundRowsOfATable, AreNotTotalsNorHiddenColumns) {
  table.Store({{{2, Words("STEERS")}, {3, Words("BATCH")}, {8, 7.0}},
               {{2, Words("STEERS")}, {3, Words("BATCH")}, {8, 4.0}}});
  HistoryGrid grid(table.Database());
  grid.SetUp(*FindDataGroup(3), "");
  for (const char* const typed : {"11", "total", "Recipe:"}) {
    FindAll(grid, typed);
    EXPECT_EQ(grid.Found()->Count(), 0) << typed;
  }
  FindAll(grid, "steers");  // the group alone: its records do not show the recipe
  EXPECT_THAT(RowsFound(grid), ElementsAre(1));
  EXPECT_EQ(grid.RowCount(), 1);  // and it stays closed
}

TEST_F(FoundRowsOfATable, ADayOpensItsGroupAtOnce) {
  table.Store({{{1, std::int64_t{1}}, {3, Words("BATCH")}, {10, Words("2026-01-10")}},
               {{1, std::int64_t{2}}, {3, Words("FEED")}, {10, Words("2026-01-11")}}});
  HistoryGrid grid(table.Database());
  grid.SetUp(*FindDataGroup(2), "");
  grid.Find("1/11/2026");
  const std::optional<FoundCell> day = grid.OpenFoundDay();
  ASSERT_TRUE(day);
  EXPECT_EQ(day->row, 2);
  EXPECT_TRUE(grid.Row(2).open);
  EXPECT_FALSE(grid.Row(1).open);
  grid.Find("12-Jan-26");
  EXPECT_FALSE(grid.OpenFoundDay());
  grid.Find("2026");
  EXPECT_FALSE(grid.OpenFoundDay());
  grid.SetUp(*FindDataGroup(1), "");
  grid.Find("11-Jan-26");
  EXPECT_FALSE(grid.OpenFoundDay());
}

TEST_F(FoundRowsOfATable, EndWithEveryChangeOfWhatIsSearched) {
  StoreAny(5);
  HistoryGrid grid(table.Database());
  grid.SetUp(*FindDataGroup(0), "");
  const auto find = [&grid] {
    grid.Find("5");
    ASSERT_NE(grid.Found(), nullptr);
  };
  find();
  grid.Find(" ");
  EXPECT_EQ(grid.Found(), nullptr);
  find();
  grid.SortByColumn(7);
  EXPECT_EQ(grid.Found(), nullptr);
  find();
  grid.ShowPeriod({.from = ParseStoredDate("2011-03-05"), .to = {}});
  EXPECT_EQ(grid.Found(), nullptr);
  find();
  grid.SetUp(*FindDataGroup(3), "");
  EXPECT_EQ(grid.Found(), nullptr);
  find();
  grid.ExpandAll();
  EXPECT_NE(grid.Found(), nullptr);
  grid.Bind(table.Database());
  EXPECT_EQ(grid.Found(), nullptr);
  find();
  grid.MoveColumn(5, 1);
  EXPECT_EQ(grid.Found(), nullptr);
}

TEST_F(FoundRowsOfATable, OfAnEmptyTableAreNone) {
  HistoryGrid grid(table.Database());
  for (const int group : {0, 2, 4}) {
    grid.SetUp(*FindDataGroup(group), "");
    FindAll(grid, "5");
    EXPECT_TRUE(grid.Found()->IsComplete());
    EXPECT_THAT(RowsFound(grid), IsEmpty());
  }
}

TEST_F(FoundRowsOfATable, ADeletedRowIsReportedAndRowsStoredLaterAreLeftOut) {
  StoreAny(3);
  table.StoreAt(9999, {{5, Words("CORNER")}});
  HistoryGrid grid(table.Database());
  grid.SetUp(*FindDataGroup(0), "");
  table.StoreAt(99999, {{5, Words("CORNER")}});
  FindAll(grid, "corner");
  ASSERT_EQ(grid.Found()->Count(), 1);
  table.Exec("DELETE FROM Transactions WHERE rowid = 9999");
  EXPECT_FALSE(grid.OpenFound(0));
}

// Slices end with the table, whatever its rowids are.
TEST_F(FoundRowsOfATable, AreFoundAtBothEndsOfTheRowids) {
  constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
  table.StoreAt(-kHighest - 1, {{5, Words("CORN")}});
  table.StoreAt(1, {{5, Words("CORN")}});
  table.StoreAt(kHighest, {{5, Words("CORN")}});
  HistoryGrid grid(table.Database());
  grid.SetUp(*FindDataGroup(0), "");
  grid.Find("corn");
  int slices = 0;
  while (!grid.Found()->IsComplete()) {
    EXPECT_GE(grid.Found()->Percent(), 0);
    EXPECT_LE(grid.Found()->Percent(), 100);
    grid.FindMore();
    ASSERT_LT(++slices, 10);
  }
  EXPECT_EQ(grid.Found()->Count(), 3);
  EXPECT_EQ(grid.Found()->Percent(), 100);
}

TEST_F(FoundRowsOfATable, AreCountedWhileTheSearchGoesOn) {
  for (const std::int64_t rowid : {1, 5000, 10'000, 15'000}) {
    table.StoreAt(rowid, {{5, Words("CORN")}, {3, Words("BATCH")}});
  }
  HistoryGrid grid(table.Database());
  for (const auto& [group, in_order] : {std::pair(0, true), std::pair(6, false)}) {
    grid.SetUp(*FindDataGroup(group), "");
    grid.Find(group == 0 ? "corn" : "0");
    table.Exec("UPDATE Transactions SET Target = 0");
    grid.FindMore();
    grid.FindMore();
    EXPECT_FALSE(grid.Found()->IsComplete());
    EXPECT_EQ(grid.Found()->Count(), 2);
    EXPECT_GT(grid.Found()->Percent(), 0);
    EXPECT_LT(grid.Found()->Percent(), 100);
    EXPECT_EQ(grid.Found()->IsInOrder(), in_order);
  }
}

TEST_F(FoundRowsOfATable, AGroupIsFoundByTheBeginningOfItsValue) {
  table.Store({{{2, Words("HEIFER")}, {3, Words("FEED")}},
               {{2, Words("STEERS 1")}, {3, Words("BATCH")}},
               {{2, Words("STEERS 2")}, {3, Words("FEED")}}});
  HistoryGrid grid(table.Database());
  grid.SetUp(*FindDataGroup(3), "");
  EXPECT_EQ(grid.FirstGroupBeginning(1, "ste"), 2);
  EXPECT_EQ(grid.FirstGroupBeginning(3, "ste"), 2);
  EXPECT_EQ(grid.FirstGroupBeginning(1, "Steers 2"), 3);
  EXPECT_EQ(grid.FirstGroupBeginning(1, "teers"), 0);
  EXPECT_EQ(grid.FirstGroupBeginning(1, "recipe"), 0);
  grid.OpenGroup(3);  // to the inner groups only
  EXPECT_EQ(grid.FirstGroupBeginning(4, "f"), 4);
  EXPECT_EQ(grid.FirstGroupBeginning(4, "h"), 0);
  grid.OpenGroup(4);
  EXPECT_EQ(grid.FirstGroupBeginning(5, "f"), 0);  // a record
}

TEST_F(FoundRowsOfATable, AGroupOfADayIsFoundAsItIsShown) {
  table.Store({{{10, Words("2026-01-09")}}, {{10, Words("2026-01-11")}}});
  HistoryGrid grid(table.Database());
  grid.SetUp(*FindDataGroup(2), "");
  EXPECT_EQ(grid.FirstGroupBeginning(1, "11-j"), 2);
  EXPECT_EQ(grid.FirstGroupBeginning(1, "2026"), 0);
}

}  // namespace
}  // namespace vrx::testing
