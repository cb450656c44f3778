#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vrx {

// Limits beyond which a program is killed.
struct ProgramLimits {
  std::chrono::seconds processor{60};
  std::chrono::milliseconds quiet{30000};  // without a byte of output, whether open or closed
  std::size_t memory_bytes = std::size_t{512} << 20U;
};

struct LimitedProgram {
  std::filesystem::path path;
  std::vector<std::string> arguments;
  ProgramLimits limits;
};

enum class ProgramEnd {
  kExited,      // `code` is the exit code
  kCrashed,     // `code` is the number of the signal
  kOutOfTime,   // limit of processor or quiet time
  kStopped,     // `take` returned false
  kNotStarted,  // `code` is the system's error number
};

struct ProgramOutcome {
  ProgramEnd end = ProgramEnd::kNotStarted;
  int code = 0;
};

// Runs another program as a child process: standard input is empty, standard error discarded, the
// environment not inherited, and no open file of this program is inherited.
class ProgramRunner {
 public:
  virtual ~ProgramRunner() = default;

  // Passes standard output to `take` in chunks as they arrive, and an empty chunk at least every
  // 50 ms, also after the program has closed its output. If `take` returns false, the program is
  // killed; if it throws, the program is killed before the exception leaves. The program is blocked
  // while `take` runs and its pipe is full. Returns when the program has ended; remaining child
  // processes of it are killed and their output is dropped. Path and arguments are UTF-8.
  [[nodiscard]] virtual ProgramOutcome Run(const LimitedProgram& program,
                                           const std::function<bool(std::string_view)>& take) = 0;
};

}  // namespace vrx
