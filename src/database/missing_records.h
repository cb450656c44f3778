#pragma once

#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

// IDs of the fixed rows that are missing in a recipe database, ascending.
struct MissingRecords {
  std::vector<int> ingredients;
  std::vector<int> recipes;
  std::vector<int> pens;

  [[nodiscard]] bool Any() const {
    return !ingredients.empty() || !recipes.empty() || !pens.empty();
  }
};

// Throws DatabaseError.
[[nodiscard]] MissingRecords FindMissingRecords(SQLite::Database& database);

// "ingredients 3, 17-20; pens 400"; empty if no row is missing.
[[nodiscard]] std::string ToText(const MissingRecords& missing);

}  // namespace vrx
