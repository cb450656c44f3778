#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "base/error.h"
#include "base/number.h"

namespace vrx {

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
