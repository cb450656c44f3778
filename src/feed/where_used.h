#pragma once

#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

// A line that holds the ingredient looked for, by its recipe.
struct WhereUsed {
  int recipe_id = 0;
  std::string recipe_name = {};
  bool operator==(const WhereUsed&) const = default;
};

// One item for each line that holds the ingredient, in the order of the recipes and, within one, of
// its lines; the first alone with `stop_at_first`. A recipe without description is not looked at.
// One query. Throws DatabaseError.
std::vector<WhereUsed> FindWhereIngUsed(SQLite::Database& database, int ingredient_id,
                                        bool stop_at_first);

}  // namespace vrx
