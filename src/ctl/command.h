#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "database/connection.h"
#include "platform/calendar.h"
#include "platform/event_pump.h"
#include "platform/serial_control.h"
#include "platform/system_info.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the library names it so
class App;
class Option;
}  // namespace CLI

namespace vrx {

class Session;

// Exit codes of the tool.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;  // refused or failed; the operator has been told
inline constexpr int kWrongUsage = 2;

// One command of the tool, with the options of one run in its members.
class Command {
 public:
  virtual ~Command() = default;

  // Adds the subcommand; called once. The App outlives the command.
  virtual CLI::App* Register(CLI::App& app) = 0;

  // Whether the run leaves databases, settings and the module as they are. Such a command also
  // works where the data folder is missing or cannot be written. Called after the parse.
  virtual bool OnlyReads() const { return false; }

  // Called after a parse that chose the subcommand. Returns kDone or kFailed; may throw
  // CLI::ParseError for a usage that only now shows as wrong, and Error.
  virtual int Run(Session& session) = 0;
};

// Every command, in the order of the help.
std::vector<std::unique_ptr<Command>> MakeCommands();

std::unique_ptr<Command> MakeNewCommand();
std::unique_ptr<Command> MakeInfoCommand();
std::unique_ptr<Command> MakeSettingsCommand();
std::unique_ptr<Command> MakeListCommand();
std::unique_ptr<Command> MakeSetCommand();
std::unique_ptr<Command> MakeLineCommand();
std::unique_ptr<Command> MakeRecipeCommand();
std::unique_ptr<Command> MakeWhereUsedCommand();
std::unique_ptr<Command> MakeResetCommand();
std::unique_ptr<Command> MakeDownloadTextCommand();
std::unique_ptr<Command> MakeModuleCommand();
std::unique_ptr<Command> MakeDirectCommand();
std::unique_ptr<Command> MakeImportCommand();
std::unique_ptr<Command> MakeStoreCommand();
std::unique_ptr<Command> MakeGroupsCommand();
std::unique_ptr<Command> MakeShowCommand();
std::unique_ptr<Command> MakeExportCommand();
std::unique_ptr<Command> MakePrintCommand();
std::unique_ptr<Command> MakeConvertCommand();

// A serial control and the pump it was made with.
class SerialLine {
 public:
  virtual ~SerialLine() = default;
  virtual SerialControl& Control() = 0;
  virtual EventPump& Pump() = 0;

  // The pump's Closing from now on: every wait ends.
  virtual void Close() = 0;
  // SIGINT, SIGTERM and SIGHUP close from now on, rather than end the program.
  virtual void CloseOnSignals() = 0;
};

// Where the tool's world ends: streams and ports of one run. Everything it refers to outlives it.
struct CommandContext {
  std::istream& in;
  std::ostream& out;  // data
  std::ostream& err;  // messages, questions, progress
  bool in_is_terminal = false;
  bool err_is_terminal = false;
  const SystemInfo& system;
  const Calendar& calendar;

  // How long the commands on records wait for a database that another program holds.
  std::chrono::milliseconds busy_timeout = kBusyTimeout;

  // A closed line. An empty device leaves it to the port number, mapped with the data folder.
  std::function<std::unique_ptr<SerialLine>(const std::string& device,
                                            const std::filesystem::path& data_folder)>
      make_serial_line;

  // Makes drawing possible, from now to the end of the run; no display is needed.
  std::function<void()> start_drawing = [] {};
};

}  // namespace vrx
