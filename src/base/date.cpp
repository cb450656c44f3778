#include "base/date.h"

#include <array>
#include <charconv>

#include "base/number.h"
#include "base/text.h"

namespace vrx {
namespace {

// Matches "12-34" with the mask "00-00": 0 is any digit, every other character is itself.
bool HasForm(std::string_view text, std::string_view mask) {
  if (text.size() != mask.size()) {
    return false;
  }
  for (std::size_t at = 0; at < mask.size(); ++at) {
    if (mask[at] == '0' ? !IsDigitChar(text[at]) : text[at] != mask[at]) {
      return false;
    }
  }
  return true;
}

// Only for places that HasForm has checked to be digits.
int ReadDigits(std::string_view text, std::size_t at, std::size_t count) {
  int value = 0;
  std::from_chars(text.data() + at, text.data() + at + count, value);
  return value;
}

}  // namespace

std::string DefaultText(const Date& date) {
  return Format(static_cast<unsigned>(date.month()), "0") + "/" +
         Format(static_cast<unsigned>(date.day()), "0") + "/" +
         Format(static_cast<int>(date.year()), "0000");
}

std::string DefaultText(const TimeOfDay& time) {
  const int hour = time.hour % 12 == 0 ? 12 : time.hour % 12;
  return Format(hour, "0") + ":" + Format(time.minute, "00") + ":" + Format(time.second, "00") +
         (time.hour < 12 ? " AM" : " PM");
}

std::string MediumText(const Date& date) {
  static constexpr std::array<std::string_view, 12> kMonthNames{
      "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  return Format(static_cast<unsigned>(date.day()), "00") + "-" +
         std::string(kMonthNames.at(static_cast<unsigned>(date.month()) - 1)) + "-" +
         Format(static_cast<int>(date.year()) % 100, "00");
}

std::string StoredText(const Date& date) {
  return Format(static_cast<int>(date.year()), "0000") + "-" +
         Format(static_cast<unsigned>(date.month()), "00") + "-" +
         Format(static_cast<unsigned>(date.day()), "00");
}

std::string StoredText(const TimeOfDay& time) {
  return Format(time.hour, "00") + ":" + Format(time.minute, "00") + ":" +
         Format(time.second, "00");
}

std::optional<Date> ParseStoredDate(std::string_view text) {
  if (!HasForm(text, "0000-00-00")) {
    return std::nullopt;
  }
  const Date date{std::chrono::year{ReadDigits(text, 0, 4)},
                  std::chrono::month{static_cast<unsigned>(ReadDigits(text, 5, 2))},
                  std::chrono::day{static_cast<unsigned>(ReadDigits(text, 8, 2))}};
  return date.ok() ? std::optional(date) : std::nullopt;
}

std::optional<TimeOfDay> ParseStoredTime(std::string_view text) {
  if (!HasForm(text, "00:00:00")) {
    return std::nullopt;
  }
  const TimeOfDay time{ReadDigits(text, 0, 2), ReadDigits(text, 3, 2), ReadDigits(text, 6, 2)};
  if (time.hour > 23 || time.minute > 59 || time.second > 59) {
    return std::nullopt;
  }
  return time;
}

}  // namespace vrx
