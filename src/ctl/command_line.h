#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ctl/command.h"

namespace vrx {

// Runs the tool once. `args` are UTF-8, without the program's name. Returns the exit code: kDone,
// kFailed or kWrongUsage. Reports every exception of a command or of the line.
int RunCommandLine(const std::vector<std::string>& args, const CommandContext& context);

// Passes all commands and options to `look`, without running any. The manual page and the shell
// completion are generated from them.
void LookAtCommands(const std::function<void(const CLI::App&)>& look);

}  // namespace vrx
