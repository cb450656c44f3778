#pragma once

#include "platform/operator.h"

namespace vrx {

// Shows the busy cursor during its lifetime. They nest: the cursor is shown until the last one
// ends.
class BusyCursor {
 public:
  explicit BusyCursor(Operator& op) : op_(op) { op_.SetBusy(true); }
  ~BusyCursor() { op_.SetBusy(false); }
  BusyCursor(const BusyCursor&) = delete;
  BusyCursor& operator=(const BusyCursor&) = delete;

 private:
  Operator& op_;
};

}  // namespace vrx
