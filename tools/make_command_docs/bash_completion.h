#pragma once

#include <string>

#include "make_command_docs/command_tree.h"

namespace vrx {

// The branches of two bash `case` statements. The first maps the path of a command to the words
// that may come next. The second maps "PATH OPTION" or "PATH NUMBER" (a positional argument, from
// 1) to the expected kind of value: "@file", "@dir", "@rdb", "@tdb", "@text", or the values
// themselves.
std::string CompletionWords(const CommandNode& tool);
std::string CompletionValues(const CommandNode& tool);

}  // namespace vrx
