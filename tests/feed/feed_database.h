#pragma once

#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "database/records.h"
#include "presenter/report_failure.h"
#include "support/database_files.h"
#include "support/temp_folder.h"
#include "support/test_services.h"

namespace vrx::testing {

inline constexpr std::chrono::milliseconds kShortTimeout{20};

// A new recipe database, open for writing, and the services of an action on it. The date is
// 5 January 2026.
class FeedDatabaseTest : public ::testing::Test, protected TestServices {
 protected:
  FeedDatabaseTest() : TestServices(kShortTimeout) { settings.SetEnableBeeperOn(true); }

  // A recipe in use.
  void UseRecipe(int id, const std::string& name, const std::string& batch_type = "W") {
    RecipeRecord recipe = ReadRecipe(database, id);
    recipe.name = name;
    recipe.description = name;
    recipe.batch_type = batch_type;
    WriteRecipe(database, recipe);
  }

  // Adds a line after the others of its recipe.
  void AddLine(int recipe, int ingredient, RecipeLineRecord line = {}) {
    line.recipe_id = std::to_string(recipe);
    line.ingredient = std::to_string(ingredient);
    line.sequence = static_cast<int>(ReadRecipeLines(database, recipe).size()) + 1;
    WriteRecipeLine(database, line);
  }

  std::vector<std::string> Ask(const std::string& query) { return testing::Ask(path, query); }

  // Recipes 1 to 5 of all types and 6 of an unknown one, with lines of ingredients 1 to 4 in them,
  // in recipes not in use and in a missing recipe.
  void FillAtRandom(std::mt19937& random) {
    SQLite::Transaction filling(database);
    const auto below = [&](int end) { return std::uniform_int_distribution(0, end - 1)(random); };
    const std::vector<std::string> types = {"W", "H", "%", "P", "!", "X"};
    for (int recipe = 1; recipe <= 6; ++recipe) {
      UseRecipe(recipe, "R" + std::to_string(recipe),
                types.at(static_cast<std::size_t>(recipe) - 1));
    }
    const std::vector<int> recipes = {1, 2, 3, 4, 5, 6, 50, 300};
    for (int line = 0; line < 40; ++line) {
      AddLine(recipes.at(static_cast<std::size_t>(below(8))), 1 + below(4),
              {.target = std::to_string(below(3000)),
               .ration_percent = "1." + std::to_string(below(10)),
               .dry_matter_percent = std::to_string(below(101)),
               .dry_matter = std::to_string(below(3000)),
               .batch_target = std::to_string(below(3000)),
               .hand_add = below(2) == 0,
               .ingredient_percent = std::to_string(below(100)) + ".25"});
    }
    filling.commit();
  }

  TempFolder folder;
  std::filesystem::path path = CopyOfTemplate(folder, "YARD.RDB");
  SQLite::Database database = OpenDatabase(path, Access::kWrite, kShortTimeout);
};

}  // namespace vrx::testing
