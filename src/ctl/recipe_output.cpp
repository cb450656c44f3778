#include "ctl/recipe_output.h"

#include <string>

#include "feed/recipe_columns.h"

namespace vrx {

Json RecipeHead(const RecipeRecord& recipe) {
  return {{"ID", recipe.id},
          {"Name", recipe.name},
          {"Description", recipe.description},
          {"BatchType", recipe.batch_type},
          {"HeadCount", recipe.head_count},
          {"RationTarget", recipe.ration_target},
          {"AdjBatTotIndex", recipe.adjust_batch_index}};
}

OutputTable RecipeLineTable(const std::vector<RecipeLineRecord>& lines) {
  OutputTable table{.header = {"RecipeID", "Ingredient", "Target", "Ration%", "DryMatter%",
                               "DryMatter", "BatchTarget", "Sequence", "HandAdd", "Ingredient%"},
                    .rows = {}};
  for (const RecipeLineRecord& line : lines) {
    table.rows.push_back({line.recipe_id, line.ingredient, line.target, line.ration_percent,
                          line.dry_matter_percent, line.dry_matter, line.batch_target,
                          std::to_string(line.sequence), line.hand_add,
                          PercentText(line.ingredient_percent)});
  }
  return table;
}

Json RecipeTotalsObject(const TotalsRow& row) {
  Json object = Json::object();
  for (const auto& [label, text] : row.Labels()) {
    object[std::string(label)] = text;
  }
  return object;
}

}  // namespace vrx
