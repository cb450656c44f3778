#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "platform/event_pump.h"

namespace vrx {

// The event loop of the thread it is made in; a QCoreApplication must be there for as long as it
// lives. Whatever the loop handles ends a wait: an arrival on a QtSerialControl, a click, a timer.
class QtEventPump : public EventPump {
 public:
  Milliseconds Now() const override;
  void Pump(Milliseconds limit) override;
  bool Closing() const override { return closing_; }
  std::unique_ptr<Ticker> StartTicker(Milliseconds interval, std::function<void()> tick) override;

  // Ends the running waits, and every later one at its start. May be called from another thread,
  // not from a signal handler.
  void Close();

 private:
  std::atomic<bool> closing_ = false;
};

}  // namespace vrx
