#pragma once

#include <chrono>

namespace vrx {

using Date = std::chrono::year_month_day;

class Calendar {
 public:
  virtual ~Calendar() = default;
  virtual Date Today() const = 0;  // local date
};

}  // namespace vrx
