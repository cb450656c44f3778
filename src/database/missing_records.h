#pragma once

#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

// The IDs of the fixed rows that a recipe database lacks, ascending. A whole database lacks none.
struct MissingRecords {
  std::vector<int> ingredients;
  std::vector<int> recipes;
  std::vector<int> pens;

  bool Any() const { return !ingredients.empty() || !recipes.empty() || !pens.empty(); }
};

// Throws DatabaseError.
MissingRecords FindMissingRecords(SQLite::Database& database);

// "ingredients 3, 17-20; pens 400"; empty for a whole database.
std::string ToText(const MissingRecords& missing);

}  // namespace vrx
