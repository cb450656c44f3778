#pragma once

#include <algorithm>

#include "platform/event_pump.h"

namespace vrx {

// A timer that runs out once. Whoever waits asks it between two pumps and acts when it is due.
class OneShotTimer {
 public:
  explicit OneShotTimer(Milliseconds interval) : interval_(interval) {}

  // Takes effect at the next Enable.
  void SetInterval(Milliseconds interval) { interval_ = interval; }

  // Starts the full interval, also while it is running.
  void Enable(Milliseconds now) {
    end_ = now + interval_;
    enabled_ = true;
  }
  void Disable() { enabled_ = false; }

  bool Enabled() const { return enabled_; }
  bool Due(Milliseconds now) const { return enabled_ && now >= end_; }
  Milliseconds Left(Milliseconds now) const { return std::max(Milliseconds{0}, end_ - now); }

 private:
  Milliseconds interval_;
  Milliseconds end_{0};
  bool enabled_ = false;
};

}  // namespace vrx
