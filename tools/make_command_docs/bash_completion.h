#pragma once

#include <string>

#include "make_command_docs/command_tree.h"

namespace vrx {

// The branches of two bash `case` statements. The first prints by the path of a command the words
// that may come next; the second by "PATH OPTION" or "PATH NUMBER", the number of a positional
// argument from 1, what kind of value is asked for: "@file", "@dir", "@rdb", "@tdb", "@text", or
// the values themselves.
std::string CompletionWords(const CommandNode& tool);
std::string CompletionValues(const CommandNode& tool);

}  // namespace vrx
