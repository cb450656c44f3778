
#include "database/summary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/database_files.h"
#include "support/rival_writer.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

Date Day(int year, unsigned month, unsigned day) {
  return std::chrono::year{year} / std::chrono::month{month} / std::chrono::day{day};
}

TEST(Summary, OfATemplateCountsNothing) {
  const DatabaseSummary recipe = ReadDatabaseSummary(TemplatePath(DatabaseKind::kRecipe));
  EXPECT_EQ(recipe.kind, DatabaseKind::kRecipe);
  EXPECT_TRUE(recipe.blank);
  EXPECT_EQ(recipe.unit, "");
  EXPECT_EQ(recipe.created, std::nullopt);
  EXPECT_EQ(recipe.modified, std::nullopt);
  EXPECT_EQ(recipe.recipe.ingredients + recipe.recipe.recipes + recipe.recipe.pens, 0);

  const DatabaseSummary rows = ReadDatabaseSummary(TemplatePath(DatabaseKind::kTransaction));
  EXPECT_EQ(rows.kind, DatabaseKind::kTransaction);
  EXPECT_TRUE(rows.blank);
  EXPECT_EQ(rows.transaction.rows, 0);
  EXPECT_EQ(rows.transaction.transactions, 0);
  EXPECT_EQ(rows.transaction.first_date, std::nullopt);
  EXPECT_EQ(rows.transaction.last_date, std::nullopt);
}

TEST(Summary, CountsTheRecordsInUse) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  Alter(path,
        "UPDATE BrantockDatabase SET dBType = 'USER_RECIPE_DB';"
        "UPDATE UnitsOfMeasure SET UoM = 'LB';"
        "UPDATE History SET Created = '2026-01-05';"
        "UPDATE Ingredient SET Description = 'Corn' WHERE ID <= 14;"
        "UPDATE Recipe SET Description = 'Steers' WHERE ID <= 9;"
        "UPDATE Recipe SET Name = 'NAMED', RationTarget = '5' WHERE ID = 50;"
        "UPDATE Pen SET FeedAmount = '150' WHERE ID <= 30;"
        "UPDATE Pen SET Description = 'North' WHERE ID BETWEEN 26 AND 40");
  const DatabaseSummary summary = ReadDatabaseSummary(path);
  EXPECT_EQ(summary.kind, DatabaseKind::kRecipe);
  EXPECT_FALSE(summary.blank);
  EXPECT_EQ(summary.unit, "LB");
  EXPECT_EQ(summary.created, Day(2026, 1, 5));
  EXPECT_EQ(summary.modified, std::nullopt);
  EXPECT_EQ(summary.recipe.ingredients, 14);
  EXPECT_EQ(summary.recipe.recipes, 9);
  EXPECT_EQ(summary.recipe.pens, 40);
}

TEST(Summary, CountsRowsAndDifferentTransactionsAndTheirDays) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.TDB", DatabaseKind::kTransaction);
  Alter(path,
        "UPDATE BrantockDatabase SET dBType = 'USER_TRANS_DB';"
        "UPDATE UnitsOfMeasure SET UoM = 'KG';"
        "UPDATE History SET Created = '2026-01-05', Modified = '2026-01-06';"
        "INSERT INTO Transactions ([Transaction], Date) VALUES (7, '2026-01-06'), "
        "(7, '2025-12-31'), (2, '2026-01-05'), (9, NULL), (NULL, '2026-01-01')");
  const DatabaseSummary summary = ReadDatabaseSummary(path);
  EXPECT_EQ(summary.kind, DatabaseKind::kTransaction);
  EXPECT_FALSE(summary.blank);
  EXPECT_EQ(summary.unit, "KG");
  EXPECT_EQ(summary.modified, Day(2026, 1, 6));
  EXPECT_EQ(summary.transaction.rows, 5);
  EXPECT_EQ(summary.transaction.transactions, 3);
  EXPECT_EQ(summary.transaction.first_date, Day(2025, 12, 31));
  EXPECT_EQ(summary.transaction.last_date, Day(2026, 1, 6));
}

TEST(Summary, ChangesNoByte) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  const std::string before = ReadAll(path);
  ReadDatabaseSummary(path);
  EXPECT_EQ(ReadAll(path), before);
}

int NumberOfFailure(const fs::path& path) {
  try {
    ReadDatabaseSummary(path, std::chrono::milliseconds(0));
  } catch (const DatabaseError& error) {
    return error.Number();
  }
  return 0;
}

TEST(Summary, OfAForeignFileFails) {
  const TempFolder folder;
  EXPECT_THROW(ReadDatabaseSummary(folder / "NONE.RDB"), DatabaseError);
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  Alter(path, "UPDATE BrantockDatabase SET dBType = 'ANOTHER_DB'");
  EXPECT_THROW(ReadDatabaseSummary(path), DatabaseError);
  Alter(path, "DELETE FROM BrantockDatabase");
  EXPECT_EQ(NumberOfFailure(path), kNoRecordError);
  Alter(path, "DROP TABLE BrantockDatabase");
  EXPECT_EQ(NumberOfFailure(path), kInvalidTableError);
}

TEST(Summary, OfALockedFileFails) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  const ExclusiveHolder holder(path);
  EXPECT_EQ(NumberOfFailure(path), kTableLockedError);
}

// Another program that stores a unit of one more letter also puts one more pen in use.
TEST(Summary, IsOfOneMoment) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  Alter(path,
        "CREATE TRIGGER both AFTER UPDATE ON UnitsOfMeasure BEGIN"
        " UPDATE Pen SET Description = 'North' WHERE ID <= length(new.UoM);"
        "END");
  RivalWriter rival;
  rival.Start(path, "UPDATE UnitsOfMeasure SET UoM = UoM || 'x'");
  const DatabaseSummary summary = ReadDatabaseSummary(path);
  rival.Stop();
  EXPECT_GT(rival.Tries(), rival.Stored());
  EXPECT_EQ(summary.recipe.pens, static_cast<std::int64_t>(summary.unit.size()));
}

}  // namespace
}  // namespace vrx::testing
