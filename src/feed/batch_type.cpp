#include "feed/batch_type.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

#include "base/error.h"

namespace vrx {
namespace {

constexpr RecipeInputs kRationTargetShown = {
    .head_count = false, .ration_target = true, .adjust_batch = true};
constexpr RecipeInputs kHeadCountShown = {
    .head_count = true, .ration_target = false, .adjust_batch = true};

constexpr std::array<BatchType, 5> kBatchTypes = {{
    {"!", "please select...", LineEntry::kNone, BatchScale::kNone, {}},
    {"W", "WEIGHT, Std", LineEntry::kWeight, BatchScale::kRationTarget, kRationTargetShown},
    {"H", "HEAD-COUNT", LineEntry::kWeight, BatchScale::kHeadCount, kHeadCountShown},
    {"%", "WEIGHT, Self-Adj", LineEntry::kWeight, BatchScale::kRationTarget, kRationTargetShown},
    {"P", "PERCENT", LineEntry::kPercent, BatchScale::kRationTarget, kRationTargetShown},
}};

constexpr int kUnchangedValue = 100;

}  // namespace

std::span<const BatchType> BatchTypes() { return kBatchTypes; }

std::string_view GetBatchTypeCode(int list_index) {
  if (list_index < 0 || list_index >= static_cast<int>(kBatchTypes.size())) {
    return {};
  }
  return kBatchTypes.at(static_cast<std::size_t>(list_index)).code;
}

const BatchType* FindBatchType(std::string_view code) {
  const auto* const type = std::find_if(kBatchTypes.begin(), kBatchTypes.end(),
                                        [&](const BatchType& entry) { return entry.code == code; });
  return type == kBatchTypes.end() ? nullptr : type;
}

std::int32_t AdjustItemValue(int index) {
  if (index < 0 || index >= kAdjustItemCount) {
    throw Error("The adjust list has no item " + std::to_string(index) + ", its items are 0 to " +
                std::to_string(kAdjustItemCount - 1) + ".");
  }
  return kUnchangedValue + kNoAdjustIndex - index;
}

std::string AdjustItemText(int index) {
  const int change = AdjustItemValue(index) - kUnchangedValue;
  if (change == 0) {
    return " 0%(no change)";
  }
  std::string digits = std::to_string(std::abs(change));
  if (digits.size() == 1) {
    digits.insert(0, 1, ' ');
  }
  return (change > 0 ? "+" : "-") + digits + "%";
}

}  // namespace vrx
