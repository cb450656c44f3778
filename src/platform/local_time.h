#pragma once

#include <chrono>

#include "platform/calendar.h"

namespace vrx {

// A moment of the local calendar.
struct LocalTime {
  Date date;
  std::chrono::seconds time_of_day{0};
};

}  // namespace vrx
