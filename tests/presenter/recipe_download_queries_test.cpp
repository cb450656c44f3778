#include <functional>

#include <gtest/gtest.h>

#include "database/connection.h"
#include "exchange/recipe_text.h"
#include "support/fixed_calendar.h"
#include "support/full_recipe_database.h"
#include "support/recipe_tables.h"
#include "support/statement_counter.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

class RecipeDownloadQueries : public ::testing::Test {
 protected:
  RecipeDownloadQueries() {
    RecipeTables nothing = NewTables();
    CreateRecipeDatabase(empty, nothing);
    MakeFullRecipeDatabase(full);
  }

  static int StatementsOf(const std::function<void()>& work) {
    const StatementCounter counter;
    work();
    return counter.Count();
  }

  static std::string Build(const std::filesystem::path& path) {
    SQLite::Database database = OpenDatabase(path, Access::kRead);
    return BuildRecipeDownload(ReadRecipeTables(database), false).text;
  }

  TempFolder folder;
  std::filesystem::path empty = folder / "EMPTY.RDB";
  std::filesystem::path full = folder / "FULL.RDB";
  FixedCalendar calendar;
};

TEST_F(RecipeDownloadQueries, AreAsManyForAFullDatabaseAsForAnEmptyOne) {
  ASSERT_GT(Build(full).size(), 100 * Build(empty).size());
  const int of_full = StatementsOf([&] { Build(full); });
  EXPECT_EQ(of_full, StatementsOf([&] { Build(empty); }));
  EXPECT_GE(of_full, 4);  // of the four tables
}

TEST_F(RecipeDownloadQueries, AreNoMoreWhereNothingIsToBeStored) {
  const auto take = [&](const std::filesystem::path& path) {
    return StatementsOf([&] { TakeRecipeDownload(path, false, calendar); });
  };
  const int first = take(full);
  EXPECT_EQ(take(full), take(empty));
  EXPECT_GT(first, take(full));  // the head counts of the recipes by weight and percent
}

}  // namespace
}  // namespace vrx::testing
