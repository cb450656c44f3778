#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "feed/batch_type.h"
#include "feed/ration.h"

namespace vrx {

// The totals row below the lines, as its labels show it. All empty while nothing was computed.
struct TotalsRow {
  std::string target = {};              // lblTargetTotal
  std::string ration_percent = {};      // lblRationPctTotal
  std::string dry_matter_percent = {};  // lblDryMatPercent
  std::string dry_matter = {};          // lblDryMatTotal
  std::string batch_target = {};        // lblBatchTargetTotal
  std::string hand_add = {};            // lblHandAddTotal
  std::string ingredient_percent = {};  // lblIngPctTotal
  bool operator==(const TotalsRow&) const = default;

  // The texts under the names of their labels, as views of this row.
  std::array<std::pair<std::string_view, std::string_view>, 7> Labels() const;
};

struct RecipeTotals {
  TotalsRow row = {};
  RecipeInputs enabled = {};
};

inline constexpr std::string_view kMustTotal100Pct =
    "Ingredients must total 100% to set Ration Target";

// The 100 % rule of a recipe by percent. The text counts: 99.996 shows as "100.00" and passes.
bool Totals100Percent(std::string_view ingredient_percent_total);

// What EnableHeadCountFields, EnableRationTargetFields and EnableAdjustBatchFields leave enabled
// when they are called with `flag`. A group may be enabled that the batch type does not show.
RecipeInputs EnableRecipeInputs(std::string_view batch_type, bool flag,
                                std::string_view ingredient_percent_total);

// Which inputs a totals row leaves enabled, by its sum of `Target` or, for type "P", of
// `Ingredient%`. A blank row leaves none.
RecipeInputs EnabledByTotals(std::string_view batch_type, const TotalsRow& row);

// Which inputs the lines of a recipe leave enabled, by the sum of `Target` or, for type "P", of
// `Ingredient%`. Throws as the routines of ration.h do.
RecipeInputs EnabledByLines(std::string_view batch_type,
                            const std::vector<RecipeLineRecord>& lines);

// `BatchTarget` of every line, the totals row, and what is enabled. With an entry row its weights
// and its hand-add count in the totals and no `BatchTarget` is computed. The batch targets are
// rounded one by one: their sum may miss the adjusted target by a few units.
RecipeTotals RecalcRecipeTotals(Ration& ration);

// All of it, as for a recipe that was chosen: RecalcAllDryMatter, RecalcRationPercents,
// RecalcRecipeTotals.
RecipeTotals RecalcRecipe(Ration& ration);

}  // namespace vrx
