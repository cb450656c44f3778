#include "insight/load_deviations.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace vrx {
namespace {

constexpr std::size_t kLeastEntries = 5000;       // a period has up to kPercentPlaces of them
constexpr double kShortestPeriod = 1.0 / 24 / 6;  // days
constexpr double kPlacesOfPercent = 10;
constexpr double kFarthestPlace = 1000;
constexpr std::int64_t kPercentPlaces = 2001;

constexpr double kLeastRangesInLimit = 4;
constexpr std::size_t kNarrowRanges = 96;  // of a side, so up to 24 limits
constexpr std::size_t kMostRanges = 24;    // of a side, of those that are returned
constexpr std::size_t kLeastRanges = 8;
constexpr double kUsual = 0.98;  // part of the loads that is not in the open ranges
constexpr double kRoundingError = 1e-9;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::int64_t PlaceOf(const DeviationLoad& load, double period) {
  const double percent =
      std::clamp(std::round(load.percent * kPlacesOfPercent), -kFarthestPlace, kFarthestPlace);
  return static_cast<std::int64_t>(std::floor(load.day / period)) * kPercentPlaces +
         static_cast<std::int64_t>(percent + kFarthestPlace);
}

// The range of a number of widths: each has the end that is nearer to 0.
double RangeOf(double widths) {
  const double whole = std::round(widths);
  const double exact = std::abs(widths - whole) < kRoundingError ? whole : widths;
  return exact < 0 ? std::ceil(exact) - 1 : std::floor(exact);
}

}  // namespace

DeviationLoads::DeviationLoads(std::size_t most) : most_(std::max(most, kLeastEntries)) {}

void DeviationLoads::Add(const DeviationLoad& load) {
  if (!std::isfinite(load.day) || !std::isfinite(load.percent)) {
    return;
  }
  if (period_ > 0) {
    AddToPlace(load);
  } else {
    loads_.push_back(load);
  }
  while (loads_.size() + places_.size() > most_) {
    Shrink();
  }
}

void DeviationLoads::AddToPlace(const DeviationLoad& load) {
  const auto [place, is_new] = places_.try_emplace(PlaceOf(load, period_), load);
  if (is_new) {
    return;
  }
  const std::int64_t loads = place->second.loads + load.loads;
  if (std::abs(load.percent) > std::abs(place->second.percent)) {
    place->second = load;
  }
  place->second.loads = loads;
}

void DeviationLoads::Shrink() {
  period_ = period_ > 0 ? 2 * period_ : kShortestPeriod;
  std::vector<DeviationLoad> before = Take();
  for (const DeviationLoad& load : before) {
    AddToPlace(load);
  }
}

std::vector<DeviationLoad> DeviationLoads::Take() {
  std::vector<DeviationLoad> all = std::exchange(loads_, {});
  for (const auto& [place, load] : std::exchange(places_, {})) {
    all.push_back(load);
  }
  std::ranges::sort(all, {},
                    [](const DeviationLoad& load) { return std::pair(load.day, load.percent); });
  return all;
}

DeviationCounts::DeviationCounts(double limit)
    : width_(limit / kLeastRangesInLimit), counts_(2 * kNarrowRanges + 2) {}

void DeviationCounts::Add(double percent) {
  if (!std::isfinite(percent)) {
    return;
  }
  constexpr auto kSide = static_cast<double>(kNarrowRanges);
  const double range = std::clamp(RangeOf(percent / width_), -kSide - 1, kSide);
  ++counts_[static_cast<std::size_t>(range + kSide + 1)];
}

// The narrow ranges on each side of 0 that have the usual part of the loads.
std::size_t DeviationCounts::RangesOfASide() const {
  const auto all = std::accumulate(counts_.begin(), counts_.end(), std::int64_t{0});
  const auto usual = static_cast<std::int64_t>(std::ceil(kUsual * static_cast<double>(all)));
  std::int64_t met = 0;
  for (std::size_t side = 1; side < kNarrowRanges; ++side) {
    met += counts_[kNarrowRanges + side] + counts_[kNarrowRanges + 1 - side];
    if (met >= usual) {
      return std::max(side, kLeastRanges);
    }
  }
  return kNarrowRanges;
}

std::vector<DeviationRange> DeviationCounts::Ranges() const {
  if (std::ranges::all_of(counts_, [](std::int64_t count) { return count == 0; })) {
    return {};
  }
  const std::size_t reach = RangesOfASide();
  std::size_t step = 1;
  while (reach > kMostRanges * step) {
    step *= 2;
  }
  const std::size_t side = (reach + step - 1) / step;
  const auto sum = [this](std::size_t from, std::size_t to) {
    return std::accumulate(counts_.begin() + static_cast<std::ptrdiff_t>(from),
                           counts_.begin() + static_cast<std::ptrdiff_t>(to), std::int64_t{0});
  };
  const std::size_t first = kNarrowRanges + 1 - side * step;
  const std::size_t last = kNarrowRanges + 1 + side * step;
  const double width = width_ * static_cast<double>(step);
  const auto end = static_cast<double>(side);
  std::vector<DeviationRange> ranges;
  if (const std::int64_t far = sum(0, first)) {
    ranges.push_back({-kInfinity, -end * width, far});
  }
  for (std::size_t range = 0; range < 2 * side; ++range) {
    const double from = static_cast<double>(range) - end;
    const std::size_t at = first + range * step;
    ranges.push_back({from * width, (from + 1) * width, sum(at, at + step)});
  }
  if (const std::int64_t far = sum(last, counts_.size())) {
    ranges.push_back({end * width, kInfinity, far});
  }
  return ranges;
}

}  // namespace vrx
