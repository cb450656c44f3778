#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"

namespace vrx {

// Days since 1970-01-01; kNoDay for a date that is missing or has not the stored form.
using DayNumber = std::int32_t;
inline constexpr DayNumber kNoDay = std::numeric_limits<DayNumber>::min();
[[nodiscard]] DayNumber ToDayNumber(const std::optional<Date>& date);
[[nodiscard]] std::optional<Date> ToDate(DayNumber day);

inline constexpr std::int32_t kNoTime = -1;
inline constexpr std::int64_t kSecondsAMinute = 60;
// Nothing for kNoTime.
[[nodiscard]] std::optional<TimeOfDay> ToTime(std::int32_t seconds);

inline constexpr std::string_view kLoadType = "BATCH";
inline constexpr std::string_view kDeliveryType = "FEED";

// Whether rows of the type are loads or deliveries.
[[nodiscard]] inline bool Counts(std::string_view type) {
  return type == kLoadType || type == kDeliveryType;
}

// The first and the last of some days.
struct DayRange {
  Date from;
  Date to;
};

// "[Date] >= '2026-01-05' AND [Date] <= '2026-01-11'": rows with a date, from one day to another.
[[nodiscard]] std::string DayCondition(const std::optional<Date>& from,
                                       const std::optional<Date>& to);

// Most rows have the date of the row before.
class DayReader {
 public:
  DayNumber Read(std::string_view text) {
    if (text != text_ || text.empty()) {
      text_ = text;
      day_ = ToDayNumber(ParseStoredDate(text));
    }
    return day_;
  }

 private:
  std::string text_;
  DayNumber day_ = kNoDay;
};

}  // namespace vrx
