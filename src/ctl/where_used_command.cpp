#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>

#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/number_option.h"
#include "ctl/output.h"
#include "ctl/recipe_file.h"
#include "ctl/session.h"
#include "database/records.h"
#include "feed/where_used.h"

namespace vrx {
namespace {

class WhereUsedCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("where-used", "List the recipes that use an ingredient");
    command->add_option("rdb", file_, "A recipe database")->required();
    AddRecordNumber(*command, "ingredient", "Number of the ingredient", kIngredientCount, id_);
    output_.RegisterJson(*command);
    AddExamples(*command, {{"where-used SITE.RDB 3", "The recipes with ingredient 3."}});
    return command;
  }

  bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    return ReadRecipeFile(session, file_, [&](SQLite::Database& database) {
      OutputTable table{.header = {"ID", "Name"}, .rows = {}};
      for (const WhereUsed& use : FindWhereIngUsed(database, id_, false)) {
        table.rows.push_back({use.recipe_id, use.recipe_name});
      }
      WriteTable(session.Out(), output_.Form(), table);
    });
  }

 private:
  std::string file_;
  int id_ = 0;
  OutputOptions output_;
};

}  // namespace

std::unique_ptr<Command> MakeWhereUsedCommand() { return std::make_unique<WhereUsedCommand>(); }

}  // namespace vrx
