#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "platform/event_pump.h"

namespace vrx {

// The event loop of the thread that creates it; needs a QCoreApplication for its lifetime. Any
// event ends a wait: bytes for a QtSerialControl, a click, a timer.
class QtEventPump : public EventPump {
 public:
  [[nodiscard]] Milliseconds Now() const override;
  void Pump(Milliseconds limit) override;
  [[nodiscard]] bool Closing() const override { return closing_; }
  [[nodiscard]] std::unique_ptr<Ticker> StartTicker(Milliseconds interval,
                                                    std::function<void()> tick) override;

  // Ends the running waits, and every later one as soon as it starts. May be called from another
  // thread, but not from a signal handler.
  void Close();

  // Undoes Close, if the program goes on after all.
  void Reopen() { closing_ = false; }

  // Whether a wait is running. The caller is then an event that it handles, and must return to let
  // it end.
  [[nodiscard]] bool Pumping() const { return depth_ > 0; }

 private:
  int depth_ = 0;
  std::atomic<bool> closing_ = false;
};

}  // namespace vrx
