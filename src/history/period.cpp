#include "history/period.h"

#include <chrono>
#include <string_view>

#include <sqlite3.h>

#include "database/connection.h"

namespace vrx {
namespace {

using std::chrono::days;
using std::chrono::last;
using std::chrono::months;
using std::chrono::sys_days;
using std::chrono::year_month;

Date DaysBefore(const Date& day, int count) { return {sys_days(day) - days(count)}; }

Period MonthOf(const year_month& month) { return {.from = month / 1, .to = Date(month / last)}; }

// The last day found, because the rows of a scan have the same one again and again.
struct LastDay {
  std::string text;
};

// Called from C code, which no exception may cross; a day is too short for an allocation.
void IsStoredDate(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  sqlite3_value* const value = values[0];
  if (sqlite3_value_type(value) != SQLITE_TEXT) {
    sqlite3_result_int(context, 0);
    return;
  }
  const auto* const bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
  const std::string_view text(bytes == nullptr ? "" : bytes,
                              static_cast<std::size_t>(sqlite3_value_bytes(value)));
  auto* const last_day = static_cast<LastDay*>(sqlite3_user_data(context));
  bool is_date = text == last_day->text;
  if (!is_date && ParseStoredDate(text)) {
    last_day->text = text;
    is_date = true;
  }
  sqlite3_result_int(context, is_date ? 1 : 0);
}

void DeleteLastDay(void* last_day) { delete static_cast<LastDay*>(last_day); }

}  // namespace

Period PeriodOf(PeriodChoice choice, const Date& today) {
  const year_month month = today.year() / today.month();
  switch (choice) {
    case PeriodChoice::kToday:
      return {.from = today, .to = today};
    case PeriodChoice::kLast7Days:
      return {.from = DaysBefore(today, 6), .to = today};
    case PeriodChoice::kThisMonth:
      return MonthOf(month);
    case PeriodChoice::kLastMonth:
      return MonthOf(month - months(1));
    case PeriodChoice::kAll:
    case PeriodChoice::kFromTo:
      break;
  }
  return {};
}

std::string PeriodText(const Period& period) {
  if (period.from && period.from == period.to) {
    return MediumText(*period.from);
  }
  if (period.from && period.to) {
    return MediumText(*period.from) + " to " + MediumText(*period.to);
  }
  if (period.from) {
    return "from " + MediumText(*period.from);
  }
  return period.to ? "to " + MediumText(*period.to) : std::string();
}

// The days are literals of a fixed form. Their limits come first, because an index has them.
std::string PeriodCondition(const Period& period) {
  if (period.IsAll()) {
    return {};
  }
  std::string condition;
  if (period.from) {
    condition += " AND [Date] >= '" + StoredText(*period.from) + "'";
  }
  if (period.to) {
    condition += " AND [Date] <= '" + StoredText(*period.to) + "'";
  }
  return condition + " AND is_stored_date([Date])";
}

void RegisterStoredDates(SQLite::Database& database) {
  WithDatabaseErrors(database, [&] {
    database.check(sqlite3_create_function_v2(database.getHandle(), "is_stored_date", 1,
                                              SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS,
                                              new LastDay{"0000-01-01"}, IsStoredDate, nullptr,
                                              nullptr, DeleteLastDay));
  });
}

}  // namespace vrx
