#pragma once

#include <vector>

#include "ctl/output.h"
#include "database/records.h"
#include "feed/ration.h"

namespace vrx {

// A recipe as the command `recipe` shows it. Keys are the names of the fields and of the labels.
[[nodiscard]] Json RecipeHead(const RecipeRecord& recipe);
[[nodiscard]] OutputTable RecipeLineTable(const std::vector<RecipeLineRecord>& lines);
[[nodiscard]] Json RecipeTotalsObject(const TotalsRow& row);

}  // namespace vrx
