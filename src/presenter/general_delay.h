#pragma once

#include "platform/event_pump.h"

namespace vrx {

// `timGeneralDelay`: the one timer behind every general delay of the main window.
class GeneralDelay {
 public:
  explicit GeneralDelay(EventPump& pump) : pump_(pump) {}

  // Lets events run for that long. A delay that such an event begins takes the timer over: both end
  // when the later one does. False as soon as the program is closing; what was waiting must then
  // unwind.
  bool Wait(Milliseconds interval);

  bool Closing() const { return pump_.Closing(); }

 private:
  EventPump& pump_;
  Milliseconds end_{0};
  bool complete_ = true;
};

}  // namespace vrx
