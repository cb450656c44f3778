#include "insight/report_period.h"

#include <algorithm>
#include <chrono>

#include "base/number.h"
#include "base/text.h"

namespace vrx {
namespace {

using std::chrono::sys_days;

Date MondayOf(const Date& day) {
  const auto weekday = std::chrono::weekday(sys_days(day)).iso_encoding();
  return Date(sys_days(day) - std::chrono::days(weekday - 1));
}

// The number of two digits at `at`, or 0.
int TwoDigits(std::string_view text, std::size_t at) {
  const std::string_view digits = text.substr(at);
  const bool is_number =
      digits.size() == 2 && std::all_of(digits.begin(), digits.end(), IsDigitChar);
  return is_number ? (digits[0] - '0') * 10 + (digits[1] - '0') : 0;
}

std::optional<ReportPeriod> ParseWeek(std::string_view text) {
  constexpr std::size_t kYearLength = 4;
  constexpr std::string_view kMark = "-W";
  const std::size_t digits = kYearLength + kMark.size();
  if (text.size() < digits || text.substr(kYearLength, kMark.size()) != kMark) {
    return std::nullopt;
  }
  // 4 January is in the first week of its year.
  const auto first = ParseStoredDate(std::string(text.substr(0, kYearLength)) + "-01-04");
  const int number = TwoDigits(text, digits);
  if (!first || number == 0) {
    return std::nullopt;
  }
  const ReportPeriod week =
      PeriodOf(PeriodKind::kWeek, Date(sys_days(*first) + 7 * std::chrono::days(number - 1)));
  return TextOf(week) == text ? std::optional(week) : std::nullopt;
}

bool HasFourDigitYears(const ReportPeriod& period) {
  constexpr std::chrono::year kFirst{1};
  constexpr std::chrono::year kLast{9999};
  return period.from.year() >= kFirst && period.to.year() <= kLast;
}

}  // namespace

ReportPeriod PeriodOf(PeriodKind kind, const Date& day) {
  switch (kind) {
    case PeriodKind::kWeek: {
      const Date monday = MondayOf(day);
      return {kind, monday, Date(sys_days(monday) + std::chrono::days(6))};
    }
    case PeriodKind::kMonth:
      return {kind, day.year() / day.month() / 1,
              Date(sys_days(day.year() / day.month() / std::chrono::last))};
    case PeriodKind::kDay:
      break;
  }
  return {kind, day, day};
}

std::optional<ReportPeriod> ParsePeriod(PeriodKind kind, std::string_view text) {
  std::optional<ReportPeriod> period;
  if (kind == PeriodKind::kWeek) {
    period = ParseWeek(text);
  } else {
    const std::string rest = kind == PeriodKind::kMonth ? "-01" : "";
    if (const auto day = ParseStoredDate(std::string(text) + rest)) {
      period = PeriodOf(kind, *day);
    }
  }
  return period && HasFourDigitYears(*period) ? period : std::nullopt;
}

std::string TextOf(const ReportPeriod& period) {
  const std::string day = StoredText(period.from);
  switch (period.kind) {
    case PeriodKind::kWeek:
      return WeekText(period.from);
    case PeriodKind::kMonth:
      return day.substr(0, day.rfind('-'));
    case PeriodKind::kDay:
      break;
  }
  return day;
}

std::string WeekText(const Date& day) {
  const Date thursday(sys_days(MondayOf(day)) + std::chrono::days(3));
  const auto first = sys_days(thursday.year() / std::chrono::January / 1);
  const auto week = (sys_days(thursday) - first).count() / 7 + 1;
  return StoredText(thursday).substr(0, 4) + "-W" + Format(week, "00");
}

}  // namespace vrx
