#include "insight/days.h"

#include <chrono>

namespace vrx {

DayNumber ToDayNumber(const std::optional<Date>& date) {
  return date ? static_cast<DayNumber>(std::chrono::sys_days(*date).time_since_epoch().count())
              : kNoDay;
}

std::optional<TimeOfDay> ToTime(std::int32_t seconds) {
  if (seconds == kNoTime) {
    return std::nullopt;
  }
  constexpr int kMinute = 60;
  return TimeOfDay{seconds / (kMinute * kMinute), seconds / kMinute % kMinute, seconds % kMinute};
}

std::optional<Date> ToDate(DayNumber day) {
  return day == kNoDay ? std::nullopt
                       : std::optional<Date>(std::chrono::sys_days(std::chrono::days(day)));
}

// One lower limit only: of two, SQLite may begin to read the index at the wider one.
std::string DayCondition(const std::optional<Date>& from, const std::optional<Date>& to) {
  std::string condition = from ? "[Date] >= '" + StoredText(*from) + "'" : "[Date] > ''";
  if (to) {
    condition += " AND [Date] <= '" + StoredText(*to) + "'";
  }
  return condition;
}

}  // namespace vrx
