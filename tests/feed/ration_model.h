#pragma once

#include <optional>
#include <string>
#include <vector>

#include "feed/ration.h"

namespace vrx::testing {

// What a ration without entry row comes to, worked out a second time with whole numbers only
// (soft_number.h): a value is rounded to 32 bits where it is called single and nowhere else, every
// other division and multiplication to 64 bits.
//
// For cells that are texts of numbers from 0 on, and for known batch types.
struct ModelOutcome {
  std::vector<std::string> dry_matter = {};
  std::vector<std::string> ration_percent = {};
  std::vector<std::string> batch_target = {};
  TotalsRow row = {};
  RecipeInputs enabled = {};
};

// Nothing where a whole number leaves 32 bits.
std::optional<ModelOutcome> ModelRation(const Ration& ration);

std::uint64_t ModelAdjusted(std::uint64_t amount, int adjust_batch_index);

}  // namespace vrx::testing
