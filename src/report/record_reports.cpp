#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <string>

#include "feed/recipe_columns.h"
#include "report/reports.h"

namespace vrx {
namespace {

std::string YesNo(bool yes) { return yes ? "Yes" : "No"; }

Report ListedReport(PageTexts texts, std::vector<ReportColumn> columns, std::vector<ReportRow> rows,
                    const ReportFacts& facts) {
  return {.design = {.texts = std::move(texts),
                     .columns = std::move(columns),
                     .grid_lines = facts.grid_lines},
          .rows = std::make_unique<ListedRows>(std::move(rows))};
}

std::string IngredientName(const std::map<std::string, std::string>& names, const std::string& id) {
  const auto found = names.find(id);
  return found == names.end() ? std::string() : found->second;
}

std::string PrintedCell(const RecipeLineRecord& line, int column,
                        const std::map<std::string, std::string>& names) {
  return column == kColumnIngredient ? IngredientName(names, line.ingredient)
                                     : CellText(line, column);
}

}  // namespace

Report IngredientReport(const std::vector<IngredientRecord>& rows, bool active_only,
                        const ReportFacts& facts) {
  std::vector<ReportRow> listed;
  listed.reserve(rows.size());
  for (const IngredientRecord& row : rows) {
    listed.push_back({.cells = {std::to_string(row.id), row.name, row.description,
                                std::to_string(row.dry_matter_percent), YesNo(row.hand_add)}});
  }
  return ListedReport(SetPageHeadersIngredients(active_only, facts),
                      {{.caption = "ID", .right_aligned = true},
                       {.caption = "Name"},
                       {.caption = "Description"},
                       {.caption = "Dry Matter (%)", .right_aligned = true},
                       {.caption = "Hand-Add"}},
                      std::move(listed), facts);
}

Report PenReport(const std::vector<PenRecord>& rows, bool active_only, const ReportFacts& facts) {
  std::vector<ReportRow> listed;
  listed.reserve(rows.size());
  for (const PenRecord& row : rows) {
    listed.push_back(
        {.cells = {std::to_string(row.id), row.name, row.description, row.feed_amount}});
  }
  return ListedReport(
      SetPageHeadersPens(active_only, facts),
      {{.caption = "ID", .right_aligned = true},
       {.caption = "Name"},
       {.caption = "Description"},
       {.caption = WithUnit("Feed Amount", facts.caption_unit), .right_aligned = true}},
      std::move(listed), facts);
}

Report RecipeReport(const RecipeOnShow& recipe, const std::vector<IngredientRecord>& ingredients,
                    const ReportFacts& facts) {
  return RecipeReport(recipe, ColumnsInSight(recipe.Entry()), ingredients, facts);
}

Report RecipeReport(const RecipeOnShow& recipe, const std::vector<int>& shown,
                    const std::vector<IngredientRecord>& ingredients, const ReportFacts& facts) {
  std::map<std::string, std::string> names;
  for (const IngredientRecord& ingredient : ingredients) {
    names.emplace(std::to_string(ingredient.id), ingredient.name);
  }
  std::vector<ReportColumn> columns;
  for (const int column : shown) {
    columns.push_back({.caption = ColumnCaption(column, facts.caption_unit),
                       .right_aligned = column != kColumnIngredient});
  }
  std::vector<ReportRow> rows;
  for (const RecipeLineRecord& line : recipe.ration.lines) {
    ReportRow& row = rows.emplace_back();
    for (const int column : shown) {
      row.cells.push_back(PrintedCell(line, column, names));
    }
  }
  return ListedReport(SetPageHeadersRecipe(recipe, facts), std::move(columns), std::move(rows),
                      facts);
}

RecipeOnShow ReadRecipeToPrint(SQLite::Database& recipes, int id) {
  RecipeOnShow shown;
  ShowRecipe(shown, ReadRecipe(recipes, id), ReadRecipeLines(recipes, id));
  return shown;
}

}  // namespace vrx
