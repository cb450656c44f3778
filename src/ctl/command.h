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

namespace CLI {  // NOLINT(readability-identifier-naming): named by the library
class App;
}  // namespace CLI

namespace vrx {

class Session;

// Exit codes of the tool.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;  // refused or failed, after a message
inline constexpr int kWrongUsage = 2;

// One command of the tool. Its members hold the options of one run.
class Command {
 public:
  virtual ~Command() = default;

  // Adds the subcommand; called once. The App outlives the command.
  virtual CLI::App* Register(CLI::App& app) = 0;

  // Whether the run changes neither databases nor settings nor the module. Such a command works
  // even if the data folder is missing or write-protected. Called after parsing.
  [[nodiscard]] virtual bool OnlyReads() const { return false; }

  // Called after parsing if the subcommand was given. Returns kDone or kFailed. Throws
  // CLI::ParseError for wrong usage that parsing did not detect, and Error.
  virtual int Run(Session& session) = 0;
};

// All commands in the order of the help.
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

// What the records say.
std::unique_ptr<Command> MakeAccuracyCommand();
std::unique_ptr<Command> MakeCompositionCommand();
std::unique_ptr<Command> MakeBalanceCommand();
std::unique_ptr<Command> MakeTimesCommand();
std::unique_ptr<Command> MakeDeliveredCommand();
std::unique_ptr<Command> MakeTraceCommand();
std::unique_ptr<Command> MakeHoldingCommand();
std::unique_ptr<Command> MakeCompletenessCommand();
std::unique_ptr<Command> MakeImportsCommand();
std::unique_ptr<Command> MakeUseCommand();
std::unique_ptr<Command> MakeReportCommand();

std::unique_ptr<Command> MakeCentralCommand();

// The subcommands of `recipe`.
std::unique_ptr<Command> MakeRecipeCopyCommand();
std::unique_ptr<Command> MakeRecipeDiffCommand();

// A serial control and its event pump.
class SerialLine {
 public:
  virtual ~SerialLine() = default;
  virtual SerialControl& Control() = 0;
  virtual EventPump& Pump() = 0;

  // Sets the pump's Closing, which ends every wait.
  virtual void Close() = 0;
  // From now on SIGINT, SIGTERM and SIGHUP call Close() instead of ending the program.
  virtual void CloseOnSignals() = 0;
  // From now on they call `handle` from inside the pump; an empty one lets them end the program
  // again.
  virtual void OnSignals(std::function<void()> handle) = 0;
};

// The environment of one run: streams and services. Everything it refers to outlives it.
struct CommandContext {
  std::istream& in;
  std::ostream& out;  // data
  std::ostream& err;  // messages, questions, progress
  bool in_is_terminal = false;
  bool err_is_terminal = false;
  const SystemInfo& system;
  const Calendar& calendar;

  // How long the commands on records wait for a database locked by another program.
  std::chrono::milliseconds busy_timeout = kBusyTimeout;

  // Makes a closed line. If `device` is empty, the port number selects the device, through the
  // mapping in the data folder.
  std::function<std::unique_ptr<SerialLine>(const std::string& device,
                                            const std::filesystem::path& data_folder)>
      make_serial_line;

  // Enables drawing until the end of the run; needs no display.
  std::function<void()> start_drawing = [] {};
};

}  // namespace vrx
