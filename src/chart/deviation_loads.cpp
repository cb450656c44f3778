#include "chart/deviation_loads.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vrx {
namespace {

constexpr std::size_t kLeastEntries = 5000;       // a period has up to kPercentPlaces of them
constexpr double kShortestPeriod = 1.0 / 24 / 6;  // days
constexpr double kPlacesOfPercent = 10;
constexpr double kFarthestPlace = 1000;
constexpr std::int64_t kPercentPlaces = 2001;

std::int64_t PlaceOf(const DeviationLoad& load, double period) {
  const double percent =
      std::clamp(std::round(load.percent * kPlacesOfPercent), -kFarthestPlace, kFarthestPlace);
  return static_cast<std::int64_t>(std::floor(load.day / period)) * kPercentPlaces +
         static_cast<std::int64_t>(percent + kFarthestPlace);
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

}  // namespace vrx
