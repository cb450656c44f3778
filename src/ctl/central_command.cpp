#include "ctl/central_command.h"

#include <array>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "ctl/options.h"
#include "ctl/session.h"

namespace vrx {
namespace {

constexpr std::string_view kCentralErrorTitle = "Central Database Error";

class CentralCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "central",
        "The central database of several yards: records, recipes and the company's figures");
    command->require_subcommand(1);
    for (auto* const make :
         {MakeCentralInitCommand, MakeCentralAddYardCommand, MakeCentralPushCommand,
          MakeCentralStatusCommand, MakeCentralVerifyCommand, MakeCentralRestoreCommand,
          MakeCentralPublishCommand, MakeCentralFetchCommand, MakeCentralWithdrawCommand,
          MakeCentralEraseCommand, MakeCentralAliasCommand, MakeCentralAccuracyCommand,
          MakeCentralBalanceCommand, MakeCentralDeliveredCommand, MakeCentralUseCommand,
          MakeCentralCompletenessCommand}) {
      std::unique_ptr<Command> subcommand = make();
      CLI::App* const registered = subcommand->Register(*command);
      subcommands_.push_back({std::move(subcommand), registered});
    }
    AddExamples(*command, {{"central push --server service=company --yard North JANUARY.TDB",
                            "Takes the records that the central database lacks there."},
                           {"central verify --server service=company --yard North JANUARY.TDB",
                            "Compares the file with the central database."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override {
    const Command* const chosen = Chosen();
    return chosen != nullptr && chosen->OnlyReads();
  }

  int Run(Session& session) override {
    Command* const chosen = Chosen();
    return chosen == nullptr ? kWrongUsage : chosen->Run(session);
  }

 private:
  struct Subcommand {
    std::unique_ptr<Command> command;
    CLI::App* app;
  };

  [[nodiscard]] Command* Chosen() const {
    for (const Subcommand& subcommand : subcommands_) {
      if (subcommand.app->parsed()) {
        return subcommand.command.get();
      }
    }
    return nullptr;
  }

  std::vector<Subcommand> subcommands_;
};

}  // namespace

void CentralOptions::RegisterServer(CLI::App& command) {
  command
      .add_option(
          "--server", server_,
          "Connection string of PostgreSQL: a URI, key=value words or service=NAME, without "
          "a password; else the setting Connection of [Central]")
      ->type_name("CONNINFO");
}

void CentralOptions::RegisterYard(CLI::App& command) {
  command.add_option("--yard", yard_, "Name of the yard; else the setting Yard of [Central]")
      ->type_name("NAME");
}

std::string CentralOptions::Connection(Session& session) const {
  std::string connection = server_.empty() ? session.Central().connection : server_;
  if (connection.empty()) {
    throw CLI::RequiredError("--server");
  }
  return connection;
}

std::string CentralOptions::Yard(Session& session) const {
  std::string yard = YardIfNamed(session);
  if (yard.empty()) {
    throw CLI::RequiredError("--yard");
  }
  return yard;
}

std::string CentralOptions::YardIfNamed(Session& session) const {
  return yard_.empty() ? session.Central().yard : yard_;
}

int CentralOptions::Run(Session& session,
                        const std::function<int(CentralConnection&)>& work) const {
  const std::string connection = Connection(session);
  try {
    CentralConnection server(connection);
    const int code = work(server);
    session.Progress().Clear();
    return code;
  } catch (const Error& error) {
    session.Progress().Clear();
    session.Op().ShowMessage(
        {.icon = Icon::kCritical, .title = std::string(kCentralErrorTitle), .text = error.what()});
    return kFailed;
  }
}

CentralProgress ProgressOf(Session& session) {
  constexpr int kSteps = 1000;
  CentralProgress progress;
  progress.show = [&session, last = std::string()](const std::string& doing, std::int64_t done,
                                                   std::int64_t total) mutable {
    ProgressLine& line = session.Progress();
    if (doing != last) {
      last = doing;
      line.SetProgressMessage(doing);
      line.SetProgressRange(total > 0 ? kSteps : 0);
    }
    if (total > 0) {
      line.SetProgressValue(static_cast<int>(done * kSteps / total));
    }
  };
  return progress;
}

std::unique_ptr<Command> MakeCentralCommand() { return std::make_unique<CentralCommand>(); }

}  // namespace vrx
