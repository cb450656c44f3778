#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vrx {

using Milliseconds = std::chrono::milliseconds;

// Time and events. Every wait is a loop around Pump, so that the user interface keeps responding;
// handlers of other events may run inside Pump.
class EventPump {
 public:
  virtual ~EventPump() = default;

  // Monotonic; the origin is arbitrary.
  [[nodiscard]] virtual Milliseconds Now() const = 0;

  // Handles pending events, sleeping until there is one or `limit` has passed. A limit of 0 does
  // not sleep.
  virtual void Pump(Milliseconds limit) = 0;

  // True while the program is closing: every wait must end at once.
  [[nodiscard]] virtual bool Closing() const = 0;

  // Calls `tick` every `interval` from inside Pump until the returned handle is destroyed.
  class Ticker {
   public:
    virtual ~Ticker() = default;
  };
  [[nodiscard]] virtual std::unique_ptr<Ticker> StartTicker(Milliseconds interval,
                                                            std::function<void()> tick) = 0;
};

}  // namespace vrx
