#include <string>

#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/import_road.h"
#include "ctl/session.h"
#include "database/identity.h"
#include "database/schema.h"

namespace vrx {
namespace {

class StoreCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("store", "Import a transaction file and store its rows");
    command->add_option("file", file_, "A transaction file (.QXT)")->required();
    command->add_option("--into", transactions_, "The transaction database that gets the rows")
        ->required()
        ->type_name("TDB");
    command->add_option("--recipes", recipes_, "The recipe database that gives the names")
        ->required()
        ->type_name("RDB");
    AddExamples(*command, {{"store 01.QXT --into JANUARY.TDB --recipes SITE.RDB",
                            "Puts the file behind what the database holds."}});
    return command;
  }

  int Run(Session& session) override {
    if (!session.IsUserDatabase(transactions_, DatabaseKind::kTransaction) ||
        !session.IsUserDatabase(recipes_, DatabaseKind::kRecipe)) {
      return kFailed;
    }
    return session.OnDatabase(transactions_, DatabaseKind::kTransaction, [&] {
      ImportRoad road(
          session, {.recipe_db_path = recipes_,
                    .trans_db_path = transactions_,
                    .trans_db_uom = ReadDatabaseUoM(transactions_, session.Context().busy_timeout),
                    .lock_wait = session.Context().busy_timeout});
      return road.Import(file_) ? Store(session, road) : kFailed;
    });
  }

 private:
  static int Store(Session& session, ImportRoad& road) {
    const StoreOutcome outcome = road.Store();
    if (outcome.complete) {
      session.Op().Tell(session.Progress().Message());
    }
    if (outcome.complete || outcome.stored > 0) {
      session.Op().Tell(
          "rows read: " + std::to_string(road.File().FileRecordCount()) + ", stored: " +
          std::to_string(outcome.stored) + ", left out: " + std::to_string(outcome.left_out) +
          (outcome.not_read == 0 ? std::string()
                                 : ", not read: " + std::to_string(outcome.not_read)));
    }
    return outcome.complete && outcome.not_read == 0 ? kDone : kFailed;
  }

  std::string file_;
  std::string transactions_;
  std::string recipes_;
};

}  // namespace

std::unique_ptr<Command> MakeStoreCommand() { return std::make_unique<StoreCommand>(); }

}  // namespace vrx
