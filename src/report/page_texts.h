#pragma once

#include <string>
#include <string_view>

#include "feed/current_recipe.h"
#include "platform/calendar.h"
#include "report/report.h"

namespace vrx {

// What a report says of where its data come from and how it is printed.
struct ReportFacts {
  std::string recipe_file = {};  // paths, empty for a database that is not open
  std::string transaction_file = {};
  std::string weight_unit = {};   // of the recipe database
  std::string caption_unit = {};  // the weight unit in use, in the captions of recipes and pens
  Date today = {};
  bool grid_lines = true;
};

// The `SetPageHeaders` routines.
PageTexts SetPageHeadersIngredients(bool active_only, const ReportFacts& facts);
PageTexts SetPageHeadersRecipe(const RecipeOnShow& recipe, const ReportFacts& facts);
PageTexts SetPageHeadersPens(bool active_only, const ReportFacts& facts);
PageTexts SetPageHeadersTransactions(std::string_view data_group, const ReportFacts& facts);
// The unit is that of the imported file.
PageTexts SetPageHeadersImport(std::string_view file, std::string_view unit,
                               const ReportFacts& facts);

}  // namespace vrx
