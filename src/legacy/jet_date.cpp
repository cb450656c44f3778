#include "legacy/jet_date.h"

#include <chrono>
#include <cmath>

namespace vrx {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::sys_days kDayZero = 1899y / 12 / 30;
constexpr std::chrono::sys_days kFirstDay = 100y / 1 / 1;
constexpr std::chrono::sys_days kLastDay = 9999y / 12 / 31;
constexpr double kSecondsOfDay = 86400;
constexpr double kFarDay = 4e6;

}  // namespace

std::optional<JetMoment> ToMoment(JetDate stored) {
  if (!std::isfinite(stored.days) || std::abs(stored.days) > kFarDay) {
    return std::nullopt;
  }
  const double whole = std::trunc(stored.days);
  const double part = std::abs(stored.days - whole);
  auto second = static_cast<int>(std::lround(part * kSecondsOfDay));
  std::chrono::sys_days day = kDayZero + std::chrono::days(static_cast<int>(whole));
  if (second >= static_cast<int>(kSecondsOfDay)) {
    second = 0;
    day += std::chrono::days(1);
  }
  if (day < kFirstDay || day > kLastDay) {
    return std::nullopt;
  }
  return JetMoment{
      .date = day,
      .time = {.hour = second / 3600, .minute = second / 60 % 60, .second = second % 60}};
}

bool IsDayZero(const Date& date) { return std::chrono::sys_days(date) == kDayZero; }

}  // namespace vrx
