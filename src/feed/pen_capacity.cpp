#include "feed/pen_capacity.h"

#include <algorithm>
#include <cstddef>

#include "base/number.h"

namespace vrx {
namespace {

constexpr std::size_t kRange = 100;  // pens by which the indicator's table grows

}  // namespace

std::optional<int> CheckPenCapacity(std::span<const PenRecord> rows) {
  const std::size_t end = std::min(rows.size(), static_cast<std::size_t>(kPenCount));
  for (std::size_t row = end; row > kRange; --row) {
    if (TextToLong(rows[row - 1].feed_amount) > 0) {
      return static_cast<int>((row + kRange - 1) / kRange * kRange);
    }
  }
  return std::nullopt;
}

std::string PenCapacityWarning(int size) {
  return " This recipe requires a " + std::to_string(size) +
         "-pen capacity option in the K2260 indicator.";
}

}  // namespace vrx
