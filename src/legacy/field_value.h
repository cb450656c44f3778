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

// A value as this system's databases hold it; std::monostate is NULL.
using FieldValue = std::variant<std::monostate, std::int64_t, double, std::string>;

// What was done to the values of a row that is stored: "Name was NULL; the default ING009 stands
// there".
using Repairs = std::vector<std::string>;

// The whole number of an ID, if it is one within the rule's range.
std::optional<int> ReadId(const FieldRule& rule, const LegacyValue& value);

// The value that the column gets. `default_name` is the record's. A date column takes the day of a
// moment and a time column its time of day; what else it holds is left out without a word.
FieldValue ConvertField(const FieldRule& rule, const LegacyValue& value,
                        const std::string& default_name, Repairs& repairs);

// A value for a message: "abc" in quotes, numbers plain, NULL.
std::string Shown(const LegacyValue& value);

// The number that a value stands for, texts read as numbers; nothing for no finite number.
std::optional<double> NumberOf(const LegacyValue& value);

struct JetMoment {
  Date date;
  TimeOfDay time;
};

// To the nearest second. Nothing for what is no date of the years 100 to 9999.
std::optional<JetMoment> ToMoment(JetDate stored);

// The day of a time that stands alone: 1899-12-30.
bool IsDayZero(const Date& date);

}  // namespace vrx
