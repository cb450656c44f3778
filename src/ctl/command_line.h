#pragma once

#include <string>
#include <vector>

#include "ctl/command_context.h"

namespace vrx {

// One run of the tool. `args` are UTF-8 and go without the program's name. Returns the exit code:
// 0 done, 1 refused or failed, 2 wrong usage. Throws nothing that a command or a port may throw.
int RunCommandLine(const std::vector<std::string>& args, const CommandContext& context);

}  // namespace vrx
