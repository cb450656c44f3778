#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace vrx {

// A load's deviation from its target, or several loads at about the same time with about the same
// deviation.
struct DeviationLoad {
  double day = 0;           // DayNumber of the date, with the time as a part of a day
  double percent = 0;       // 100 (A - T) / T; of several the farthest from 0
  std::int64_t record = 0;  // of that load
  std::int64_t loads = 1;
};

// Takes any number of loads and keeps at most about `most` entries: each load while they are few,
// and else one for each tenth of a percent and each period, as short as the number allows. What is
// drawn hardly differs, and neither memory nor the time to draw grows with the loads.
class DeviationLoads {
 public:
  explicit DeviationLoads(std::size_t most = 50000);

  // A load with numbers that are not finite is left out.
  void Add(const DeviationLoad& load);
  // The entries, ascending by day. None are left.
  [[nodiscard]] std::vector<DeviationLoad> Take();

 private:
  void AddToPlace(const DeviationLoad& load);
  void Shrink();

  std::size_t most_;
  double period_ = 0;  // days; 0 while each load has its own entry
  std::vector<DeviationLoad> loads_;
  std::unordered_map<std::int64_t, DeviationLoad> places_;
};

}  // namespace vrx
