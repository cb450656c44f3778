#pragma once

#include <string>

#include "make_command_docs/command_tree.h"

namespace vrx {

// The sections of a manual page in the format of man(7): a subsection for each command that does
// something itself, and the list of the options common to all of them.
std::string ManCommands(const CommandNode& tool, const std::string& program);
std::string ManOptions(const CommandNode& tool);

}  // namespace vrx
