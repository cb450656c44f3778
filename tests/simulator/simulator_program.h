#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "simulator/pty_line.h"

namespace vrx::testing {

// A process of the built vrx2260sim. The destructor kills it if it has not ended.
class SimulatorProgram {
 public:
  explicit SimulatorProgram(std::vector<std::string> arguments);
  ~SimulatorProgram();
  SimulatorProgram(const SimulatorProgram&) = delete;
  SimulatorProgram& operator=(const SimulatorProgram&) = delete;

  // The next line of its standard output, without the line end; empty if it has ended.
  std::string OutputLine();
  void Signal(int signal) const;
  pid_t Process() const { return process_; }

  // Its exit code; -1 if it does not end by itself within 10 s or ends by a signal.
  int ExitCode();
  // Its standard error; call it after ExitCode.
  std::string Errors();

 private:
  pid_t process_ = -1;
  simulator::Descriptor output_;
  simulator::Descriptor errors_;
};

// A program at the other end of the line.
class Client {
 public:
  explicit Client(const std::filesystem::path& link);

  void Write(std::string_view bytes) const;
  // Exactly `count` bytes, or fewer if the line was silent for 10 s or closed.
  std::string Read(std::size_t count) const;
  // Reads until the line is silent for `milliseconds` or closed.
  std::string ReadUntilSilent(int milliseconds) const;
  // Whether the other end hangs up within so many milliseconds; reads nothing.
  bool IsHungUpWithin(int milliseconds) const;
  // Lock the line for exclusive use, and return whether it is locked.
  void TakeForItself() const;
  bool TakenForOne() const;
  // The number of unread bytes, as far as the terminal shows them (at most 4095).
  std::size_t Untaken() const;

 private:
  simulator::Descriptor terminal_;
};

void SleepShortly();

// Polls the condition until it is true, for at most 10 s.
template <typename Condition>
bool Eventually(Condition condition) {
  for (int tries = 0; tries < 1000; ++tries) {
    if (condition()) {
      return true;
    }
    SleepShortly();
  }
  return false;
}

}  // namespace vrx::testing
