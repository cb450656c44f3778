#pragma once

#include <optional>
#include <string>

#include <SQLiteCpp/Database.h>

#include "base/date.h"

namespace vrx {

// The days that a view shows, first and last included. A missing day leaves that side open.
struct Period {
  std::optional<Date> from = {};
  std::optional<Date> to = {};

  [[nodiscard]] bool IsAll() const { return !from && !to; }
  // False if it ends before it begins.
  [[nodiscard]] bool IsPossible() const { return !from || !to || *from <= *to; }
  bool operator==(const Period&) const = default;
};

// The periods that an operator chooses, in the order of their list.
enum class PeriodChoice { kAll, kToday, kLast7Days, kThisMonth, kLastMonth, kFromTo };

// The days of a choice; all of them for kFromTo, whose days are typed.
[[nodiscard]] Period PeriodOf(PeriodChoice choice, const Date& today);

// "05-Jan-26 to 11-Jan-26", "05-Jan-26" for one day, "from 05-Jan-26", "to 11-Jan-26"; empty for
// all days.
[[nodiscard]] std::string PeriodText(const Period& period);

// SQL condition " AND ..." on the stored dates of rows of `Transactions`; empty for all days. A row
// without a readable date fulfills it for no period but all days. Needs RegisterStoredDates.
[[nodiscard]] std::string PeriodCondition(const Period& period);

// Defines the SQL function is_stored_date(x) on a connection: whether x is a day in its stored
// form. May be called again. Throws DatabaseError.
void RegisterStoredDates(SQLite::Database& database);

}  // namespace vrx
