#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vrx {

// What a program may use before it is ended. The quiet time is that without a byte of output,
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

// Runs another program as a child: nothing on its standard input, an environment of its own, what
// it says on standard error dropped, and no files of this program but its standard output.
class ProgramRunner {
 public:
  virtual ~ProgramRunner() = default;

  // `take` gets what the program writes to standard output, piece by piece as it comes, and at
  // least every 50 ms an empty piece, also once the program has closed its output; false ends the
  // program. The program writes no faster than `take` takes. Returns when the program has ended:
  // processes that it leaves are ended too, and what they write is dropped. When `take` throws, the
  // program is ended first.
  virtual ProgramOutcome Run(const LimitedProgram& program,
                             const std::function<bool(std::string_view)>& take) = 0;
};

}  // namespace vrx
