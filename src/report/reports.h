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

// The printed reports: the rows of each grid, under its captions.

// `active_only` chooses the title; which rows there are is the caller's choice.
Report IngredientReport(const std::vector<IngredientRecord>& rows, bool active_only,
                        const ReportFacts& facts);
Report PenReport(const std::vector<PenRecord>& rows, bool active_only, const ReportFacts& facts);

// The lines and totals as they are; of the ingredients, those that have no row show no name.
// `shown`: the columns from left to right, each a RecipeColumn.
Report RecipeReport(const CurrentRecipe& recipe, const std::vector<int>& shown,
                    const std::vector<IngredientRecord>& ingredients, const ReportFacts& facts);
// With the columns in the order in which a grid first shows them.
Report RecipeReport(const CurrentRecipe& recipe, const std::vector<IngredientRecord>& ingredients,
                    const ReportFacts& facts);

// The groups as they are open, the columns as they stand. The grid outlives the report, which reads
// its rows as the pages are printed.
Report HistoryReport(HistoryGrid& grid, bool fit_columns, const ReportFacts& facts);

// The first `rows` rows of an import, under its visible columns. The file outlives the report.
Report ImportReport(const TransFile& file, int rows, std::span<const ImportGridColumn> grid_columns,
                    bool fit_columns, const ReportFacts& facts);

// A recipe with its totals, as it comes on show. Throws DatabaseError.
CurrentRecipe ReadRecipeToPrint(SQLite::Database& recipes, int id);

}  // namespace vrx
