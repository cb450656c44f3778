#pragma once

#include <functional>
#include <map>
#include <memory>

#include "platform/event_pump.h"

namespace vrx::testing {

// A clock that only a wait moves: Pump jumps to the next scheduled event, or to the limit, and runs
// it. A five-second time-out takes no time.
class ManualPump : public EventPump {
 public:
  Milliseconds Now() const override { return now_; }
  void Pump(Milliseconds limit) override;
  bool Closing() const override { return closing; }
  std::unique_ptr<Ticker> StartTicker(Milliseconds interval, std::function<void()> tick) override;

  // Runs `event` once the clock reaches now + delay.
  void After(Milliseconds delay, std::function<void()> event);

  bool closing = false;
  int pumps = 0;

 private:
  class RunningTicker;
  void Rearm(Milliseconds interval, const std::weak_ptr<std::function<void()>>& tick);

  Milliseconds now_{0};
  std::multimap<Milliseconds, std::function<void()>> events_;
};

}  // namespace vrx::testing
