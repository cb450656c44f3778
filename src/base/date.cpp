#include "base/date.h"

#include <algorithm>
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

constexpr std::array<std::string_view, 12> kMonthNames{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// The number of that many digits at most; nothing for any other text.
std::optional<int> WholeNumber(std::string_view text, std::size_t most_digits) {
  if (text.empty() || text.size() > most_digits ||
      !std::all_of(text.begin(), text.end(), IsDigitChar)) {
    return std::nullopt;
  }
  return ReadDigits(text, 0, text.size());
}

std::optional<int> MonthOfName(std::string_view name) {
  const auto* const found =
      std::find_if(kMonthNames.begin(), kMonthNames.end(),
                   [&](std::string_view month) { return EqualsIgnoringCase(month, name); });
  return found == kMonthNames.end()
             ? std::nullopt
             : std::optional(static_cast<int>(found - kMonthNames.begin()) + 1);
}

std::optional<int> TypedYear(std::string_view text) {
  const std::optional<int> year = WholeNumber(text, 4);
  if (!year || (text.size() != 2 && text.size() != 4)) {
    return std::nullopt;
  }
  return text.size() == 2 ? 2000 + *year : *year;
}

std::optional<Date> ExistingDate(std::optional<int> year, std::optional<int> month,
                                 std::optional<int> day) {
  if (!year || !month || !day) {
    return std::nullopt;
  }
  const Date date{std::chrono::year{*year}, std::chrono::month{static_cast<unsigned>(*month)},
                  std::chrono::day{static_cast<unsigned>(*day)}};
  return date.ok() ? std::optional(date) : std::nullopt;
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

std::optional<Date> ParseTypedDate(std::string_view typed) {
  const std::string trimmed = TrimBlanks(typed);
  const std::string_view text = trimmed;
  if (const std::optional<Date> stored = ParseStoredDate(text)) {
    return stored;
  }
  const char separator = text.find('/') == std::string_view::npos ? '-' : '/';
  const std::size_t first = text.find(separator);
  const std::size_t second =
      first == std::string_view::npos ? first : text.find(separator, first + 1);
  if (second == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view before = text.substr(0, first);
  const std::string_view between = text.substr(first + 1, second - first - 1);
  const std::optional<int> year = TypedYear(text.substr(second + 1));
  return separator == '/' ? ExistingDate(year, WholeNumber(before, 2), WholeNumber(between, 2))
                          : ExistingDate(year, MonthOfName(between), WholeNumber(before, 2));
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
