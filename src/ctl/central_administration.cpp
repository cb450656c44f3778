#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <system_error>

#include <CLI/CLI.hpp>

#include "central/administration.h"
#include "ctl/central_command.h"
#include "ctl/options.h"
#include "ctl/session.h"

namespace vrx {
namespace {

class CentralInitCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "init", "Make or upgrade the schema and the roles; for the administrator");
    options_.RegisterServer(*command);
    AddExamples(*command, {{"central init --server service=company",
                            "The database must exist; its encoding is UTF8."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    return options_.Run(session, [&](CentralConnection& server) {
      switch (InitCentral(server)) {
        case InitOutcome::kMade:
          session.Out() << "made\n";
          break;
        case InitOutcome::kUpgraded:
          session.Out() << "upgraded\n";
          break;
        case InitOutcome::kUpToDate:
          session.Out() << "up to date\n";
          break;
      }
      return kDone;
    });
  }

 private:
  CentralOptions options_;
};

class CentralAddYardCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command =
        app.add_subcommand("add-yard", "Add a yard and its login; for the administrator");
    options_.RegisterServer(*command);
    command->add_option("name", name_, "Name of the yard")->required();
    command->add_option("--zone", zone_, "Time zone of its local days, such as America/Denver")
        ->type_name("ZONE")
        ->required();
    command->add_option("--login", login_, "Login of its program; a new one has no password")
        ->type_name("NAME")
        ->required();
    AddExamples(
        *command,
        {{"central add-yard --server service=company North --zone America/Chicago --login north",
          "Writes the yard's ID."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    return options_.Run(session, [&](CentralConnection& server) {
      session.Out() << AddYard(server, name_, zone_, login_) << '\n';
      return kDone;
    });
  }

 private:
  CentralOptions options_;
  std::string name_;
  std::string zone_;
  std::string login_;
};

class CentralAliasCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "alias", "Say what the company calls an ingredient of a yard; for the administrator");
    options_.RegisterServer(*command);
    options_.RegisterYard(*command);
    command->add_option("name", name_, "Name in the yard")->required();
    command->add_option("company-name", company_name_, "Name in figures; '' removes the alias")
        ->required();
    AddExamples(*command, {{"central alias --server service=company --yard North CORN FLAKED-CORN",
                            "The figures of North's CORN are FLAKED-CORN's."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const std::string yard = options_.Yard(session);
    return options_.Run(session, [&](CentralConnection& server) {
      SetAlias(server, yard, name_, company_name_);
      return kDone;
    });
  }

 private:
  CentralOptions options_;
  std::string name_;
  std::string company_name_;
};

enum class WithdrawalKind { kWithdraw, kErase };

class CentralWithdrawCommand : public Command {
 public:
  explicit CentralWithdrawCommand(WithdrawalKind kind) : kind_(kind) {}

  CLI::App* Register(CLI::App& app) override {
    const bool erases = kind_ == WithdrawalKind::kErase;
    const std::string name = erases ? "erase" : "withdraw";
    CLI::App* command = app.add_subcommand(
        name, erases ? "Delete rows of a source for good; for the administrator"
                     : "Take rows of a source out of all figures; for the administrator");
    options_.RegisterServer(*command);
    command->add_option("--source", order_.source, "ID of the source")
        ->type_name("UUID")
        ->required();
    command->add_option("--rows", rows_, "First and last row; else the whole source")
        ->type_name("A-B");
    command->add_option("--why", order_.why, "The reason, for the journal")
        ->type_name("TEXT")
        ->required();
    AddExamples(*command,
                {{"central " + name +
                      " --server service=company --source UUID --rows 1201-1260 --why fed-twice",
                  "Writes the number of rows."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    ReadRange();
    const bool erases = kind_ == WithdrawalKind::kErase;
    return options_.Run(session, [&](CentralConnection& server) {
      if (erases && !Confirmed(session)) {
        return kFailed;
      }
      session.Out() << (erases ? Erase(server, order_) : Withdraw(server, order_)) << '\n';
      return kDone;
    });
  }

 private:
  void ReadRange() {
    if (rows_.empty()) {
      return;
    }
    const std::size_t hyphen = rows_.find('-', 1);
    const auto first = ParseRow(rows_.substr(0, hyphen));
    const auto last = hyphen == std::string::npos ? first : ParseRow(rows_.substr(hyphen + 1));
    if (!first || !last || *first > *last) {
      throw CLI::ValidationError("--rows", "'" + rows_ + "' is no range of rows such as 5-9");
    }
    order_.first_row = first;
    order_.last_row = last;
  }

  static std::optional<std::int64_t> ParseRow(const std::string& text) {
    std::int64_t row = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), row);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(row) : std::nullopt;
  }

  [[nodiscard]] bool Confirmed(Session& session) const {
    return session.Op().ShowMessage({.icon = Icon::kQuestion,
                                     .buttons = Buttons::kYesNo,
                                     .title = "Central Database",
                                     .text = "Do you want to delete the rows " +
                                             (rows_.empty() ? "of the whole source" : rows_) +
                                             " for good?",
                                     .refuses_by_default = true}) == Answer::kYes;
  }

  WithdrawalKind kind_;
  CentralOptions options_;
  std::string rows_;
  WithdrawalOrder order_;
};

}  // namespace

std::unique_ptr<Command> MakeCentralInitCommand() { return std::make_unique<CentralInitCommand>(); }

std::unique_ptr<Command> MakeCentralAddYardCommand() {
  return std::make_unique<CentralAddYardCommand>();
}

std::unique_ptr<Command> MakeCentralAliasCommand() {
  return std::make_unique<CentralAliasCommand>();
}

std::unique_ptr<Command> MakeCentralWithdrawCommand() {
  return std::make_unique<CentralWithdrawCommand>(WithdrawalKind::kWithdraw);
}

std::unique_ptr<Command> MakeCentralEraseCommand() {
  return std::make_unique<CentralWithdrawCommand>(WithdrawalKind::kErase);
}

}  // namespace vrx
