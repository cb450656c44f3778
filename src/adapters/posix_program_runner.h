#pragma once

#include "platform/program_runner.h"

namespace vrx {

// Children of this process, with the limits of the system on them. In a build with the address
// sanitizer, which reserves terabytes, memory is not limited.
class PosixProgramRunner : public ProgramRunner {
 public:
  ProgramOutcome Run(const LimitedProgram& program,
                     const std::function<bool(std::string_view)>& take) override;
};

}  // namespace vrx
