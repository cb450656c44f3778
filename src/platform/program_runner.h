#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vrx {

// What a program may use before it is killed. The quiet time is the time without a byte of output,
// whether the output is open or closed.
struct ProgramLimits {
  std::chrono::seconds processor{60};
  std::chrono::milliseconds quiet{30000};
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
  kOutOfTime,   // of the processor or of the quiet time
  kStopped,     // because `take` said so
  kNotStarted,  // `code` is the system's error number
};

struct ProgramOutcome {
  ProgramEnd end = ProgramEnd::kNotStarted;
  int code = 0;
};

// Runs another program as a child with an empty standard input, an environment of its own, its
// standard error discarded, and no open file of this program but its standard output.
class ProgramRunner {
 public:
  virtual ~ProgramRunner() = default;

  // Passes the standard output to `take` in chunks as they arrive, and at least every 50 ms an
  // empty chunk, also after the program has closed its output; false ends the program. The program
  // writes no faster than `take` reads. Returns when the program has ended: processes that it
  // leaves are killed, and their output is dropped. If `take` throws, the program is killed first.
  // Path and arguments are UTF-8.
  [[nodiscard]] virtual ProgramOutcome Run(const LimitedProgram& program,
                                           const std::function<bool(std::string_view)>& take) = 0;
};

}  // namespace vrx
