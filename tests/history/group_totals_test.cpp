#include "history/group_totals.h"

#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include <SQLiteCpp/Exception.h>
#include <gtest/gtest.h>

#include "database/exact_sum.h"
#include "database/transactions.h"
#include "history/columns.h"
#include "history/history_table.h"
#include "history/outline.h"

namespace vrx::testing {
namespace {

CellValue SomeText(const char* text) { return std::string(text); }
CellValue WholeNumber(std::int64_t number) { return number; }

// `count` feeds of 0.1 each, so many of one transaction.
std::vector<Cells> Feeds(std::int64_t count, std::int64_t per_transaction) {
  std::vector<Cells> rows;
  for (std::int64_t row = 0; row < count; ++row) {
    rows.push_back({{1, WholeNumber(1 + row / per_transaction)},
                    {2, SomeText("STEERS")},
                    {3, SomeText("FEED")},
                    {4, SomeText("9")},
                    {6, SomeText("P1")},
                    {kTargetColumn, 0.2},
                    {kActualFeedColumn, 0.1}});
  }
  return rows;
}

// The slices of a view with everything open.
class Slices {
 public:
  Slices(SQLite::Database& database, int group)
      : statements_(database),
        query_(*FindDataGroup(group), "P1"),
        totals(statements_, query_, *FindDataGroup(group)) {
    RegisterExactSum(database);
    if (!query_.RangedColumns().empty()) {
      query_.SearchBy(ReadTransactionRanges(database, query_.RangedColumns()).value());
    }
    outline = ReadWholeOutline(statements_, query_);
    totals.SetColumns({kTargetColumn, kActualFeedColumn}, true);
  }

  // Slices of this length until the sums are known. Returns their number.
  int ReadAll(const GroupPath& path, std::int64_t records) {
    int slices = 0;
    while (totals.Find(path) == nullptr) {
      const std::int64_t read = totals.Read(outline, path, records);
      EXPECT_LE(read, records + SlicedTotals::kSearchCost);
      EXPECT_GT(read, 0);
      ++slices;
    }
    return slices;
  }
  CellValue Feed(const GroupPath& path) {
    return totals.Find(path)->cells.at(kActualFeedColumn - 1);
  }

 private:
  Statements statements_;
  GroupQuery query_;

 public:
  Outline outline{0};
  SlicedTotals totals;
};

class SlicedTotalsTest : public ::testing::TestWithParam<int> {
 protected:
  HistoryTable table;
};

// Half of a slice of 30 is the cost of its one search.
TEST_P(SlicedTotalsTest, ASliceReadsNoMoreThanItsRecords) {
  table.Store(Feeds(1000, 1000));
  Slices slices(table.Database(), GetParam());
  for (std::uint32_t level = 1; level <= FindDataGroup(GetParam())->levels.size(); ++level) {
    SCOPED_TRACE("level " + std::to_string(level));
    EXPECT_GE(slices.ReadAll(GroupPath(level, 0), 30), 1000 / 30);
    EXPECT_EQ(slices.Feed(GroupPath(level, 0)), CellValue(100.0));
  }
}

// Also those that end with the last record of a transaction, a range, a part or the group.
TEST_P(SlicedTotalsTest, SlicesOfAnyLengthGiveTheSumOfAllRecords) {
  std::vector<Cells> rows = Feeds(24, 3);
  for (std::size_t row = 0; row < rows.size(); row += 5) {
    rows[row][1] = WholeNumber(50'000);
  }
  rows[7][3] = CellValue();
  rows[9][1] = CellValue();
  rows[11][3] = SomeText("BATCH");
  table.Store(rows);
  for (std::uint32_t level = 1; level <= FindDataGroup(GetParam())->levels.size(); ++level) {
    Slices whole(table.Database(), GetParam());
    const GroupPath path(level, 0);
    const GroupSums sums = whole.totals.Load(whole.outline, path);
    for (std::int64_t length = 1; length <= 30; ++length) {
      SCOPED_TRACE("level " + std::to_string(level) + ", slices of " + std::to_string(length));
      Slices slices(table.Database(), GetParam());
      slices.ReadAll(path, length);
      EXPECT_EQ(slices.totals.Find(path)->cells, sums.cells);
      EXPECT_EQ(slices.totals.Find(path)->records, sums.records);
    }
  }
}

TEST_P(SlicedTotalsTest, GroupsThatAreReadByTurnsAreEachReadOnce) {
  std::vector<Cells> rows = Feeds(200, 200);
  for (std::size_t row = 0; row < rows.size(); row += 2) {
    rows[row][2] = SomeText("BULLS");
    rows[row][4] = SomeText("1");
    rows[row][6] = SomeText("P2");
    rows[row][1] = WholeNumber(3);
  }
  table.Store(rows);
  const auto count = [&](bool by_turns) {
    Slices slices(table.Database(), GetParam());
    int read = 0;
    const std::vector<GroupPath> groups{{0}, {1}};
    for (std::size_t turn = 0;
         slices.totals.Find({0}) == nullptr || slices.totals.Find({1}) == nullptr; ++turn) {
      const bool first = by_turns ? turn % 2 == 0 : slices.totals.Find({0}) == nullptr;
      slices.totals.Read(slices.outline, groups.at(first ? 0 : 1), 7);
      ++read;
    }
    EXPECT_EQ(slices.Feed({0}), CellValue(10.0));
    EXPECT_EQ(slices.Feed({1}), CellValue(10.0));
    return read;
  };
  EXPECT_EQ(count(true), count(false));
}

// By transaction, recipe, pen and user.
INSTANTIATE_TEST_SUITE_P(Group, SlicedTotalsTest, ::testing::Values(1, 3, 8, 12));

TEST(SlicedTotals, AFailureKeepsWhatWasReadBefore) {
  HistoryTable table;
  table.Store(Feeds(200, 10));
  const int undisturbed = Slices(table.Database(), 3).ReadAll({0}, 40);
  Slices slices(table.Database(), 3);
  slices.totals.Read(slices.outline, {0}, 40);
  slices.totals.Read(slices.outline, {0}, 40);
  table.Exec("ALTER TABLE Transactions RENAME TO Gone");
  EXPECT_THROW(slices.totals.Read(slices.outline, {0}, 40), SQLite::Exception);
  table.Exec("ALTER TABLE Gone RENAME TO Transactions");
  EXPECT_EQ(slices.ReadAll({0}, 40), undisturbed - 2);
  EXPECT_EQ(slices.Feed({0}), CellValue(20.0));
}

TEST(SlicedTotals, OfManyColumnsAreReadInSlicesOfFewerRecords) {
  HistoryTable table;
  table.Store(Feeds(1000, 1000));
  Slices slices(table.Database(), 8);
  const int few = slices.ReadAll({0}, 100);
  std::vector<int> columns(40);
  std::iota(columns.begin(), columns.end(), kFirstIngredientColumn);
  slices.totals.SetColumns(columns, true);
  EXPECT_GT(slices.ReadAll({0}, 100), 2 * few);
}

TEST(SlicedTotals, OfLargeGroupsStayWhileManySmallOnesAreRead) {
  HistoryTable table;
  table.Store(Feeds(5000, 1));
  Slices slices(table.Database(), 11);
  slices.ReadAll({0}, 10'000);
  for (std::uint32_t transaction = 0; transaction < 5000; ++transaction) {
    slices.totals.Read(slices.outline, {0, transaction}, 10);
  }
  EXPECT_NE(slices.totals.Find({0, 4999}), nullptr);
  EXPECT_EQ(slices.totals.Find({0, 0}), nullptr);
  ASSERT_NE(slices.totals.Find({0}), nullptr);
  EXPECT_EQ(slices.Feed({0}), CellValue(500.0));
}

}  // namespace
}  // namespace vrx::testing
