#include "feed/where_used.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "database/translated.h"
#include "feed/record_kind.h"
#include "frame/number.h"
#include "frame/text.h"

namespace vrx {
namespace {

constexpr const char* kLinesOfRecipesInUse =
    "SELECT Recipe.ID, Recipe.Name, RecipeRation.Ingredient "
    "FROM Recipe JOIN RecipeRation ON RecipeRation.RecipeID = CAST(Recipe.ID AS TEXT) "
    "WHERE Recipe.Description <> '' "
    "ORDER BY Recipe.ID, RecipeRation.Sequence, RecipeRation.rowid";

constexpr std::string_view kSearchTitle = "Where Used (in Recipes)";

}  // namespace

std::vector<WhereUsed> FindWhereIngUsed(SQLite::Database& database, int ingredient_id,
                                        bool stop_at_first) {
  return Translated(database, [&] {
    std::vector<WhereUsed> found;
    SQLite::Statement query(database, kLinesOfRecipesInUse);
    while (!(stop_at_first && !found.empty()) && query.executeStep()) {
      // By its number: a line may hold "07".
      if (ParseLong(query.getColumn(2).getString()) == ingredient_id) {
        found.push_back({.recipe_id = query.getColumn(0).getInt(),
                         .recipe_name = query.getColumn(1).getString()});
      }
    }
    return found;
  });
}

std::vector<std::string> SearchWhereUsed(SQLite::Database& database, int ingredient_id,
                                         const FeedPorts& ports) {
  std::vector<std::string> items;
  RunFeedAction(database, ports, kSearchTitle, [&] {
    ports.op.SetBusy(true);
    const std::vector<WhereUsed> found = FindWhereIngUsed(database, ingredient_id, false);
    ports.op.SetBusy(false);
    items.emplace_back(found.empty() ? "Not Used" : "Done!");
    for (const WhereUsed& use : found) {
      items.push_back(FormatIdPrefix(use.recipe_id) + use.recipe_name);
    }
    BeepIfEnabled(ports.op, ports.settings);
    return true;
  });
  return items;
}

}  // namespace vrx
