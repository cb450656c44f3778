#include "support/manual_pump.h"

#include <algorithm>
#include <utility>

namespace vrx::testing {

// Owns the tick: once it is gone, the events that point to it do nothing.
class ManualPump::RunningTicker : public EventPump::Ticker {
 public:
  explicit RunningTicker(std::shared_ptr<std::function<void()>> tick) : tick_(std::move(tick)) {}

 private:
  std::shared_ptr<std::function<void()>> tick_;
};

void ManualPump::Pump(Milliseconds limit) {
  ++pumps;
  const Milliseconds end = now_ + limit;
  const auto next = events_.begin();
  if (next == events_.end() || next->first > end) {
    now_ = end;
    return;
  }
  now_ = std::max(now_, next->first);
  const std::function<void()> event = std::move(next->second);
  events_.erase(next);
  event();
}

void ManualPump::After(Milliseconds delay, std::function<void()> event) {
  events_.emplace(now_ + delay, std::move(event));
}

std::unique_ptr<EventPump::Ticker> ManualPump::StartTicker(Milliseconds interval,
                                                           std::function<void()> tick) {
  auto shared = std::make_shared<std::function<void()>>(std::move(tick));
  Rearm(interval, shared);
  return std::make_unique<RunningTicker>(std::move(shared));
}

void ManualPump::Rearm(Milliseconds interval, const std::weak_ptr<std::function<void()>>& tick) {
  After(interval, [this, interval, tick] {
    if (const auto alive = tick.lock()) {
      Rearm(interval, tick);
      (*alive)();
    }
  });
}

}  // namespace vrx::testing
