#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "database/records.h"

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

}  // namespace vrx
