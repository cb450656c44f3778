#include "support/command_help.h"

#include <sstream>

#include <gtest/gtest.h>

#include "support/program.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

// Reads the names in a line of the options: "  -h,--help   Print ..." or "  --csv Excludes: ...".
void ReadOptionLine(const std::string& line, CommandHelp& help) {
  std::istringstream names(line.substr(0, line.find(' ', 2)));
  for (std::string name; std::getline(names >> std::ws, name, ',');) {
    if (name != "-h" && name != "--help") {
      help.options.insert(name);
    }
  }
}

void ReadLines(CommandHelp& help) {
  std::istringstream lines(help.text);
  std::string part;
  for (std::string line; std::getline(lines, line);) {
    const bool entry = line.starts_with("  ") && line.size() > 2 && line[2] != ' ';
    if (!line.empty() && line.front() != ' ') {
      part = line;
    } else if (entry && part == "Options:") {
      ReadOptionLine(line, help);
    } else if (entry && part == "Subcommands:") {
      help.subcommands.push_back(line.substr(2, line.find(' ', 2) - 2));
    } else if (entry && part == "Examples:") {
      help.examples.push_back(line.substr(2));
    }
  }
}

void Ask(const std::string& program, const std::vector<std::string>& path,
         std::vector<CommandHelp>& helps) {
  const TempFolder folder;
  std::vector<std::string> args = path;
  args.emplace_back("--help");
  Program run(std::string(VRX_BIN_DIR) + "/" + program, args, folder.Path().string());
  CommandHelp help{.path = path, .text = {}, .options = {}, .subcommands = {}, .examples = {}};
  EXPECT_EQ(run.Wait(), 0) << help.Name();
  help.text = run.Out();
  ReadLines(help);
  helps.push_back(help);
  for (const std::string& subcommand : help.subcommands) {
    std::vector<std::string> below = path;
    below.push_back(subcommand);
    Ask(program, below, helps);
  }
}

}  // namespace

std::string CommandHelp::Name() const {
  std::string name;
  for (const std::string& word : path) {
    name += (name.empty() ? "" : " ") + word;
  }
  return name;
}

std::vector<CommandHelp> AskForHelp(const std::string& program) {
  std::vector<CommandHelp> helps;
  Ask(program, {}, helps);
  return helps;
}

}  // namespace vrx::testing
