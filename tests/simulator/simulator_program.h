#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "simulator/pty_line.h"

namespace vrx::testing {

// The built vrx2260sim, running. Killed with the object if it has not ended by then.
class SimulatorProgram {
 public:
  explicit SimulatorProgram(std::vector<std::string> arguments);
  ~SimulatorProgram();
  SimulatorProgram(const SimulatorProgram&) = delete;
  SimulatorProgram& operator=(const SimulatorProgram&) = delete;

  // The next line of its standard output, without the line end; empty when it has ended.
  std::string OutputLine();
  void Signal(int signal) const;
  pid_t Process() const { return process_; }

  // Its exit code; -1 when it does not end by itself within 10 s, or by a signal.
  int ExitCode();
  // What it wrote to standard error; call after ExitCode.
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
  // Exactly `count` bytes, or what came until the line was silent for 10 s or gone.
  std::string Read(std::size_t count) const;
  // What comes until the line is silent for `milliseconds` or gone.
  std::string ReadUntilSilent(int milliseconds) const;
  // Whether the other end goes away within so many milliseconds; takes nothing off the line.
  bool IsHungUpWithin(int milliseconds) const;
  // Whether no other program may open the line.
  void TakeForItself() const;
  bool TakenForOne() const;
  // Bytes that wait to be read, as far as the terminal shows them (at most 4095).
  std::size_t Untaken() const;

 private:
  simulator::Descriptor terminal_;
};

void SleepShortly();

// Asks until it is true, at most for 10 s.
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
