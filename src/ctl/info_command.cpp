#include <filesystem>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "base/date.h"
#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/output.h"
#include "ctl/session.h"
#include "database/identity.h"
#include "database/schema.h"

namespace vrx {
namespace {

Json DateOrNull(const std::optional<Date>& date) { return date ? Json(StoredText(*date)) : Json(); }

Json Describe(const DatabaseSummary& summary) {
  const bool recipe = summary.kind == DatabaseKind::kRecipe;
  Json object = {{"type", recipe ? "recipe" : "transaction"},
                 {"units", summary.unit},
                 {"created", DateOrNull(summary.created)},
                 {"modified", DateOrNull(summary.modified)}};
  if (recipe) {
    object["ingredients"] = summary.recipe.ingredients;
    object["recipes"] = summary.recipe.recipes;
    object["pens"] = summary.recipe.pens;
    // A whole database has no such key.
    if (summary.missing.Any()) {
      object["missing"] = ToText(summary.missing);
    }
  } else {
    object["rows"] = summary.transaction.rows;
    object["transactions"] = summary.transaction.transactions;
    object["firstDate"] = DateOrNull(summary.transaction.first_date);
    object["lastDate"] = DateOrNull(summary.transaction.last_date);
  }
  return object;
}

class InfoCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("info", "Tell what a database is and holds");
    command->add_option("file", file_, "A recipe or transaction database")->required();
    output_.RegisterJson(*command);
    AddExamples(
        *command,
        {{"info SITE.RDB", "Tells unit, dates and the numbers of records in use."},
         {"info JANUARY.TDB --json", "The same of a transaction database, for a program."}});
    return command;
  }

  bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const std::filesystem::path path = file_;
    const std::string type = session.Identity().GetDatabaseType(path);
    const DatabaseKind kind =
        type == kUserTransDb ? DatabaseKind::kTransaction : KindOfExtension(path);
    const bool accepted = type == kUserRecipeDb || session.AcceptsType(path, kind, type);
    if (!accepted) {
      return kFailed;
    }
    return session.OnDatabase(path, kind, [&] {
      const DatabaseSummary summary = ReadDatabaseSummary(path, session.Context().busy_timeout);
      WriteObject(session.Out(), output_.Form(), Describe(summary));
      return kDone;
    });
  }

 private:
  std::string file_;
  OutputOptions output_;
};

}  // namespace

std::unique_ptr<Command> MakeInfoCommand() { return std::make_unique<InfoCommand>(); }

}  // namespace vrx
