#pragma once

#include <initializer_list>
#include <string_view>

namespace CLI {  // NOLINT(readability-identifier-naming): the library names it so
class App;
}  // namespace CLI

namespace vrx {

struct Example {
  std::string_view call;  // as it is typed behind the program's name
  std::string_view does;
};

// Ends the command's help with these. Call it once the command has its own subcommands, which would
// take them over otherwise.
void AddExamples(CLI::App& command, std::initializer_list<Example> examples);

}  // namespace vrx
