#pragma once

#include <functional>
#include <memory>
#include <string>

#include "central/progress.h"
#include "central/server.h"
#include "ctl/command.h"

namespace CLI {  // NOLINT(readability-identifier-naming): named by the library
class App;
}

namespace vrx {

// --server and --yard of a command that uses the central database; the settings stand in for them.
class CentralOptions {
 public:
  void RegisterServer(CLI::App& command);
  void RegisterYard(CLI::App& command);

  // Throws CLI::ParseError if neither the option nor the setting names one.
  [[nodiscard]] std::string Connection(Session& session) const;
  [[nodiscard]] std::string Yard(Session& session) const;
  // Empty if neither names one.
  [[nodiscard]] std::string YardIfNamed(Session& session) const;

  // Connects, runs `work` and returns its result. Reports what the server or the file refuses, and
  // returns kFailed then.
  int Run(Session& session, const std::function<int(CentralConnection&)>& work) const;

 private:
  std::string server_;
  std::string yard_;
};

// Shows long work on the progress line.
[[nodiscard]] CentralProgress ProgressOf(Session& session);

// The subcommands of `central`.
std::unique_ptr<Command> MakeCentralInitCommand();
std::unique_ptr<Command> MakeCentralAddYardCommand();
std::unique_ptr<Command> MakeCentralPushCommand();
std::unique_ptr<Command> MakeCentralStatusCommand();
std::unique_ptr<Command> MakeCentralVerifyCommand();
std::unique_ptr<Command> MakeCentralRestoreCommand();
std::unique_ptr<Command> MakeCentralPublishCommand();
std::unique_ptr<Command> MakeCentralFetchCommand();
std::unique_ptr<Command> MakeCentralWithdrawCommand();
std::unique_ptr<Command> MakeCentralEraseCommand();
std::unique_ptr<Command> MakeCentralAliasCommand();
std::unique_ptr<Command> MakeCentralAccuracyCommand();
std::unique_ptr<Command> MakeCentralBalanceCommand();
std::unique_ptr<Command> MakeCentralDeliveredCommand();
std::unique_ptr<Command> MakeCentralUseCommand();
std::unique_ptr<Command> MakeCentralCompletenessCommand();

}  // namespace vrx
