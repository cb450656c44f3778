#pragma once

#include <array>
#include <csignal>

namespace vrx {

// While it lives, SIGINT, SIGTERM and SIGHUP do not end the process but raise a flag, for work
// without events that looks at it now and then. A SIGHUP that the starter of the process ignores
// stays ignored. One at a time.
class StopFlag {
 public:
  StopFlag();
  ~StopFlag();
  StopFlag(const StopFlag&) = delete;
  StopFlag& operator=(const StopFlag&) = delete;

  bool Raised() const;

 private:
  static constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

  std::array<struct sigaction, kSignals.size()> before_{};
};

}  // namespace vrx
