#pragma once

#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

// The recipe of a line that uses an ingredient.
struct WhereUsed {
  int recipe_id = 0;
  std::string recipe_name = {};
  bool operator==(const WhereUsed&) const = default;
};

// One item for each line that uses the ingredient, ordered by recipe and line; only the first if
// `stop_at_first`. Skips recipes without description. Runs one query. Throws DatabaseError.
[[nodiscard]] std::vector<WhereUsed> FindWhereIngUsed(SQLite::Database& database, int ingredient_id,
                                                      bool stop_at_first);

}  // namespace vrx
