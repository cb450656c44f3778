#pragma once

#include <optional>

#include "base/date.h"
#include "legacy/legacy_rows.h"

namespace vrx {

struct JetMoment {
  Date date;
  TimeOfDay time;
};

// To the nearest second. Nothing for what is no date of the years 100 to 9999.
std::optional<JetMoment> ToMoment(JetDate stored);

// The day of a time that stands alone: 1899-12-30.
bool IsDayZero(const Date& date);

}  // namespace vrx
