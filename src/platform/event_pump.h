#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vrx {

using Milliseconds = std::chrono::milliseconds;

// Time and events. Every wait of the system is a loop around Pump, so that the interface stays
// alive; handlers of other events may run nested inside it.
class EventPump {
 public:
  virtual ~EventPump() = default;

  // Monotonic; the origin has no meaning.
  virtual Milliseconds Now() const = 0;

  // Handles what is pending and returns as soon as something was handled or the limit has passed.
  // Sleeps meanwhile; a limit of 0 only handles what is pending.
  virtual void Pump(Milliseconds limit) = 0;

  // The program is closing: every wait must end at once.
  virtual bool Closing() const = 0;

  // Calls `tick` each `interval` from inside Pump until the returned handle is destroyed.
  class Ticker {
   public:
    virtual ~Ticker() = default;
  };
  virtual std::unique_ptr<Ticker> StartTicker(Milliseconds interval,
                                              std::function<void()> tick) = 0;
};

}  // namespace vrx
