#pragma once

#include <QTimer>
#include <functional>
#include <utility>

#include "platform/event_pump.h"

namespace vrx::testing {

// Something that happens once, in the event loop, while the object lives.
class OneEvent {
 public:
  OneEvent(Milliseconds delay, std::function<void()> event) {
    QObject::connect(&timer_, &QTimer::timeout, std::move(event));
    timer_.setSingleShot(true);
    timer_.start(delay);
  }

 private:
  QTimer timer_;
};

}  // namespace vrx::testing
