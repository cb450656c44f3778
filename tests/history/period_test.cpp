#include "history/period.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "history/history_grid.h"
#include "history/period_rows.h"
#include "support/small_history.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Date Day(const char* stored) { return ParseStoredDate(stored).value(); }

Period Days(const char* from, const char* to) { return {.from = Day(from), .to = Day(to)}; }

TEST(Periods, ContainBothOfTheirDays) {
  const Date today = Day("2026-03-05");
  EXPECT_EQ(PeriodOf(PeriodChoice::kAll, today), Period());
  EXPECT_EQ(PeriodOf(PeriodChoice::kToday, today), Days("2026-03-05", "2026-03-05"));
  EXPECT_EQ(PeriodOf(PeriodChoice::kLast7Days, today), Days("2026-02-27", "2026-03-05"));
  EXPECT_EQ(PeriodOf(PeriodChoice::kThisMonth, today), Days("2026-03-01", "2026-03-31"));
  EXPECT_EQ(PeriodOf(PeriodChoice::kLastMonth, today), Days("2026-02-01", "2026-02-28"));
}

TEST(Periods, OfMonthsCrossTheYearAndKnowLeapYears) {
  EXPECT_EQ(PeriodOf(PeriodChoice::kLastMonth, Day("2026-01-31")),
            Days("2025-12-01", "2025-12-31"));
  EXPECT_EQ(PeriodOf(PeriodChoice::kThisMonth, Day("2024-02-10")),
            Days("2024-02-01", "2024-02-29"));
  EXPECT_EQ(PeriodOf(PeriodChoice::kLast7Days, Day("2026-01-03")),
            Days("2025-12-28", "2026-01-03"));
}

TEST(Periods, AreImpossibleIfTheyEndBeforeTheyBegin) {
  EXPECT_TRUE(Period().IsPossible());
  EXPECT_TRUE(Days("2026-01-05", "2026-01-05").IsPossible());
  EXPECT_FALSE(Days("2026-01-06", "2026-01-05").IsPossible());
  EXPECT_TRUE((Period{.from = Day("2026-01-06")}).IsPossible());
}

TEST(Periods, AreNamedByTheirDays) {
  EXPECT_EQ(PeriodText({}), "");
  EXPECT_EQ(PeriodText(Days("2026-01-05", "2026-01-11")), "05-Jan-26 to 11-Jan-26");
  EXPECT_EQ(PeriodText(Days("2026-01-05", "2026-01-05")), "05-Jan-26");
  EXPECT_EQ(PeriodText({.from = Day("2026-01-05")}), "from 05-Jan-26");
  EXPECT_EQ(PeriodText({.to = Day("2026-01-05")}), "to 05-Jan-26");
}

TEST(RowRuns, JoinConsecutiveRowsAddedInAnyOrder) {
  RowRuns rows;
  for (const std::int64_t rowid : {7, 8, 3, 1, 2, 20, 9}) {
    rows.Add(rowid);
  }
  rows.Settle();
  EXPECT_EQ(rows.Count(), 7);
  EXPECT_EQ(rows.Lowest(), 1);
  EXPECT_EQ(rows.Highest(), 20);
  EXPECT_THAT(rows.Slice(0, 100), ElementsAre(1, 2, 3, 7, 8, 9, 20));
  EXPECT_THAT(rows.Slice(2, 3), ElementsAre(3, 7, 8));
  EXPECT_THAT(rows.Slice(6, 2), ElementsAre(20));
  EXPECT_THAT(rows.Slice(7, 2), IsEmpty());
  for (std::int64_t rowid = 0; rowid <= 21; ++rowid) {
    const bool added = (rowid >= 1 && rowid <= 3) || (rowid >= 7 && rowid <= 9) || rowid == 20;
    EXPECT_EQ(rows.Contains(rowid), added) << rowid;
  }
}

class GridOfAPeriod : public ::testing::Test {
 protected:
  std::vector<std::string> Lines() { return ShownLines(grid); }

  TempFolder folder;
  SQLite::Database transactions = SmallHistory(folder);
  SQLite::Database recipes = SmallRecipes(folder);
  std::optional<SQLite::Database> other;
  HistoryGrid grid{transactions};
};

TEST_F(GridOfAPeriod, ShowsTheRecordsOfItsDaysAndTheirTotals) {
  grid.SetUp(*FindDataGroup(6), "");
  grid.ShowPeriod(Days("2011-03-14", "2011-03-14"));
  grid.ExpandAll();
  EXPECT_THAT(Lines(), ElementsAre("[1] Ingred:  CORN", "2: 1|STEERS|998|1000|2|08:30 AM|14-Mar-11",
                                   "=1: Total:||998|1000|||", "[1] Ingred:  HAY",
                                   "2: 1|STEERS|602.5|600|2|08:31 AM|14-Mar-11",
                                   "=1: Total:||602.5|600|||"));
}

TEST_F(GridOfAPeriod, ASplitTransactionBelongsToItByEachRecordsOwnDate) {
  grid.SetUp(*FindDataGroup(1), "");
  grid.ShowPeriod(Days("2011-03-15", "2011-03-16"));
  EXPECT_THAT(Lines(), ElementsAre("[1] Trans:1", "[1] Trans:2", "[1] Trans:3"));
  grid.OpenGroup(1);
  EXPECT_THAT(Lines(),
              ElementsAre("[1] Trans:1", "[2] FEED", "=1: ||||||||", "[1] Trans:2", "[1] Trans:3"));
}

TEST_F(GridOfAPeriod, KeepsItForOtherGroupsNamesAndDatabases) {
  grid.ShowPeriod(Days("2011-03-14", "2011-03-14"));
  grid.SetUp(*FindDataGroup(3), "");
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:STEERS"));
  grid.SetUp(*FindDataGroup(9), "");
  grid.ShowName("A01");
  EXPECT_THAT(Lines(), IsEmpty());
  other.emplace(SmallHistory(folder, "OTHER.TDB"));
  grid.SetUp(*FindDataGroup(3), "");
  grid.Bind(*other);
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:STEERS"));
  EXPECT_EQ(grid.ShownPeriod(), Days("2011-03-14", "2011-03-14"));
  grid.ShowPeriod({});
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:", "[1] Recipe:HEIFER", "[1] Recipe:STEERS"));
}

TEST_F(GridOfAPeriod, CountsTheRecordsOfTheGroupThatHaveNoReadableDate) {
  OpenDatabase(folder / "SMALL.TDB", Access::kWrite)
      .exec("UPDATE Transactions SET Date = '2011-02-30' WHERE Pen = 'A01'");
  grid.SetUp(*FindDataGroup(0), "");
  EXPECT_EQ(grid.UndatedCount(), 0);
  grid.ShowPeriod(Days("2000-01-01", "2030-12-31"));
  EXPECT_EQ(grid.UndatedCount(), 3);
  EXPECT_EQ(grid.RowCount(), 5);
  grid.SetUp(*FindDataGroup(6), "");  // batches only
  EXPECT_EQ(grid.UndatedCount(), 1);
  grid.SetUp(*FindDataGroup(9), "A01");
  EXPECT_EQ(grid.UndatedCount(), 2);
}

TEST_F(GridOfAPeriod, SeesWhatAnotherProgramStoredAtTheNextSetUp) {
  grid.SetUp(*FindDataGroup(0), "");
  grid.ShowPeriod(Days("2011-03-14", "2011-03-14"));
  EXPECT_EQ(grid.RowCount(), 2);
  OpenDatabase(folder / "SMALL.TDB", Access::kWrite)
      .exec("UPDATE Transactions SET Date = '2011-03-14' WHERE [Transaction] = 3");
  EXPECT_EQ(grid.RowCount(), 2);
  grid.SetUp(*FindDataGroup(0), "");
  EXPECT_EQ(grid.RowCount(), 3);
}

TEST_F(GridOfAPeriod, KeepsTheSortOrder) {
  grid.SetUp(*FindDataGroup(0), "");
  grid.SortByColumn(kActualFeedColumn);
  grid.SortByColumn(kActualFeedColumn);
  grid.ShowPeriod(Days("2011-03-15", "2011-03-15"));
  std::vector<std::string> feeds;
  for (std::int64_t row = 1; row <= grid.RowCount(); ++row) {
    feeds.push_back(grid.Row(row).cells[kActualFeedColumn - 1]);
  }
  EXPECT_THAT(feeds, ElementsAre("810.5", "780", "495.25", "0", "0"));
}

}  // namespace
}  // namespace vrx::testing
