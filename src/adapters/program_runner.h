#pragma once

#include "platform/program_runner.h"

namespace vrx {

// Child processes of this program, each in a process group of its own, with resource limits. A
// build with the address sanitizer, which reserves terabytes, does not limit memory.
class ChildProcessRunner : public ProgramRunner {
 public:
  [[nodiscard]] ProgramOutcome Run(const LimitedProgram& program,
                                   const std::function<bool(std::string_view)>& take) override;
};

}  // namespace vrx
