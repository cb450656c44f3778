#pragma once

#include "platform/calendar.h"

namespace vrx::testing {

class FixedCalendar : public Calendar {
 public:
  LocalTime Now() const override { return {.date = today, .time_of_day = time, .offset = offset}; }

  Date today{std::chrono::year{2026}, std::chrono::January, std::chrono::day{5}};
  std::chrono::seconds time{std::chrono::hours{6} + std::chrono::minutes{30}};
  std::chrono::minutes offset{-360};
};

}  // namespace vrx::testing
