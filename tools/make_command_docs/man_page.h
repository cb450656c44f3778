#pragma once

#include <string>

#include "make_command_docs/command_tree.h"

namespace vrx {

// The sections of a manual page, in the language of man(7): a subsection for each command that does
// something by itself, and the list of the options that go with all of them.
std::string ManCommands(const CommandNode& tool, const std::string& program);
std::string ManOptions(const CommandNode& tool);

}  // namespace vrx
