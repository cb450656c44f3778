#pragma once

#include "base/date.h"

namespace vrx {

class Calendar {
 public:
  virtual ~Calendar() = default;
  [[nodiscard]] virtual Date Today() const = 0;  // local date
};

}  // namespace vrx
