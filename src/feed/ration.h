#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/number.h"
#include "database/records.h"
#include "feed/batch_type.h"

// What follows from the lines of a recipe. A cell that is no whole number, or none of 32 bits,
// counts as 0; an empty percentage counts as 0, and one that is no number throws ConversionError.
// A sum or a computed weight outside 32 bits throws OverflowError. Whatever throws leaves the
// cells as they were. An unknown batch type leaves everything alone.
//
// Mind the crossed names: `Target` is the dry-matter weight, `DryMatter` the as-fed weight.

namespace vrx {

struct Ration {
  RecipeRecord recipe;
  std::vector<RecipeLineRecord> lines = {};
  // The line that is being composed and not added yet: it counts. None while the entry row is idle.
  std::optional<RecipeLineRecord> entry_row = std::nullopt;
};

// The ration target or head count after the adjust item. Throw Error for an `AdjBatTotIndex` that
// the adjust list does not have; an empty one is item 0.
std::int32_t GetAdjustedRationTarget(const RecipeRecord& recipe);
std::int32_t GetAdjustedHeadCount(const RecipeRecord& recipe);

// `DryMatter` of one line, of a type by weight from `Target`, of type "P" from `Ingredient%`. An
// ingredient without a dry-matter figure is all dry matter; one with a negative figure is left.
// Nothing for type "!".
void RecalcLineDryMatter(std::string_view batch_type, RecipeLineRecord& line);

// The same of every line, but not of the entry row.
void RecalcAllDryMatter(Ration& ration);

// `Ration%` of every line and of the entry row. Lines without a dry-matter figure have no share.
void RecalcRationPercents(Ration& ration);

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

// A whole number that the arithmetic of a ration came to and that 32 bits do not hold.
class OverflowError : public Error {
 public:
  explicit OverflowError(const std::string& what)
      : Error("Overflow: " + what + " is outside the range of 32-bit whole numbers.") {}
};

// A computed number as a whole one, through its text of 7 (a single) or 15 significant digits: an
// exact half goes to the even neighbour. `what` names it in an OverflowError.
template <std::floating_point Real>
std::int32_t WholeThroughText(Real value, const std::string& what) {
  const std::optional<std::int32_t> whole = ParseLong(DefaultText(value));
  if (!whole) {
    throw OverflowError(what);
  }
  return *whole;
}

// A running sum of whole numbers. It has to stay within 32 bits after every step.
class WholeSum {
 public:
  // `field` is what an overflow names; it outlives the sum.
  explicit WholeSum(std::string_view field) : field_(field) {}

  // Throws OverflowError, the sum as it was.
  void Add(std::int32_t value) {
    const std::int64_t sum = std::int64_t{sum_} + value;
    using Limits = std::numeric_limits<std::int32_t>;
    if (sum < Limits::min() || sum > Limits::max()) {
      throw OverflowError("the sum of '" + std::string(field_) + "'");
    }
    sum_ = static_cast<std::int32_t>(sum);
  }

  std::int32_t Value() const { return sum_; }

 private:
  std::string_view field_;
  std::int32_t sum_ = 0;
};

}  // namespace vrx
