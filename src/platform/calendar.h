#pragma once

#include "base/date.h"
#include "platform/local_time.h"

namespace vrx {

class Calendar {
 public:
  virtual ~Calendar() = default;
  [[nodiscard]] virtual LocalTime Now() const = 0;
  [[nodiscard]] Date Today() const { return Now().date; }
};

}  // namespace vrx
