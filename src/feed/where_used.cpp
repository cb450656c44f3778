#include "feed/where_used.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "base/number.h"
#include "base/text.h"
#include "database/connection.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

constexpr const char* kLinesOfRecipesInUse =
    "SELECT Recipe.ID, Recipe.Name, RecipeRation.Ingredient "
    "FROM Recipe JOIN RecipeRation ON RecipeRation.RecipeID = CAST(Recipe.ID AS TEXT) "
    "WHERE Recipe.Description <> '' "
    "ORDER BY Recipe.ID, RecipeRation.Sequence, RecipeRation.rowid";

}  // namespace

std::vector<WhereUsed> FindWhereIngUsed(SQLite::Database& database, int ingredient_id,
                                        bool stop_at_first) {
  return WithDatabaseErrors(database, [&] {
    std::vector<WhereUsed> found;
    SQLite::Statement query(database, kLinesOfRecipesInUse);
    while (!(stop_at_first && !found.empty()) && query.executeStep()) {
      // Compared as numbers, because a line may have "07".
      if (ParseLong(query.getColumn(2).getString()) == ingredient_id) {
        found.push_back({.recipe_id = query.getColumn(0).getInt(),
                         .recipe_name = query.getColumn(1).getString()});
      }
    }
    return found;
  });
}

}  // namespace vrx
