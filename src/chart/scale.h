#pragma once

#include <limits>
#include <string>
#include <vector>

#include "base/date.h"

namespace vrx {

inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

// From values to places on an axis. `from` and `to` differ.
struct Scale {
  double from = 0;
  double to = 1;
  double low = 0;  // the place of `from`
  double high = 1;

  [[nodiscard]] double At(double value) const {
    return low + (value - from) / (to - from) * (high - low);
  }
};

struct Tick {
  double value = 0;
  std::string text = {};
  std::string below = {};  // what the first tick, and each one that changes it, says once more
};

// 1, 2 or 5 times a power of ten: the smallest with which `span` has at most `most` steps.
[[nodiscard]] double NiceStep(double span, int most);

// The multiples of NiceStep from `from` to `to`, with the decimals that they need.
[[nodiscard]] std::vector<Tick> NumberTicks(double from, double to, int most);

// As few decimals as tell multiples of the step apart: "0.5", "20".
[[nodiscard]] std::string StepText(double value, double step);

// Days since 1970-01-01, 0 to 1 of a day for the time.
[[nodiscard]] double DayNumber(const Date& date);
[[nodiscard]] Date DateOfDay(double day);

// At most about `most` ticks between two day numbers: at hours, days, Mondays, months or years.
// Those of days are at their beginning.
enum class TickSpan { kHours, kDays };
[[nodiscard]] std::vector<Tick> DayTicks(double from, double to, int most, TickSpan shortest);

// How far from 0 an axis reaches so that its marks can be distinguished: as far as the farthest
// value, but not for a few that are far out. At least `least`, and rounded up. Reorders the values.
[[nodiscard]] double ReachOf(std::vector<double>& values, double least);

}  // namespace vrx
