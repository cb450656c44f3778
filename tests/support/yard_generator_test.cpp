#include "support/yard_generator.h"

#include <string>
#include <vector>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/date.h"
#include "base/error.h"
#include "database/summary.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class YardGenerator : public ::testing::Test {
 protected:
  std::int64_t Make(const YardYears& years) {
    return MakeYears(
        years,
        {.program_directory = VRX_BIN_DIR, .transactions = transactions_, .recipes = recipes_});
  }

  // The rows of a query, their values with "|" between them.
  std::vector<std::string> Ask(const std::string& query) const {
    SQLite::Database database(transactions_, SQLite::OPEN_READONLY);
    database.exec("ATTACH '" + recipes_.string() + "' AS Names");
    SQLite::Statement statement(database, query);
    std::vector<std::string> rows;
    while (statement.executeStep()) {
      std::string row;
      for (int column = 0; column < statement.getColumnCount(); ++column) {
        row += (column == 0 ? "" : "|") + statement.getColumn(column).getString();
      }
      rows.push_back(row);
    }
    return rows;
  }

  TempFolder folder_;
  std::filesystem::path transactions_ = folder_ / "YEARS.TDB";
  std::filesystem::path recipes_ = folder_ / "YEARS.RDB";
};

TEST_F(YardGenerator, MakesDatabasesOfThisSystem) {
  const std::int64_t rows = Make({.days = 30});
  const DatabaseSummary summary = ReadDatabaseSummary(transactions_);
  EXPECT_FALSE(summary.blank);
  EXPECT_EQ(summary.kind, DatabaseKind::kTransaction);
  EXPECT_EQ(summary.transaction.rows, rows);
  EXPECT_EQ(summary.transaction.first_date, ParseStoredDate("2016-01-04"));
  EXPECT_EQ(ReadDatabaseSummary(recipes_).kind, DatabaseKind::kRecipe);
  EXPECT_THAT(Ask("PRAGMA integrity_check"), ElementsAre("ok"));
}

TEST_F(YardGenerator, EndsWithTheRecordsAskedFor) {
  EXPECT_EQ(Make({.rows = 12345}), 12345);
  EXPECT_THAT(Ask("SELECT count(*) FROM Transactions"), ElementsAre("12345"));
}

TEST_F(YardGenerator, ADayIsThatOfAYardOf400Pens) {
  Make({.days = 30});
  EXPECT_THAT(Ask("SELECT count(*) / 30 BETWEEN 2300 AND 2700, "
                  "count(DISTINCT [Transaction]) / 30 BETWEEN 140 AND 170, "
                  "sum(Type = 'FEED') / 30 BETWEEN 950 AND 1050, count(DISTINCT Pen), "
                  "count(DISTINCT UserID) BETWEEN 3 AND 5, sum(UserID IS NULL) > 0 "
                  "FROM Transactions"),
              ElementsAre("1|1|1|400|1|1"));
}

TEST_F(YardGenerator, SomeLoadsAreFedAfterMidnight) {
  Make({.days = 60});
  EXPECT_THAT(Ask("SELECT count(*) BETWEEN 1 AND 20 FROM (SELECT 1 FROM Transactions "
                  "GROUP BY [Transaction] HAVING count(DISTINCT Date) = 2)"),
              ElementsAre("1"));
  // Of one type the records go through the days in order.
  EXPECT_THAT(Ask("SELECT sum(d < p) FROM (SELECT Date d, lag(Date) OVER (PARTITION BY Type ORDER "
                  "BY rowid) p FROM Transactions)"),
              ElementsAre("0"));
}

TEST_F(YardGenerator, WeightsAreInTheStepsOfTheIndicator) {
  Make({.days = 3});
  EXPECT_THAT(Ask("SELECT DISTINCT rowid FROM Transactions WHERE Type = 'FEED' AND "
                  "(ActualFeed % 5 <> 0 OR Target % 5 <> 0 OR ActualFeed <= 0)"),
              IsEmpty());
  EXPECT_THAT(Ask("SELECT DISTINCT rowid FROM Transactions WHERE Type = 'BATCH' AND "
                  "(ActualBatch * 2 <> round(ActualBatch * 2) OR Target <= 0)"),
              IsEmpty());
}

TEST_F(YardGenerator, PercentagesAndSharesAddUp) {
  Make({.days = 3});
  EXPECT_THAT(Ask("SELECT DISTINCT [Transaction] FROM Transactions WHERE Type = 'BATCH' "
                  "GROUP BY [Transaction] HAVING abs(sum(IngPercent) - 100) > 0.01"),
              IsEmpty());
  std::string shares;
  for (int id = 1; id <= 20; ++id) {
    shares += " - coalesce(" + IngredientWeightColumn(id) + ", 0)";
  }
  EXPECT_THAT(Ask("SELECT rowid FROM Transactions WHERE Type = 'FEED' AND abs(ActualFeed" + shares +
                  ") > 1"),
              IsEmpty());
}

TEST_F(YardGenerator, EveryNameIsInTheRecipeDatabase) {
  Make({.days = 3});
  for (const std::string column : {"Recipe", "Ingredient", "Pen"}) {
    std::string query = "SELECT DISTINCT ";
    query.append(column).append(" FROM Transactions WHERE ").append(column);
    query.append(" NOT IN (SELECT Name FROM Names.").append(column);
    query.append(" WHERE Description <> '')");
    EXPECT_THAT(Ask(query), IsEmpty()) << column;
  }
}

TEST_F(YardGenerator, ThePensRecipesChangeWithTheDaysOnFeed) {
  Make({.days = 40});
  EXPECT_THAT(Ask("SELECT count(*) > 50 FROM (SELECT 1 FROM Transactions WHERE Type = 'FEED' "
                  "GROUP BY Pen HAVING count(DISTINCT Recipe) > 1)"),
              ElementsAre("1"));
}

TEST_F(YardGenerator, TheSameSeedMakesTheSameRecords) {
  const TempFolder other;
  const YardFiles again{.program_directory = VRX_BIN_DIR, .transactions = other / "AGAIN.TDB"};
  const std::string sum =
      "SELECT sum(ActualBatch) || '|' || sum(ActualFeed) || '|' || sum(Ing01Wt) || '|' || "
      "count(UserID) FROM Transactions";
  Make({.seed = 7, .days = 2});
  MakeYears({.seed = 7, .days = 2}, again);
  SQLite::Database database(again.transactions, SQLite::OPEN_READONLY);
  EXPECT_THAT(Ask(sum), ElementsAre(database.execAndGet(sum).getString()));
  EXPECT_EQ(ReadAll(transactions_), ReadAll(again.transactions));
}

TEST_F(YardGenerator, AnExistingDatabaseIsNotReplaced) {
  folder_.Write("YEARS.TDB", "mine");
  EXPECT_THROW(Make({.days = 1}), Error);
  EXPECT_EQ(ReadAll(transactions_), "mine");
}

}  // namespace
}  // namespace vrx::testing
