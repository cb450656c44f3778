#pragma once

#include <set>
#include <string>
#include <vector>

namespace vrx::testing {

// What `PROGRAM PATH --help` says.
struct CommandHelp {
  std::vector<std::string> path;  // empty for the program itself
  std::string text;
  std::set<std::string> options;  // without -h and --help
  std::vector<std::string> subcommands;
  std::vector<std::string> examples;  // the calls, from the program's name on

  std::string Name() const;  // the path with blanks between
};

// Asks the program of this name in the program's directory for its help and that of every command
// that it tells of.
std::vector<CommandHelp> AskForHelp(const std::string& program);

}  // namespace vrx::testing
