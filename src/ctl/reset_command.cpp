#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>

#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/number_option.h"
#include "ctl/recipe_file.h"
#include "ctl/session.h"
#include "database/records.h"
#include "feed/pen_capacity.h"
#include "feed/record_kind.h"
#include "feed/record_reset.h"

namespace vrx {
namespace {

class ResetCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("reset", "Put a record back to its defaults");
    command->require_subcommand(1);
    for (const RecordKindTraits& kind : RecordKinds()) {
      CLI::App* form =
          command->add_subcommand(std::string(kind.noun), "Put a record back to its defaults");
      form->add_option("rdb", file_, "A recipe database")->required();
      AddRecordNumber(*form, "id", "Number of the record", kind.count, id_);
      const std::string call = "reset " + std::string(kind.noun) + " SITE.RDB 90";
      const std::string call_without_question = call + " --yes";
      AddExamples(*form, {{call, "Puts number 90 back to its defaults, after a question."},
                          {call_without_question, "The same without the question."}});
      form->callback([this, chosen = kind.kind] { kind_ = chosen; });
    }
    AddExamples(*command, {{"reset pen SITE.RDB 12", "Asks, then takes pen 12 out of use."}});
    return command;
  }

  int Run(Session& session) override {
    return ActOnRecipeFile(session, file_, [&](SQLite::Database& database) {
      const FeedPorts ports{.op = session.Op(),
                            .settings = session.Settings(),
                            .calendar = session.Context().calendar,
                            .identity = session.Identity()};
      const bool reset = ResetRecord(database, kind_, id_, ports);
      if (kind_ == RecordKind::kPen) {
        TellPenCapacity(session, database);
      }
      return reset;
    });
  }

 private:
  static void TellPenCapacity(Session& session, SQLite::Database& database) {
    if (const auto size = CheckPenCapacity(ReadPens(database))) {
      session.Op().Tell(PenCapacityWarning(*size));
    }
  }

  RecordKind kind_ = RecordKind::kIngredient;
  std::string file_;
  int id_ = 0;
};

}  // namespace

std::unique_ptr<Command> MakeResetCommand() { return std::make_unique<ResetCommand>(); }

}  // namespace vrx
