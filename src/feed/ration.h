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
#include "base/translation.h"
#include "database/records.h"
#include "feed/batch_type.h"

namespace vrx {

// The arithmetic of a recipe. A weight that is not a whole number of 32 bits is treated as 0, and
// so is an empty percentage; a percentage that is not a number throws ConversionError. A sum or
// computed weight outside 32 bits throws OverflowError. Functions that throw leave the cells
// unchanged. An unknown batch type changes nothing.
//
// The names of two fields are swapped: `Target` is the dry-matter weight, `DryMatter` the as-fed
// weight.

struct Ration {
  RecipeRecord recipe;
  std::vector<RecipeLineRecord> lines = {};
  // The line that is composed and not added yet. It is included in the totals.
  std::optional<RecipeLineRecord> entry_row = std::nullopt;
};

// Totals row below the lines, as its labels show it. All texts are empty while nothing is computed.
struct TotalsRow {
  std::string target = {};              // lblTargetTotal
  std::string ration_percent = {};      // lblRationPctTotal
  std::string dry_matter_percent = {};  // lblDryMatPercent
  std::string dry_matter = {};          // lblDryMatTotal
  std::string batch_target = {};        // lblBatchTargetTotal
  std::string hand_add = {};            // lblHandAddTotal
  std::string ingredient_percent = {};  // lblIngPctTotal
  bool operator==(const TotalsRow&) const = default;

  // The texts with the names of their labels. The views refer to this object.
  [[nodiscard]] std::array<std::pair<std::string_view, std::string_view>, 7> Labels() const;
};

struct RecipeTotals {
  TotalsRow row = {};
  RecipeInputs enabled = {};
};

// Ration target or head count, adjusted by `AdjBatTotIndex`. Throw Error if the adjust list has no
// such index; an empty index is 0.
std::int32_t GetAdjustedRationTarget(const RecipeRecord& recipe);
std::int32_t GetAdjustedHeadCount(const RecipeRecord& recipe);

// Computes `DryMatter` of one line: from `Target` for types by weight, from `Ingredient%` for type
// "P". An ingredient without dry-matter figure is 100 % dry matter. Does nothing for a negative
// figure and for type "!".
void RecalcLineDryMatter(std::string_view batch_type, RecipeLineRecord& line);

// RecalcLineDryMatter of every line, but not of the entry row.
void RecalcAllDryMatter(Ration& ration);

// Computes `Ration%` of every line and of the entry row. Lines without dry-matter figure have 0.
void RecalcRationPercents(Ration& ration);

inline constexpr std::string_view kMustTotal100Pct =
    "Ingredients must total 100% to set Ration Target";

// True if a recipe by percent is complete. Compares the shown text: 99.996 is "100.00".
[[nodiscard]] bool Totals100Percent(std::string_view ingredient_percent_total);

// Inputs that EnableHeadCountFields, EnableRationTargetFields and EnableAdjustBatchFields leave
// enabled when called with `flag`. Includes groups that the batch type does not show.
[[nodiscard]] RecipeInputs EnableRecipeInputs(std::string_view batch_type, bool flag,
                                              std::string_view ingredient_percent_total);

// Inputs that a totals row leaves enabled, by its sum of `Target` or, for type "P", of
// `Ingredient%`. None for a blank row.
[[nodiscard]] RecipeInputs EnabledByTotals(std::string_view batch_type, const TotalsRow& row);

// The same by the lines of a recipe.
[[nodiscard]] RecipeInputs EnabledByLines(std::string_view batch_type,
                                          const std::vector<RecipeLineRecord>& lines);

// Computes `BatchTarget` of every line and returns the totals. If there is an entry row, the totals
// include its weights and hand-add mark, and `BatchTarget` is not computed. Each batch target is
// rounded on its own, so their sum may differ from the adjusted target by a few units.
RecipeTotals RecalcRecipeTotals(Ration& ration);

// RecalcAllDryMatter, RecalcRationPercents and RecalcRecipeTotals.
RecipeTotals RecalcRecipe(Ration& ration);

// The same. Returns why the lines cannot be computed, or an empty text.
std::string RecalcFailure(Ration& ration);

// A computed whole number is outside the range of 32 bits.
class OverflowError : public Error {
 public:
  // `what` is a marked text, or a translated one.
  explicit OverflowError(std::string_view what)
      : Error(Tr("Overflow: %1 is outside the range of 32-bit whole numbers.", {Tr(what)})) {}
};

// Rounds a number to a whole one by its text of 15 (a single: 7) significant digits, halves to
// even. Throws OverflowError, which names `what`, a marked text.
template <std::floating_point Real>
std::int32_t WholeThroughText(Real value, std::string_view what) {
  const std::optional<std::int32_t> whole = ParseLong(DefaultText(value));
  if (!whole) {
    throw OverflowError(what);
  }
  return *whole;
}

// Sum of whole numbers that must stay within 32 bits after every step.
class WholeSum {
 public:
  // `field` is named in an OverflowError and must outlive the sum.
  explicit WholeSum(std::string_view field) : field_(field) {}

  // Throws OverflowError and leaves the sum unchanged.
  void Add(std::int32_t value) {
    const std::int64_t sum = std::int64_t{sum_} + value;
    using Limits = std::numeric_limits<std::int32_t>;
    if (sum < Limits::min() || sum > Limits::max()) {
      throw OverflowError(Tr("the sum of '%1'", {std::string(field_)}));
    }
    sum_ = static_cast<std::int32_t>(sum);
  }

  [[nodiscard]] std::int32_t Value() const { return sum_; }

 private:
  std::string_view field_;
  std::int32_t sum_ = 0;
};

}  // namespace vrx
