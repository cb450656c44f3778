#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ctl/command.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the library names it so
class App;
}  // namespace CLI

namespace vrx {

// One run of the tool. `args` are UTF-8 and go without the program's name. Returns the exit code:
// 0 done, 1 refused or failed, 2 wrong usage. Throws nothing that a command or a port may throw.
int RunCommandLine(const std::vector<std::string>& args, const CommandContext& context);

// Shows the tool with all its commands and options, as the manual page and the shell's completion
// are made of them. Nothing runs.
void LookAtCommands(const std::function<void(const CLI::App&)>& look);

}  // namespace vrx
