#pragma once

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "ctl/command.h"
#include "settings/settings.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the library names it so
class App;
class Option;
}  // namespace CLI
namespace CLI {  // NOLINT(readability-identifier-naming): the library names it so
class App;
}  // namespace CLI

namespace vrx {

class Session;

// --port of the commands that talk over a line: a port number or the path of a device.
class PortOption {
 public:
  // May be called for several commands, of which one is chosen. The option keeps a reference.
  CLI::Option* AddTo(CLI::App& command);

  std::unique_ptr<SerialLine> MakeLine(Session& session) const;

  // The settings with the port of this run; they are not saved.
  PrivateINI Settings(Session& session) const;

 private:
  std::string port_;
};

// Refuses all but decimal digits, with or without a sign, that make a number from `first` to
// `last`. The library's own check takes 010 for 8 and 0x10 for 16.
CLI::Option* RequireWholeNumber(CLI::Option* option, int first, int last);

// An option, or by a name without dashes an argument, that takes such a number. `number` outlives
// the App.
CLI::Option* AddWholeNumber(CLI::App& app, const std::string& name, const std::string& help,
                            int first, int last, int& number);

// A required argument for the number of a record, from 1 to `last`. `number` outlives the App.
CLI::Option* AddRecordNumber(CLI::App& app, const std::string& name, const std::string& help,
                             int last, int& number);

struct Example {
  std::string_view call;  // as it is typed behind the program's name
  std::string_view does;
};

// Ends the command's help with these. Call it once the command has its own subcommands, which would
// take them over otherwise.
void AddExamples(CLI::App& command, std::initializer_list<Example> examples);

// Whether a file that may be a recipe database or a recipe backup is to be taken for a backup: by
// its first bytes, and where they do not say so by its name. All else is taken for a database.
bool IsRecipeBackup(const std::filesystem::path& path);

}  // namespace vrx
