#pragma once

#include <csignal>
#include <functional>
#include <memory>

namespace vrx {

// SIGINT, SIGTERM and SIGHUP do not reach the thread that made the object, nor the threads that
// are started while it lives. A signal that goes to the process ends it in any thread that does not
// block it, so a program with threads makes one before the first of them. A SIGHUP that the starter
// of the process ignores (as nohup does) stays ignored.
//
// What is still pending at the end of the object is dropped.
class StopSignalBlock {
 public:
  StopSignalBlock();  // throws std::system_error where the system refuses
  ~StopSignalBlock();
  StopSignalBlock(const StopSignalBlock&) = delete;
  StopSignalBlock& operator=(const StopSignalBlock&) = delete;

  const sigset_t& Signals() const { return signals_; }

 private:
  sigset_t signals_{};
  sigset_t before_{};
};

// Blocks the stop signals for as long as it lives and calls `stop` instead, from the event loop of
// the thread it was made in, once for a burst of signals. One object at a time. Throws
// std::system_error where the system refuses.
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
