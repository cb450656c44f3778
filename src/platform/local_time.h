#pragma once

#include <chrono>

#include "base/date.h"

namespace vrx {

struct LocalTime {
  Date date;
  std::chrono::seconds time_of_day{0};  // since midnight
  std::chrono::minutes offset{0};       // from UTC, positive to the east
};

}  // namespace vrx
