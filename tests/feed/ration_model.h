#pragma once

#include <optional>
#include <string>
#include <vector>

#include "feed/ration.h"

namespace vrx::testing {

// The figures of a ration without entry row, computed again with whole numbers only
// (soft_number.h): values called single are rounded to 32 bits, every other division and
// multiplication to 64 bits.
//
// Only for cells with texts of numbers from 0 on, and for known batch types.
struct ModelOutcome {
  std::vector<std::string> dry_matter = {};
  std::vector<std::string> ration_percent = {};
  std::vector<std::string> batch_target = {};
  TotalsRow row = {};
  RecipeInputs enabled = {};
};

// Nothing if a whole number exceeds 32 bits.
std::optional<ModelOutcome> ModelRation(const Ration& ration);

std::uint64_t ModelAdjusted(std::uint64_t amount, int adjust_batch_index);

}  // namespace vrx::testing
