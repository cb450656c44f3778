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
  std::vector<std::string> examples;  // the command lines, starting with the program's name

  std::string Name() const;  // the path joined by blanks
};

// Runs a program in the directory of the tests and returns its help and that of every command
// listed in it.
std::vector<CommandHelp> AskForHelp(const std::string& program);

}  // namespace vrx::testing
