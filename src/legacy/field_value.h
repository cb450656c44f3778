#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/date.h"
#include "legacy/field_rule.h"
#include "legacy/row_stream.h"

namespace vrx {

// A value as stored in the new database; std::monostate is NULL.
using FieldValue = std::variant<std::monostate, std::int64_t, double, std::string>;

// The changes to the values of a stored row, in whole sentences for the report.
using Repairs = std::vector<std::string>;

struct JetMoment {
  Date date;
  TimeOfDay time;
};

// The number of an ID, if it is an integer within the rule's range.
[[nodiscard]] std::optional<int> ReadId(const FieldRule& rule, const LegacyValue& value);

// The value for the new column; appends its changes to `repairs`. `default_name` is that of the
// record. A date column takes the day of a moment and a time column its time of day; the other part
// is dropped without a repair.
[[nodiscard]] FieldValue ConvertField(const FieldRule& rule, const LegacyValue& value,
                                      const std::string& default_name, Repairs& repairs);

// A value for a message: a text in quotes, a number without, NULL.
[[nodiscard]] std::string Shown(const LegacyValue& value);

// The value as a number; parses a text. Empty if it is not a finite number.
[[nodiscard]] std::optional<double> NumberOf(const LegacyValue& value);

// Rounds to the nearest second. Empty if the date is not within the years 100 to 9999.
[[nodiscard]] std::optional<JetMoment> ToMoment(JetDate stored);

// Whether the date is 1899-12-30, the day of a time without a date.
[[nodiscard]] bool IsDayZero(const Date& date);

}  // namespace vrx
