#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/records.h"
#include "exchange/imported_data.h"
#include "exchange/transaction_parser.h"
#include "feed/current_recipe.h"
#include "history/history_grid.h"
#include "report/report.h"
#include "report/report_page.h"

namespace vrx {

// The printed reports: the rows of each grid, with its captions.

// `active_only` selects only the title; the caller selects the rows.
[[nodiscard]] Report IngredientReport(const std::vector<IngredientRecord>& rows, bool active_only,
                                      const ReportFacts& facts);
[[nodiscard]] Report PenReport(const std::vector<PenRecord>& rows, bool active_only,
                               const ReportFacts& facts);

// The current lines and totals. An ingredient without a record has no name. `shown`: the columns
// from left to right, each a RecipeColumn.
[[nodiscard]] Report RecipeReport(const CurrentRecipe& recipe, const std::vector<int>& shown,
                                  const std::vector<IngredientRecord>& ingredients,
                                  const ReportFacts& facts);
// With the columns in their initial order.
[[nodiscard]] Report RecipeReport(const CurrentRecipe& recipe,
                                  const std::vector<IngredientRecord>& ingredients,
                                  const ReportFacts& facts);

// The grid with its current columns and open groups. It outlives the report, which reads its rows
// while the pages are printed.
[[nodiscard]] Report HistoryReport(HistoryGrid& grid, bool fit_columns, const ReportFacts& facts);

// The first `rows` rows of an import in its visible columns. The file outlives the report.
[[nodiscard]] Report ImportReport(const TransFile& file, int rows,
                                  std::span<const ImportGridColumn> grid_columns, bool fit_columns,
                                  const ReportFacts& facts);

// A stored recipe with its computed totals. Throws DatabaseError.
[[nodiscard]] CurrentRecipe ReadRecipeToPrint(SQLite::Database& recipes, int id);

}  // namespace vrx
