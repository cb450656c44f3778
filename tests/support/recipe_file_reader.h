#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vrx::testing {

// A recipe file as an indicator reads it: by its lines and commas, without the program's code. No
// name may hold a comma or semicolon, and every recipe has lines.
struct RecipeFile {
  struct Ingredient {
    int number = 0;
    std::string name;
    bool hand_add = false;
    bool operator==(const Ingredient&) const = default;
  };
  struct Recipe {
    int number = 0;
    std::string name;
    int type = 0;
    std::string target = {};
    int head_count = 0;
    std::vector<std::string> ingredients = {};
    std::vector<std::string> amounts = {};
    bool operator==(const Recipe&) const = default;
  };
  struct Pen {
    int number = 0;
    std::string name;
    std::string feed_amount;
    bool operator==(const Pen&) const = default;
  };

  char unit = ' ';
  std::vector<Ingredient> ingredients = {};
  std::vector<Recipe> recipes = {};
  std::vector<Pen> pens = {};
};

// Throws std::runtime_error, with the line, for bytes that are no such file to the last one. Names
// are bytes.
RecipeFile ReadRecipeFile(std::string_view bytes);

}  // namespace vrx::testing
