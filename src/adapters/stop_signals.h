#pragma once

#include <functional>
#include <memory>

namespace vrx {

// SIGINT and SIGTERM, taken out of the hands of the system for as long as the object lives: `stop`
// is called from the event loop of the thread it was made in, once for a burst of signals. One
// object at a time. Throws std::system_error where the system refuses.
class StopSignals {
 public:
  explicit StopSignals(std::function<void()> stop);
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

 private:
  struct Handling;
  std::unique_ptr<Handling> handling_;
};

}  // namespace vrx
