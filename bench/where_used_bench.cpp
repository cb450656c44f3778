// How long `vrx2260ctl where-used` takes in a full recipe database, for an ingredient that every
// line of every recipe holds, against the plain sqlite3 shell that joins the same rows.

#include <cstdio>
#include <exception>
#include <string>

#include <SQLiteCpp/Database.h>

#include "ctl_against_shell.h"
#include "database/connection.h"
#include "support/full_recipe_database.h"
#include "support/temp_folder.h"

namespace {

constexpr double kTarget = 20;
constexpr const char* kRows =
    "SELECT Recipe.ID, Recipe.Name FROM RecipeRation"
    " JOIN Recipe ON Recipe.ID = CAST(RecipeRation.RecipeID AS INTEGER)"
    " WHERE RecipeRation.Ingredient = '5' AND Recipe.Description <> ''"
    " ORDER BY Recipe.ID, RecipeRation.Sequence";

}  // namespace

int main() {
  try {
    const vrx::testing::TempFolder folder;
    const std::string database = (folder / "FULL.RDB").string();
    vrx::testing::MakeFullRecipeDatabase(database);
    vrx::OpenDatabase(database, vrx::Access::kWrite)
        .exec("UPDATE RecipeRation SET Ingredient = '5'");
    vrx::bench::Compare({.command = {"where-used", database, "5"},
                         .database = database,
                         .query = kRows,
                         .highest_ratio = kTarget});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "where_used_bench: %s\n", error.what());
    return 1;
  }
}
