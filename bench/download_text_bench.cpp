// How long `vrx2260ctl download-text` takes for a full recipe database, against the plain sqlite3
// shell that selects the rows it is made of: 100 ingredients, 100 recipes, their 3,200 lines, 400
// pens.

#include <cstdio>
#include <exception>
#include <string>

#include "ctl_against_shell.h"
#include "support/full_recipe_database.h"
#include "support/temp_folder.h"

namespace {

constexpr double kTarget = 20;
constexpr const char* kRows =
    "SELECT * FROM Ingredient ORDER BY ID; SELECT * FROM Recipe ORDER BY ID;"
    "SELECT * FROM RecipeRation ORDER BY CAST(RecipeID AS INTEGER), Sequence;"
    "SELECT * FROM Pen ORDER BY ID;";

}  // namespace

int main() {
  try {
    const vrx::testing::TempFolder folder;
    const std::string database = (folder / "FULL.RDB").string();
    vrx::testing::MakeFullRecipeDatabase(database);
    vrx::bench::Compare({.command = {"download-text", database},
                         .database = database,
                         .query = kRows,
                         .highest_ratio = kTarget});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "download_text_bench: %s\n", error.what());
    return 1;
  }
}
