#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

using Date = std::chrono::year_month_day;

// M/D/YYYY
std::string DefaultText(const Date& date);

// h:mm:ss AM/PM
struct TimeOfDay {
  int hour = 0;
  int minute = 0;
  int second = 0;
  bool operator==(const TimeOfDay&) const = default;
};
std::string DefaultText(const TimeOfDay& time);

// The stored forms: YYYY-MM-DD and HH:MM:SS. Parsing gives nothing for another form or a day or
// time that does not exist.
std::string StoredText(const Date& date);
std::string StoredText(const TimeOfDay& time);
std::optional<Date> ParseStoredDate(std::string_view text);
std::optional<TimeOfDay> ParseStoredTime(std::string_view text);

}  // namespace vrx
