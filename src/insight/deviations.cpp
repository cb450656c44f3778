#include "insight/deviations.h"

#include <algorithm>
#include <array>
#include <compare>
#include <cstddef>
#include <iterator>
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
  sorted_ = false;
}

void Deviations::Append(Deviations&& other) {
  small_.insert(small_.end(), other.small_.begin(), other.small_.end());
  std::ranges::move(other.large_, std::back_inserter(large_));
  other = {};
  sorted_ = false;
}

bool Deviations::IsLess(const Small& left, const Small& right) {
  return std::int64_t{left.difference} * right.target <
         std::int64_t{right.difference} * left.target;
}

bool Deviations::IsLess(const Large& left, const Large& right) {
  return std::is_lt(CompareProducts(left.difference, right.target, right.difference, left.target));
}

Deviations::Large Deviations::Whole(const Small& small) {
  return {Exact::Whole(small.difference), Exact::Whole(small.target)};
}

// Some sets, each in ascending order, as one.
template <typename Kind>
class Deviations::SortedSets {
 public:
  void Add(const std::vector<Kind>& set) {
    if (!set.empty()) {
      sets_.push_back(set);
      count_ += set.size();
    }
  }
  [[nodiscard]] std::size_t Count() const { return count_; }

  // The quotient at a place, and the one after it if there is one.
  struct Pair {
    Kind at;
    Kind next;
  };
  [[nodiscard]] Pair Find(std::size_t place) const {
    if (sets_.size() == 1) {
      const std::span<const Kind> set = sets_.front();
      return {set[place], set[std::min(place + 1, set.size() - 1)]};
    }
    const Kind at = Select(place);
    std::size_t up_to = 0;
    std::optional<Kind> above;
    for (const std::span<const Kind> set : sets_) {
      const auto end = std::upper_bound(set.begin(), set.end(), at, kLess);
      up_to += static_cast<std::size_t>(end - set.begin());
      if (end != set.end() && (!above || kLess(*end, *above))) {
        above = *end;
      }
    }
    return {at, place + 1 < up_to ? at : above.value_or(at)};
  }

 private:
  static constexpr auto kLess = [](const Kind& left, const Kind& right) {
    return IsLess(left, right);
  };

  // Halves what can be at the place by the middle of the largest part again and again.
  [[nodiscard]] Kind Select(std::size_t place) const {
    std::vector<std::span<const Kind>> parts = sets_;
    for (;;) {
      const auto& largest = *std::ranges::max_element(
          parts, {}, [](const std::span<const Kind>& part) { return part.size(); });
      Kind middle = largest[largest.size() / 2];
      std::size_t below = 0;
      std::size_t up_to = 0;
      for (const std::span<const Kind> part : parts) {
        const auto first = std::lower_bound(part.begin(), part.end(), middle, kLess);
        const auto end = std::upper_bound(first, part.end(), middle, kLess);
        below += static_cast<std::size_t>(first - part.begin());
        up_to += static_cast<std::size_t>(end - part.begin());
      }
      if (place >= below && place < up_to) {
        return middle;
      }
      for (std::span<const Kind>& part : parts) {
        const auto first = std::lower_bound(part.begin(), part.end(), middle, kLess);
        part = place < below
                   ? std::span(part.begin(), first)
                   : std::span(std::upper_bound(first, part.end(), middle, kLess), part.end());
      }
      place -= place < below ? 0 : up_to;
    }
  }

  std::vector<std::span<const Kind>> sets_;
  std::size_t count_ = 0;
};

template <typename Kind>
Quartiles Deviations::QuartilesOf(const SortedSets<Kind>& sets, const Exact& low) {
  const auto find = [&](std::size_t quarter) {
    const Place place(sets.Count(), quarter);
    const auto pair = sets.Find(place.below);
    Large value = Whole(pair.at);
    if (place.fourths == 0) {
      return value;
    }
    // The sum of both, weighted in fourths, over their common denominator.
    const Large next = Whole(pair.next);
    const auto fourths = static_cast<std::int64_t>(place.fourths);
    return Large{value.difference * next.target * Exact::Whole(4 - fourths) +
                     next.difference * value.target * Exact::Whole(fourths),
                 value.target * next.target * Exact::Whole(4)};
  };
  const Exact hundred = Exact::Whole(100);
  const auto percent = [&](const Large& value) {
    return Quotient(value.difference * hundred, value.target);
  };
  const Large median = find(2);
  return {.q1 = percent(find(1)),
          .median = percent(median),
          .q3 = percent(find(3)),
          .median_is_low = median.difference * hundred <= median.target * low};
}

// Kept exact by a common factor: a thousandth has a fast form.
void Deviations::MakeLarge() {
  constexpr double kThousand = 1000;
  for (const Small& small : small_) {
    large_.push_back(
        {Exact::Of(small.difference / kThousand), Exact::Of(small.target / kThousand)});
  }
  small_ = {};
}

void Deviations::Sort() {
  if (!sorted_) {
    const auto less = [](const auto& left, const auto& right) { return IsLess(left, right); };
    std::sort(small_.begin(), small_.end(), less);
    std::sort(large_.begin(), large_.end(), less);
    sorted_ = true;
  }
}

std::optional<Quartiles> Deviations::FindQuartiles(const Exact& low) {
  const std::array<Deviations*, 1> one{this};
  return FindQuartiles(one, low);
}

std::optional<Quartiles> Deviations::FindQuartiles(std::span<Deviations* const> sets,
                                                   const Exact& low) {
  const bool has_large =
      std::ranges::any_of(sets, [](const Deviations* set) { return !set->large_.empty(); });
  SortedSets<Small> small;
  SortedSets<Large> large;
  for (Deviations* const set : sets) {
    if (has_large) {
      set->MakeLarge();
    }
    set->Sort();
    small.Add(set->small_);
    large.Add(set->large_);
  }
  if (small.Count() + large.Count() == 0) {
    return std::nullopt;
  }
  return has_large ? QuartilesOf(large, low) : QuartilesOf(small, low);
}

}  // namespace vrx
