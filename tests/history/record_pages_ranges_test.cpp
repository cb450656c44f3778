#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "database/transactions.h"
#include "history/data_group.h"
#include "history/history_table.h"
#include "history/record_pages.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t kFar = 1'000'000;  // transactions at this distance are in different ranges

// Feeds of pen A01 with these transactions, rowids from 1; a feed of another pen follows each.
class RecordsInRanges : public ::testing::Test {
 protected:
  void Store(const std::vector<CellValue>& transactions) {
    std::vector<Cells> rows;
    for (const CellValue& transaction : transactions) {
      for (const char* pen : {"A01", "B"}) {
        rows.push_back({{1, transaction}, {3, std::string("FEED")}, {6, std::string(pen)}});
      }
    }
    table_.Store(rows);
  }

  RecordRanges Read() {
    query_.SearchBy(*ReadTransactionRanges(table_.Database(), query_.RangedColumns()));
    return {statements_, query_, {std::string("A01")}};
  }
  SQLite::Database& Database() { return table_.Database(); }

 private:
  HistoryTable table_;
  Statements statements_{table_.Database()};
  GroupQuery query_{*FindDataGroup(8), ""};
};

TEST_F(RecordsInRanges, FollowEachOtherAsTheyWereStored) {
  Store({1, 2, 2, kFar, kFar, 3 * kFar});
  RecordRanges ranges = Read();
  EXPECT_TRUE(ranges.AreStoredInTurn());
  EXPECT_THAT(ranges.Rowids(0, 6), ElementsAre(1, 3, 5, 7, 9, 11));
  EXPECT_THAT(ranges.Rowids(1, 3), ElementsAre(3, 5, 7));
  EXPECT_THAT(ranges.Rowids(3, 2), ElementsAre(7, 9));
  EXPECT_THAT(ranges.Rowids(4, 9), ElementsAre(9, 11));
  EXPECT_THAT(ranges.Rowids(6, 1), IsEmpty());
  EXPECT_THAT(Read().Rowids(4, 1), ElementsAre(9)) << "before any other page";
}

TEST_F(RecordsInRanges, GoByTheirRowsNotByTheirNumbers) {
  Store({CellValue(3 * kFar), CellValue(-kFar), CellValue(-kFar), CellValue(), CellValue(1)});
  RecordRanges ranges = Read();
  EXPECT_TRUE(ranges.AreStoredInTurn());
  EXPECT_THAT(ranges.Rowids(0, 5), ElementsAre(1, 3, 5, 7, 9));
  EXPECT_THAT(ranges.Rowids(2, 2), ElementsAre(5, 7));
}

TEST_F(RecordsInRanges, AreNotInTurnIfATransactionIsStoredAmongThoseOfAnotherRange) {
  Store({1, kFar, 2});
  EXPECT_FALSE(Read().AreStoredInTurn());
}

// A group can have most of the table, and its first page is shown while the operator scrolls.
TEST_F(RecordsInRanges, OfAFirstPageAreFoundWithoutReadingTheOthers) {
  std::vector<CellValue> transactions(3000, CellValue(1));
  transactions.resize(6000, CellValue(kFar));
  transactions.resize(9000, CellValue(2 * kFar));
  Store(transactions);
  std::int64_t steps = 0;
  sqlite3_progress_handler(
      Database().getHandle(), 1,
      [](void* counted) {
        ++*static_cast<std::int64_t*>(counted);
        return 0;
      },
      &steps);
  RecordRanges ranges = Read();
  EXPECT_EQ(ranges.Rowids(0, 32).size(), 32U);
  EXPECT_LT(steps, 3000 * 6) << "those of the first range are counted";
  steps = 0;
  EXPECT_EQ(ranges.Rowids(32, 32).size(), 32U);
  EXPECT_LT(steps, 3000) << "once";
  EXPECT_THAT(ranges.Rowids(8999, 32), ElementsAre(17'999));
}

TEST_F(RecordsInRanges, OfAnEmptyGroupAreEmpty) {
  RecordRanges ranges = Read();
  EXPECT_TRUE(ranges.AreStoredInTurn());
  EXPECT_THAT(ranges.Rowids(0, 5), IsEmpty());
}

}  // namespace
}  // namespace vrx::testing
