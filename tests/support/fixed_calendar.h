#pragma once

#include "platform/calendar.h"

namespace vrx::testing {

class FixedCalendar : public Calendar {
 public:
  Date Today() const override { return today; }

  Date today{std::chrono::year{2026}, std::chrono::January, std::chrono::day{5}};
};

}  // namespace vrx::testing
