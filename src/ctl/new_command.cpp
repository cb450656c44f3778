#include <filesystem>
#include <string>

#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/session.h"
#include "database/schema.h"
#include "presenter/create_database.h"

namespace vrx {
namespace {

class NewCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("new", "Make a database from the blank template");
    command->add_option("kind", kind_, "recipe or transaction")
        ->required()
        ->check(CLI::IsMember({"recipe", "transaction"}));
    command->add_option("file", file_, "Path of the new database")->required();
    command->add_option("--units", units_, "Weight unit; by default the system's")
        ->check(CLI::IsMember({"LB", "KG"}));
    AddExamples(*command,
                {{"new recipe YARD.RDB", "Makes a recipe database in the unit of the settings."},
                 {"new transaction FEBRUARY.TDB --units KG",
                  "Makes a transaction database for weights in kilograms."}});
    return command;
  }

  int Run(Session& session) override {
    const std::filesystem::path path = file_;
    CurrentDatabase current;
    const NewDatabase wanted{
        .kind = kind_ == "recipe" ? DatabaseKind::kRecipe : DatabaseKind::kTransaction,
        .program_directory = session.Context().system.ProgramDirectory(),
        .path = path,
        .title = path.filename().string(),
        .unit = units_.empty() ? session.Settings().SystemUnits() : units_};
    return CreateDatabase(wanted, session.Identity(), session.Op(), current) ? kDone : kFailed;
  }

 private:
  std::string kind_;
  std::string file_;
  std::string units_;
};

}  // namespace

std::unique_ptr<Command> MakeNewCommand() { return std::make_unique<NewCommand>(); }

}  // namespace vrx
