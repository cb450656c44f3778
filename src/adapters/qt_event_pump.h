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

  // Waits are waits again, should the program stay up after all.
  void Reopen() { closing_ = false; }

  // A wait is under way: whoever asks is an event that it handles, and must return to let it end.
  bool Pumping() const { return depth_ > 0; }

 private:
  int depth_ = 0;
  std::atomic<bool> closing_ = false;
};

}  // namespace vrx
