#pragma once

#include <string>
#include <vector>

namespace CLI {  // NOLINT(readability-identifier-naming): the library names it so
class App;
class Option;
}  // namespace CLI

namespace vrx {

// An option or a positional argument as the help describes it.
struct Argument {
  std::vector<std::string> names;    // "--json"; one without dashes for a positional argument
  std::string value;                 // what follows: "DIR", "NUMBER"; empty for a flag
  std::vector<std::string> choices;  // the only values, where they are few
  std::string range;                 // "1 to 100", or empty
  std::string description;
  bool required = false;
};

struct CommandNode {
  std::string path;  // "module upload"; empty for the tool itself
  std::string description;
  std::vector<Argument> positionals;
  std::vector<Argument> options;  // that for help among them
  std::vector<std::string> footer;
  std::vector<CommandNode> subcommands;
};

CommandNode ReadCommandTree(const CLI::App& app, const std::string& path = {});

}  // namespace vrx
