#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"

namespace vrx {

enum class PeriodKind { kDay, kWeek, kMonth };

// A day, an ISO week from Monday to Sunday or a month of the calendar.
struct ReportPeriod {
  PeriodKind kind = PeriodKind::kDay;
  Date from = {};
  Date to = {};  // included
};

// The period of a kind that has this day.
[[nodiscard]] ReportPeriod PeriodOf(PeriodKind kind, const Date& day);

// "2026-01-31", "2026-W05" or "2026-01". Nothing for any other text, and for a day, week or month
// that the calendar lacks: most years have no week 53.
[[nodiscard]] std::optional<ReportPeriod> ParsePeriod(PeriodKind kind, std::string_view text);

// The text that ParsePeriod reads.
[[nodiscard]] std::string TextOf(const ReportPeriod& period);

// The ISO week of a day, "2026-W05", with the year of the week's Thursday.
[[nodiscard]] std::string WeekText(const Date& day);

}  // namespace vrx
