#pragma once

#include <array>
#include <csignal>
#include <functional>
#include <memory>

namespace vrx {

// SIGINT, SIGTERM and SIGHUP, which ask the process to end. A SIGHUP that the starter of the
// process ignores, as nohup does, stays ignored in all classes of this file.

// Until it is destroyed, the signals set a flag instead of ending the process, for work without
// events that checks it now and then. One object at a time.
class InterruptFlag {
 public:
  InterruptFlag();
  ~InterruptFlag();
  InterruptFlag(const InterruptFlag&) = delete;
  InterruptFlag& operator=(const InterruptFlag&) = delete;

  [[nodiscard]] bool Raised() const;

 private:
  static constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

  std::array<struct sigaction, kSignals.size()> before_{};
};

// Blocks the signals in the thread that creates it and in threads started before it is destroyed. A
// signal to the process ends it in any thread that does not block it, so a program with threads
// creates one before the first of them. Signals that are pending at its end are dropped.
class SignalBlock {
 public:
  SignalBlock();  // throws std::system_error
  ~SignalBlock();
  SignalBlock(const SignalBlock&) = delete;
  SignalBlock& operator=(const SignalBlock&) = delete;

  [[nodiscard]] const sigset_t& Signals() const { return signals_; }

 private:
  sigset_t signals_{};
  sigset_t before_{};
};

// Blocks the signals until it is destroyed and calls `stop` from the event loop of the thread that
// creates it, once for a burst of signals. One object at a time. The constructor throws
// std::system_error.
class SignalHandler {
 public:
  explicit SignalHandler(std::function<void()> stop);
  ~SignalHandler();
  SignalHandler(const SignalHandler&) = delete;
  SignalHandler& operator=(const SignalHandler&) = delete;

 private:
  struct Handling;
  std::unique_ptr<Handling> handling_;
};

}  // namespace vrx
