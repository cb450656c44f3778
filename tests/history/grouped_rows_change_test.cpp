#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <SQLiteCpp/Column.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "history/columns.h"
#include "history/grouped_rows.h"
#include "history/history_table.h"
#include "support/rival_writer.h"

namespace vrx::testing {
namespace {

using ::testing::Each;

constexpr std::int64_t kRecords = 3000;

// Damages the start of the page that contains these bytes.
void DamagePageOf(const std::filesystem::path& path, const std::string& bytes) {
  const std::string whole = ReadAll(path);
  const std::size_t place = whole.find(bytes);
  ASSERT_NE(place, std::string::npos);
  const auto page_size = static_cast<std::size_t>(
      SQLite::Database(path, SQLite::OPEN_READONLY).execAndGet("PRAGMA page_size").getInt());
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(static_cast<std::streamoff>(place / page_size * page_size));
  file << std::string(64, '\xEE');
}

// One pen, one recipe, 10 transactions, and more records than the cached pages hold.
class GroupedRowsWhileTheTableChanges : public ::testing::Test {
 protected:
  void SetUp() override { table_.Store(Records(kRecords)); }

  static std::vector<Cells> Records(std::int64_t count) {
    std::vector<Cells> rows;
    for (std::int64_t i = 0; i < count; ++i) {
      rows.push_back({{1, CellValue(1 + i % 10)},
                      {2, CellValue("STEERS")},
                      {3, CellValue("FEED")},
                      {6, CellValue("PEN1")},
                      {7, CellValue(1.0)},
                      {9, CellValue(std::to_string(i))}});
    }
    return rows;
  }

  void Show(int group) {
    rows_.Show(*FindDataGroup(group), "");
    rows_.OpenAll();
  }

  std::string TimeOf(std::int64_t row) { return TextOf(rows_.Row(row).cells.at(8)); }

  HistoryTable table_;
  GroupedRows rows_{table_.Database()};
};

TEST_F(GroupedRowsWhileTheTableChanges, RowsStoredMeanwhileShowAfterTheNextShow) {
  for (const int group : {0, 1, 8}) {
    Show(group);
    rows_.CloseAll();
    const std::int64_t closed = rows_.RowCount();
    rows_.OpenAll();
    const std::int64_t open = rows_.RowCount();
    table_.Store(Records(500));
    EXPECT_EQ(rows_.RowCount(), open);
    rows_.CloseAll();
    EXPECT_EQ(rows_.RowCount(), closed);
    rows_.OpenAll();
    EXPECT_EQ(rows_.RowCount(), open);
    Show(group);
    EXPECT_EQ(rows_.RowCount(), open + 500);
  }
}

TEST_F(GroupedRowsWhileTheTableChanges, WhatIsReadLaterStillEndsWhereTheTableEndedAtTheShow) {
  rows_.Show(*FindDataGroup(8), "");
  table_.Store(Records(500));
  rows_.Open(1);
  EXPECT_EQ(rows_.RowCount(), 1 + kRecords + 1);
  EXPECT_EQ(TimeOf(1 + kRecords), "2999");
  EXPECT_EQ(rows_.Row(2 + kRecords).cells[6], CellValue(3000.0));
  rows_.SortBy(9, true);
  EXPECT_EQ(TimeOf(1 + kRecords), "999");
}

TEST_F(GroupedRowsWhileTheTableChanges, ARecordThatVanishedIsARowOfNulls) {
  for (const int sort_column : {0, 9}) {
    for (const int group : {0, 8}) {
      Show(group);
      rows_.SortBy(sort_column, true);
      const std::int64_t count = rows_.RowCount();
      const std::int64_t last_record = group == 0 ? count : count - 1;
      TimeOf(2);
      table_.Exec("CREATE TABLE Kept AS SELECT * FROM Transactions; DELETE FROM Transactions");
      EXPECT_EQ(rows_.RowCount(), count);
      const HistoryRow gone = rows_.Row(last_record);
      EXPECT_EQ(gone.kind, HistoryRowKind::kRecord);
      EXPECT_EQ(gone.cells.size(), std::size_t{kHistoryColumnCount});
      EXPECT_THAT(gone.cells, Each(CellValue()));
      table_.Exec("INSERT INTO Transactions SELECT * FROM Kept; DROP TABLE Kept");
    }
  }
}

TEST_F(GroupedRowsWhileTheTableChanges, FewerRecordsThanCountedLeaveEmptyRowsAtTheEnd) {
  Show(0);
  table_.Exec("DELETE FROM Transactions WHERE rowid % 2 = 0");
  for (const std::int64_t row : {1500, 3000, 1, 2999, 700}) {
    EXPECT_EQ(rows_.Row(row).cells.size(), std::size_t{kHistoryColumnCount}) << row;
  }
  EXPECT_EQ(TimeOf(2), "2");
}

TEST_F(GroupedRowsWhileTheTableChanges, AMissingTableIsAnErrorAndTheViewStaysAsItWas) {
  Show(1);
  rows_.CloseAll();
  rows_.Open(1);
  const std::int64_t count = rows_.RowCount();
  table_.Exec("ALTER TABLE Transactions RENAME TO Elsewhere");
  try {
    rows_.Show(*FindDataGroup(8), "");
    ADD_FAILURE() << "shown";
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.Number(), kInvalidTableError);
  }
  EXPECT_EQ(rows_.RowCount(), count);
  EXPECT_EQ(rows_.Row(1).group, CellValue(std::int64_t{1}));
  table_.Exec("ALTER TABLE Elsewhere RENAME TO Transactions");
  EXPECT_EQ(rows_.Row(count).group, CellValue(std::int64_t{10}));
  rows_.OpenAll();
  EXPECT_EQ(rows_.RowCount(), 10 * 4 + kRecords);
}

TEST_F(GroupedRowsWhileTheTableChanges, AFailedOpeningLeavesTheGroupClosed) {
  rows_.Show(*FindDataGroup(1), "");
  table_.Exec("ALTER TABLE Transactions RENAME TO Elsewhere");
  EXPECT_THROW(rows_.Open(1), DatabaseError);
  EXPECT_THROW(rows_.OpenAll(), DatabaseError);
  EXPECT_EQ(rows_.RowCount(), 10);
  EXPECT_FALSE(rows_.Row(1).open);
  table_.Exec("ALTER TABLE Elsewhere RENAME TO Transactions");
  rows_.Open(1);
  EXPECT_EQ(rows_.RowCount(), 12);
}

TEST_F(GroupedRowsWhileTheTableChanges, RecordsAndTotalsThatCannotBeReadAreErrors) {
  Show(8);
  table_.Exec("ALTER TABLE Transactions RENAME TO Elsewhere");
  EXPECT_THROW(rows_.Row(2), DatabaseError);
  EXPECT_THROW(rows_.Row(rows_.RowCount()), DatabaseError);
  rows_.SortBy(7, true);
  EXPECT_THROW(rows_.Row(2), DatabaseError);
  table_.Exec("ALTER TABLE Elsewhere RENAME TO Transactions");
  EXPECT_EQ(TimeOf(2), "0");
  EXPECT_EQ(rows_.Row(rows_.RowCount()).cells[6], CellValue(3000.0));
}

TEST_F(GroupedRowsWhileTheTableChanges, NothingStaysOpenAgainstAWriter) {
  for (const DataGroup& group : DataGroups()) {
    rows_.Show(group, "STEERS");
    rows_.OpenAll();
    for (std::int64_t row = 1; row <= rows_.RowCount(); row += 97) {
      rows_.Row(row);
    }
    EXPECT_NO_THROW(OpenDatabase(table_.Path(), Access::kWrite, std::chrono::milliseconds(0))
                        .exec("BEGIN EXCLUSIVE; ROLLBACK"));
  }
}

// All queries of one call see the same state of the table.
TEST(GroupedRows, KeepOtherProgramsFromStoringBetweenTwoQueries) {
  for (const int group : {1, 3, 8}) {
    RivalWriter rival;
    HistoryTable table;
    table.Store({{{1, CellValue(std::int64_t{1})},
                  {2, CellValue("STEERS")},
                  {3, CellValue("FEED")},
                  {6, CellValue("PEN1")},
                  {7, CellValue(1.0)}}});
    GroupedRows rows(table.Database());
    rival.Start(table.Path(), "INSERT INTO Transactions (Recipe) VALUES ('NEW')");
    rows.Show(*FindDataGroup(group), "");
    rival.Stop();
    EXPECT_GT(rival.Tries(), 0) << group;
    EXPECT_EQ(rival.Stored(), 0) << group;
    EXPECT_NO_THROW(table.Exec("INSERT INTO Transactions (Recipe) VALUES ('LATER')"));
  }
}

// Recently read records keep their values; the others are read again.
TEST_F(GroupedRowsWhileTheTableChanges, TheThousandRecordsReadLastAreHeld) {
  Show(0);
  TimeOf(1);
  table_.Exec("UPDATE Transactions SET Time = 'new'");
  for (std::int64_t row = 33; row <= 1024; row += 32) {
    EXPECT_EQ(TimeOf(row), "new");
  }
  EXPECT_EQ(TimeOf(1), "0");
  TimeOf(1025);  // evicts the records from 33 on, which were read first
  table_.Exec("UPDATE Transactions SET Time = 'newer'");
  EXPECT_EQ(TimeOf(1), "0");
  EXPECT_EQ(TimeOf(65), "new");
  EXPECT_EQ(TimeOf(33), "newer");
}

// Sums over many records take long: they stay when the others make room.
TEST(GroupedRows, TotalsOfLargeGroupsAreHeldAmongThoseOfManyOthers) {
  HistoryTable table;
  std::vector<Cells> records(1000, {{3, CellValue("FEED")}, {6, CellValue("A")}, {7, 1.0}});
  for (int pen = 1000; pen < 5200; ++pen) {
    records.push_back(
        {{3, CellValue("FEED")}, {6, CellValue("P" + std::to_string(pen))}, {7, 1.0}});
  }
  table.Store(records);
  GroupedRows rows(table.Database());
  rows.Show(*FindDataGroup(8), "");
  rows.OpenAll();
  const std::int64_t large = 1 + 1000 + 1;
  const std::int64_t first_other = large + 3;  // its group and its record are above
  for (std::int64_t row = large; row <= rows.RowCount(); row += 3) {
    rows.Row(row);
  }
  table.Exec("UPDATE Transactions SET Target = 2");
  EXPECT_EQ(rows.Row(large).cells[6], CellValue(1000.0));
  EXPECT_EQ(rows.Row(first_other).cells[6], CellValue(2.0));
}

// Another program moved a record into a group: the group keeps its counted number of rows.
TEST_F(GroupedRowsWhileTheTableChanges, ASortFollowsARecordWithinTheRowsOfItsGroup) {
  table_.Exec(
      "UPDATE Transactions SET Pen = 'A' WHERE rowid <= 3; DELETE FROM Transactions WHERE "
      "rowid > 4");
  rows_.Show(*FindDataGroup(8), "");
  rows_.Open(1);
  ASSERT_EQ(rows_.RowCount(), 6);
  table_.Exec("UPDATE Transactions SET Pen = 'A'");
  const std::int64_t row = rows_.SortBy(9, false, 2);
  EXPECT_EQ(rows_.KindOf(row), HistoryRowKind::kRecord);
}

TEST_F(GroupedRowsWhileTheTableChanges, MayBeReadInsideATransactionOfTheCaller) {
  table_.Database().exec("BEGIN");
  Show(8);
  EXPECT_EQ(TimeOf(2), "0");
  EXPECT_NO_THROW(table_.Database().exec("COMMIT"));
}

TEST_F(GroupedRowsWhileTheTableChanges, ADamagedPageIsAnErrorForItsRowsOnly) {
  const std::filesystem::path copy = table_.Path().string() + ".copy";
  std::filesystem::copy_file(table_.Path(), copy);
  // The texts and the time of a record, concatenated.
  DamagePageOf(copy, "STEERSFEEDPEN11500");
  SQLite::Database damaged = OpenDatabase(copy, Access::kRead);
  GroupedRows rows(damaged);
  rows.Show(*FindDataGroup(0), "");
  ASSERT_EQ(rows.RowCount(), kRecords);
  int failed = 0;
  int read = 0;
  for (std::int64_t row = 1; row <= kRecords; row += 50) {
    try {
      rows.Row(row);
      ++read;
    } catch (const DatabaseError&) {
      ++failed;
    }
  }
  EXPECT_GT(read, 0);
  EXPECT_GT(failed, 0);
  EXPECT_EQ(rows.RowCount(), kRecords);
}

}  // namespace
}  // namespace vrx::testing
