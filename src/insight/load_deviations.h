#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace vrx {

// What pictures of single loads are made of, in bounded memory whatever the number of loads.

// A load's deviation from its target, or several loads at about the same time with about the same
// deviation.
struct DeviationLoad {
  double day = 0;           // days since 1970-01-01, with the time as a part of a day
  double percent = 0;       // 100 (A - T) / T; of several the farthest from 0
  std::int64_t record = 0;  // row of that load
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

// How many loads deviate by how much, in percent. The first range may begin at minus infinity and
// the last one end at infinity.
struct DeviationRange {
  double from = 0;
  double to = 0;
  std::int64_t count = 0;
};

// Counts deviations in ranges of one width. The limits are ends of ranges; a range has the end that
// is nearer to 0, so that what is at a limit is not within it.
class DeviationCounts {
 public:
  explicit DeviationCounts(double limit);  // percent, above 0

  // A number that is not finite is left out.
  void Add(double percent);
  // Ascending, without gaps; what is far out is in an open first and last range. Nothing of no
  // load.
  [[nodiscard]] std::vector<DeviationRange> Ranges() const;

 private:
  [[nodiscard]] std::size_t RangesOfASide() const;

  double width_;                      // of the narrowest range
  std::vector<std::int64_t> counts_;  // an open range, those below 0, those above, an open range
};

}  // namespace vrx
