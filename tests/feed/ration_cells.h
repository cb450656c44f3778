#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "database/records.h"
#include "feed/ration.h"

namespace vrx::testing {

inline RecipeLineRecord WeightLine(const std::string& target, const std::string& dry_matter_percent,
                                   bool hand_add = false) {
  return {.target = target, .dry_matter_percent = dry_matter_percent, .hand_add = hand_add};
}

inline RecipeLineRecord PercentLine(const std::string& percent,
                                    const std::string& dry_matter_percent) {
  return {.dry_matter_percent = dry_matter_percent, .ingredient_percent = percent};
}

// A recipe with an adjust item of +0 %.
inline Ration RationOf(const std::string& batch_type, std::vector<RecipeLineRecord> lines) {
  return {.recipe = {.batch_type = batch_type, .adjust_batch_index = "20"},
          .lines = std::move(lines)};
}

// One field of every line.
inline std::vector<std::string> Cells(const Ration& ration, std::string RecipeLineRecord::*field) {
  std::vector<std::string> cells;
  for (const RecipeLineRecord& line : ration.lines) {
    cells.push_back(line.*field);
  }
  return cells;
}

}  // namespace vrx::testing
