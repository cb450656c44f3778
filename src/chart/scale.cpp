#include "chart/scale.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <iterator>

#include "base/number.h"

namespace vrx {
namespace {

using std::chrono::days;
using std::chrono::months;
using std::chrono::sys_days;
using std::chrono::years;

enum class Span { kHours, kDays, kMonths, kYears };

struct DayStep {
  Span span;
  int count;
  double days;  // the shortest it can be
};

constexpr std::array kDaySteps = {
    DayStep{Span::kHours, 1, 1.0 / 24}, DayStep{Span::kHours, 2, 1.0 / 12},
    DayStep{Span::kHours, 3, 1.0 / 8},  DayStep{Span::kHours, 6, 0.25},
    DayStep{Span::kHours, 12, 0.5},     DayStep{Span::kDays, 1, 1},
    DayStep{Span::kDays, 2, 2},         DayStep{Span::kDays, 7, 7},
    DayStep{Span::kDays, 14, 14},       DayStep{Span::kMonths, 1, 28},
    DayStep{Span::kMonths, 2, 59},      DayStep{Span::kMonths, 3, 90},
    DayStep{Span::kMonths, 6, 181},     DayStep{Span::kYears, 1, 365},
    DayStep{Span::kYears, 2, 730},      DayStep{Span::kYears, 5, 1826},
    DayStep{Span::kYears, 10, 3652},    DayStep{Span::kYears, 50, 18262},
    DayStep{Span::kYears, 200, 73048},  DayStep{Span::kYears, 1000, 365242}};

constexpr double kHoursOfDay = 24;
constexpr int kFirstMonday = 4;  // 1970-01-05

// The first tick at or after a day.
double FirstTick(double from, const DayStep& step) {
  const Date date = DateOfDay(from);
  switch (step.span) {
    case Span::kHours:
      return std::ceil(from * kHoursOfDay / step.count) * step.count / kHoursOfDay;
    case Span::kDays:
      return std::ceil((from - kFirstMonday) / step.count) * step.count + kFirstMonday;
    case Span::kMonths: {
      const int month = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
      Date first = date.year() / std::chrono::January / 1;
      first += months(month / step.count * step.count);
      return DayNumber(first) < from ? DayNumber(first + months(step.count)) : DayNumber(first);
    }
    case Span::kYears: {
      const int year = static_cast<int>(date.year());
      const Date first =
          std::chrono::year(year / step.count * step.count) / std::chrono::January / 1;
      return DayNumber(first) < from ? DayNumber(first + years(step.count)) : DayNumber(first);
    }
  }
  return from;
}

double NextTick(double day, const DayStep& step) {
  switch (step.span) {
    case Span::kHours:
      return std::round(day * kHoursOfDay + step.count) / kHoursOfDay;
    case Span::kDays:
      return day + step.count;
    case Span::kMonths:
      return DayNumber(DateOfDay(day) + months(step.count));
    case Span::kYears:
      return DayNumber(DateOfDay(day) + years(step.count));
  }
  return day;
}

// "14-Mar-11" has day, month and year.
Tick TickAt(double day, const DayStep& step) {
  const Date date = DateOfDay(day);
  const std::string medium = MediumText(date);
  const std::string year = std::to_string(static_cast<int>(date.year()));
  switch (step.span) {
    case Span::kHours: {
      const int hour = static_cast<int>(std::lround((day - std::floor(day)) * kHoursOfDay));
      return {day, Format(hour, "00") + ":00", medium};
    }
    case Span::kDays:
      return {day, medium.substr(0, 6), year};
    case Span::kMonths:
      return {day, medium.substr(3, 3), year};
    case Span::kYears:
      return {day, year, ""};
  }
  return {};
}

}  // namespace

double NiceStep(double span, int most) {
  const double least = span / std::max(most, 1);
  const double power = std::pow(10, std::floor(std::log10(least)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power * (1 + 1e-9) >= least) {
      return factor * power;
    }
  }
  return 10 * power;
}

std::string StepText(double value, double step) {
  const int decimals = static_cast<int>(std::max(0.0, -std::floor(std::log10(step) + 1e-9)));
  constexpr int kMostDecimals = 6;
  return Format(
      value,
      decimals == 0
          ? "0"
          : "0." + std::string(static_cast<std::size_t>(std::min(decimals, kMostDecimals)), '0'));
}

std::vector<Tick> NumberTicks(double from, double to, int most) {
  const double step = NiceStep(to - from, most);
  std::vector<Tick> ticks;
  const auto last = static_cast<std::int64_t>(std::floor(to / step + 1e-9));
  for (auto place = static_cast<std::int64_t>(std::ceil(from / step - 1e-9)); place <= last;
       ++place) {
    const double value = static_cast<double>(place) * step;
    ticks.push_back({value, StepText(value, step), ""});
  }
  return ticks;
}

double DayNumber(const Date& date) {
  return static_cast<double>(sys_days(date).time_since_epoch().count());
}

Date DateOfDay(double day) { return sys_days(days(static_cast<int>(std::floor(day + 1e-9)))); }

std::vector<Tick> DayTicks(double from, double to, int most, TickSpan shortest) {
  const auto* step =
      std::find_if(kDaySteps.begin(), std::prev(kDaySteps.end()), [&](const DayStep& each) {
        return (to - from) / each.days <= std::max(most, 1) &&
               (shortest == TickSpan::kHours || each.days >= 1);
      });
  std::vector<Tick> ticks;
  std::string below;
  double day = FirstTick(from, *step);
  while (day <= to) {
    Tick tick = TickAt(day, *step);
    if (tick.below == below) {
      tick.below.clear();
    } else {
      below = tick.below;
    }
    ticks.push_back(std::move(tick));
    day = NextTick(day, *step);
  }
  return ticks;
}

double ReachOf(std::vector<double>& values, double least) {
  if (values.empty()) {
    return least;
  }
  for (double& value : values) {
    value = std::abs(value);
  }
  constexpr double kUsual = 0.98;  // part of the values that decides
  constexpr int kSteps = 5;        // the end is a number that can be read
  constexpr double kFar = 2;       // times the usual: an axis may reach so far for the last ones
  const auto place = static_cast<std::ptrdiff_t>(kUsual * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + place, values.end());
  const double usual = std::max(values[static_cast<std::size_t>(place)] * 1.2, least);
  const double most = *std::max_element(values.begin() + place, values.end());
  const double reach = most <= kFar * usual ? std::max(most, least) : usual;
  const double step = NiceStep(reach, kSteps);
  return std::ceil(reach / step - 1e-9) * step;
}

}  // namespace vrx
