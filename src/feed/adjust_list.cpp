#include "feed/adjust_list.h"

#include <cstdlib>

#include "base/error.h"

namespace vrx {
namespace {

constexpr int kUnchangedValue = 100;

}  // namespace

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
