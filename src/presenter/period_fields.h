#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"
#include "history/period.h"

namespace vrx {

// The list of periods and the two fields of its days.
struct PeriodState {
  PeriodChoice choice = PeriodChoice::kAll;
  std::string from = {};  // as typed, or the days of the choice; empty: no limit on that side
  std::string to = {};
  std::string refusal = {};  // why the typed days cannot be used; the shown period remains then
};

// The days of a choice in the list. kFromTo keeps those that are shown, or begins with this month
// up to today.
[[nodiscard]] Period ChosenDays(PeriodChoice choice, const Period& shown, const Date& today);

[[nodiscard]] PeriodState FieldsOf(PeriodChoice choice, const Period& period);
// kAll or kFromTo.
[[nodiscard]] PeriodChoice ChoiceOf(const Period& typed);

// Takes the days in the fields. Returns the period to show; nothing if they are those of the shown
// one, or with a refusal, for a text that is no day and an end before the beginning.
[[nodiscard]] std::optional<Period> TakeDays(PeriodState& fields, std::string_view from,
                                             std::string_view to, const Period& shown);

// Why a text is no day; empty if it is one or is empty.
[[nodiscard]] std::string DayRefusal(std::string_view typed);

}  // namespace vrx
