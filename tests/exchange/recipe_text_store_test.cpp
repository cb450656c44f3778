#include <gmock/gmock.h>

#include "database/connection.h"
#include "exchange/recipe_text.h"
#include "exchange/store_fixture.h"
#include "support/fixed_calendar.h"
#include "support/recipe_tables.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;

class RecipeDownloadStore : public ::testing::Test {
 protected:
  RecipeDownload Take() { return TakeRecipeDownload(path, false, calendar); }
  std::string Modified() const { return QueryText(path, "SELECT Modified FROM History"); }

  TempFolder folder;
  std::filesystem::path path = folder / "YARD.RDB";
  RecipeTables tables = SmallYard();
  FixedCalendar calendar;
};

TEST_F(RecipeDownloadStore, BuildsTheFileOfTheDatabase) {
  CreateRecipeDatabase(path, tables);
  EXPECT_EQ(Take().text, kSmallYardFile);
}

TEST_F(RecipeDownloadStore, StoresRecomputedLines) {
  CreateRecipeDatabase(path, tables);
  const RecipeDownload download = Take();
  EXPECT_EQ(ReadTables(path).lines, download.recomputed_lines);
  EXPECT_EQ(ReadTables(path).lines.at(2).dry_matter, "1750");
}

TEST_F(RecipeDownloadStore, ChangedLinesAloneDoNotSetModified) {
  CreateRecipeDatabase(path, tables);
  Take();
  EXPECT_EQ(Modified(), "NULL");
}

TEST_F(RecipeDownloadStore, StoresResetHeadCountsAndTheDate) {
  Recipe(tables, 1).head_count = 80;
  CreateRecipeDatabase(path, tables);
  EXPECT_EQ(Take().text, kSmallYardFile);
  const RecipeTables stored = ReadTables(path);
  EXPECT_EQ(stored.recipes.at(0).head_count, 0);
  EXPECT_EQ(stored.recipes.at(0).name, "STEERS");
  EXPECT_EQ(stored.recipes.at(1).head_count, 120);
  EXPECT_EQ(Modified(), "2026-01-05");
}

TEST_F(RecipeDownloadStore, ASecondRunChangesNotOneByte) {
  Recipe(tables, 1).head_count = 80;
  CreateRecipeDatabase(path, tables);
  Take();
  const std::string before = ReadAll(path);
  const RecipeDownload again = Take();
  EXPECT_THAT(again.recomputed_lines, IsEmpty());
  EXPECT_THAT(again.emptied_head_counts, IsEmpty());
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(RecipeDownloadStore, RecipeThatCannotBeComputedLeavesTheDatabaseUnchanged) {
  Recipe(tables, 1).head_count = 80;
  UseRecipe(tables, 90, "HEAVY", "W");
  AddWeightLine(tables, 90, 1, "2147483647");
  AddWeightLine(tables, 90, 1, "1");
  CreateRecipeDatabase(path, tables);
  const std::string before = ReadAll(path);
  EXPECT_THROW(Take(), RecipeTextError);
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(RecipeDownloadStore, FailureWhileStoringLeavesTheDatabaseUnchanged) {
  Recipe(tables, 1).head_count = 80;
  CreateRecipeDatabase(path, tables);
  Execute(path,
          "CREATE TRIGGER disk_full BEFORE UPDATE ON History BEGIN SELECT RAISE(ABORT, 'full'); "
          "END");
  const std::string before = ReadAll(path);
  EXPECT_THROW(Take(), DatabaseError);
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(RecipeDownloadStore, DatabaseThatAnotherProgramWritesIsLocked) {
  CreateRecipeDatabase(path, tables);
  SQLite::Database other = OpenDatabase(path, Access::kWrite);
  other.exec("BEGIN IMMEDIATE");
  try {
    TakeRecipeDownload(path, false, calendar, {}, std::chrono::milliseconds{0});
    FAIL() << "taken";
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.Number(), kTableLockedError);
  }
}

// Reading and storing are one transaction: another writer in between has to wait.
TEST_F(RecipeDownloadStore, AnotherWriterIsBlockedFromTheFirstReadOn) {
  CreateRecipeDatabase(path, tables);
  SQLite::Database other = OpenDatabase(path, Access::kWrite, std::chrono::milliseconds{0});
  int tries = 0;
  const RecipeDownload download =
      TakeRecipeDownload(path, false, calendar, [&](std::string_view /*line*/) {
        ++tries;
        EXPECT_THROW(other.exec("BEGIN IMMEDIATE"), SQLite::Exception);
      });
  EXPECT_GT(tries, 0);
  EXPECT_EQ(ReadTables(path).lines, download.recomputed_lines);
  EXPECT_NO_THROW(other.exec("BEGIN IMMEDIATE; ROLLBACK"));
}

TEST_F(RecipeDownloadStore, BuildingTheTextChangesNotOneByte) {
  Recipe(tables, 1).head_count = 80;
  CreateRecipeDatabase(path, tables);
  const std::string before = ReadAll(path);
  EXPECT_EQ(BuildRecipeDownload(ReadTables(path), false).text, kSmallYardFile);
  EXPECT_TRUE(ReadAll(path) == before);
  EXPECT_FALSE(std::filesystem::exists(path.string() + "-journal"));
}

}  // namespace
}  // namespace vrx::testing
