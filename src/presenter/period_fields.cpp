#include "presenter/period_fields.h"

#include "base/text.h"
#include "base/translation.h"

namespace vrx {
namespace {

std::string TextOfDay(const std::optional<Date>& day) { return day ? DefaultText(*day) : ""; }

}  // namespace

Period ChosenDays(PeriodChoice choice, const Period& shown, const Date& today) {
  if (choice != PeriodChoice::kFromTo) {
    return PeriodOf(choice, today);
  }
  return shown.IsAll() ? Period{.from = today.year() / today.month() / 1, .to = today} : shown;
}

PeriodState FieldsOf(PeriodChoice choice, const Period& period) {
  return {.choice = choice, .from = TextOfDay(period.from), .to = TextOfDay(period.to)};
}

PeriodChoice ChoiceOf(const Period& typed) {
  return typed.IsAll() ? PeriodChoice::kAll : PeriodChoice::kFromTo;
}

std::optional<Period> TakeDays(PeriodState& fields, std::string_view from, std::string_view to,
                               const Period& shown) {
  const Period period{.from = ParseTypedDate(from), .to = ParseTypedDate(to)};
  const bool done = !fields.refusal.empty() || period == shown;
  if (done && from == fields.from && to == fields.to) {
    return std::nullopt;
  }
  fields.from = from;
  fields.to = to;
  fields.refusal = DayRefusal(from);
  if (fields.refusal.empty()) {
    fields.refusal = DayRefusal(to);
  }
  if (fields.refusal.empty() && !period.IsPossible()) {
    fields.refusal = Tr("The first day is after the last day.");
  }
  return fields.refusal.empty() ? std::optional(period) : std::nullopt;
}

std::string DayRefusal(std::string_view typed) {
  if (TrimBlanks(typed).empty() || ParseTypedDate(typed)) {
    return {};
  }
  return Tr("\"%1\" is not a day. Type it as 1/31/2026.", {std::string(TrimBlanks(typed))});
}

}  // namespace vrx
