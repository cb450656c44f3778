#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

using Date = std::chrono::year_month_day;

struct TimeOfDay {
  int hour = 0;
  int minute = 0;
  int second = 0;
  bool operator==(const TimeOfDay&) const = default;
};

// M/D/YYYY and h:mm:ss AM/PM.
[[nodiscard]] std::string DefaultText(const Date& date);
[[nodiscard]] std::string DefaultText(const TimeOfDay& time);

// "Medium Date", dd-mmm-yy: "14-Mar-11".
[[nodiscard]] std::string MediumText(const Date& date);

// The stored forms, YYYY-MM-DD and HH:MM:SS. Parsing returns nothing for any other form and for a
// date or time that does not exist.
[[nodiscard]] std::string StoredText(const Date& date);
[[nodiscard]] std::string StoredText(const TimeOfDay& time);
[[nodiscard]] std::optional<Date> ParseStoredDate(std::string_view text);
[[nodiscard]] std::optional<TimeOfDay> ParseStoredTime(std::string_view text);

// A day as an operator types it, in any of the forms that the program shows: 3/14/2011, 2011-03-14,
// 14-Mar-11 and 14-Mar-2011, ignoring case and blanks at both ends. A year of two digits is one
// from 2000 to 2099. Nothing for any other text and for a day that does not exist.
[[nodiscard]] std::optional<Date> ParseTypedDate(std::string_view typed);

}  // namespace vrx
