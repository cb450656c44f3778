#pragma once

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "ctl/command.h"
#include "settings/settings.h"

namespace CLI {  // NOLINT(readability-identifier-naming): named by the library
class App;
class Option;
}  // namespace CLI

namespace vrx {

class Session;

// --port of the commands that use a line: a port number or the path of a device.
class PortOption {
 public:
  // Can be called for several alternative commands. This object outlives the App.
  CLI::Option* AddTo(CLI::App& command);

  [[nodiscard]] std::unique_ptr<SerialLine> MakeLine(Session& session) const;

  // A copy of the settings with the port of this run.
  [[nodiscard]] PrivateINI Settings(Session& session) const;

 private:
  std::string port_;
};

// Accepts only decimal digits with an optional sign that form a number from `first` to `last`. The
// library's own check reads 010 as 8 and 0x10 as 16.
CLI::Option* RequireWholeNumber(CLI::Option* option, int first, int last);

// Adds an option, or an argument if the name has no dashes, with such a number. `number` outlives
// the App.
CLI::Option* AddWholeNumber(CLI::App& app, const std::string& name, const std::string& help,
                            int first, int last, int& number);

// Adds a required argument for the number of a record, from 1 to `last`. `number` outlives the App.
CLI::Option* AddRecordNumber(CLI::App& app, const std::string& name, const std::string& help,
                             int last, int& number);

// Adds an option for a day, as YYYY-MM-DD; `day` stays empty without it and outlives the App.
void AddDay(CLI::App& app, const std::string& name, const std::string& help, std::string& day);

struct Example {
  std::string_view call;  // as typed after the program's name
  std::string_view does;
};

// Appends examples to the command's help. Call it after adding subcommands, because a subcommand
// inherits the examples that exist when it is added.
void AddExamples(CLI::App& command, std::initializer_list<Example> examples);

// Whether to treat a file as a recipe backup, by its first bytes or, if they are inconclusive, by
// its name. Any other file is treated as a database.
[[nodiscard]] bool IsRecipeBackup(const std::filesystem::path& path);

}  // namespace vrx
