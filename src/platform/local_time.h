#pragma once

#include <chrono>

#include "base/date.h"

namespace vrx {

struct LocalTime {
  Date date;
  std::chrono::seconds time_of_day{0};  // since midnight
};

}  // namespace vrx
