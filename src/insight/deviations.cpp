#include "insight/deviations.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace vrx {
namespace {

constexpr std::int64_t kMillionthsInThousandth = 1000;

// Thousandths that fit 32 bits.
std::optional<std::int32_t> Thousandths(const Exact& number) {
  const std::int64_t* const millionths = number.Millionths();
  if (millionths == nullptr || *millionths % kMillionthsInThousandth != 0) {
    return std::nullopt;
  }
  const std::int64_t thousandths = *millionths / kMillionthsInThousandth;
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  if (thousandths > kMost || thousandths < -kMost) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(thousandths);
}

// Fourths of a quartile's place h = (n - 1) p.
struct Place {
  Place(std::size_t count, std::size_t quarter)
      : below((count - 1) * quarter / 4), fourths((count - 1) * quarter % 4) {}
  std::size_t below;
  std::size_t fourths;  // of the way to the next one
};

}  // namespace

void Deviations::Add(const Exact& difference, const Exact& target) {
  const auto one = Thousandths(difference);
  const auto other = Thousandths(target);
  if (one && other) {
    small_.push_back({*one, *other});
  } else {
    large_.push_back({difference, target});
  }
}

void Deviations::Take(Deviations& other) {
  small_.insert(small_.end(), other.small_.begin(), other.small_.end());
  large_.insert(large_.end(), other.large_.begin(), other.large_.end());
  other = {};
}

bool Deviations::IsLess(const Small& left, const Small& right) {
  return std::int64_t{left.difference} * right.target <
         std::int64_t{right.difference} * left.target;
}

bool Deviations::IsLess(const Large& left, const Large& right) {
  return CompareProducts(left.difference, right.target, right.difference, left.target) < 0;
}

Deviations::Large Deviations::Whole(const Small& small) {
  return {Exact::Whole(small.difference), Exact::Whole(small.target)};
}

// Finds the order statistics in ascending order, each in what the one before left above it.
template <typename Kind>
Quartiles Deviations::QuartilesOf(std::vector<Kind>& values, const Exact& low) {
  const auto less = [](const Kind& left, const Kind& right) { return IsLess(left, right); };
  Quartiles quartiles;
  auto sorted = values.begin();  // what is before it is in order
  const auto find = [&](std::size_t quarter) {
    const Place place(values.size(), quarter);
    const auto below = values.begin() + static_cast<std::ptrdiff_t>(place.below);
    if (below >= sorted) {
      std::nth_element(sorted, below, values.end(), less);
      sorted = below + 1;
    }
    Large value = Whole(*below);
    if (place.fourths == 0) {
      return value;
    }
    if (below + 1 >= sorted) {
      std::iter_swap(sorted, std::min_element(sorted, values.end(), less));
      ++sorted;
    }
    // The sum of both, weighted in fourths, over their common denominator.
    const Large next = Whole(*(below + 1));
    const auto fourths = static_cast<std::int64_t>(place.fourths);
    return Large{value.difference * next.target * Exact::Whole(4 - fourths) +
                     next.difference * value.target * Exact::Whole(fourths),
                 value.target * next.target * Exact::Whole(4)};
  };
  const Exact hundred = Exact::Whole(100);
  const auto percent = [&](const Large& value) {
    return Quotient(value.difference * hundred, value.target);
  };
  quartiles.q1 = percent(find(1));
  const Large median = find(2);
  quartiles.median = percent(median);
  quartiles.median_is_low = median.difference * hundred <= median.target * low;
  quartiles.q3 = percent(find(3));
  return quartiles;
}

std::optional<Quartiles> Deviations::FindQuartiles(const Exact& low) {
  if (Count() == 0) {
    return std::nullopt;
  }
  if (large_.empty()) {
    return QuartilesOf(small_, low);
  }
  for (const Small& small : small_) {
    // Kept exact by a common factor: a thousandth has a fast form.
    large_.push_back({Exact::Of(small.difference / 1000.0), Exact::Of(small.target / 1000.0)});
  }
  small_ = {};
  return QuartilesOf(large_, low);
}

}  // namespace vrx
