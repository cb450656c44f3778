#include <filesystem>
#include <string>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>

#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/output.h"
#include "ctl/recipe_file.h"
#include "ctl/session.h"
#include "database/records.h"
#include "feed/record_kind.h"

namespace vrx {
namespace {

OutputTable IngredientTable(SQLite::Database& database, bool all) {
  OutputTable table{.header = {"ID", "Name", "Description", "DryMatter%", "HandAdd"}, .rows = {}};
  for (const IngredientRecord& record : ReadIngredients(database)) {
    if (all || IsActive(record)) {
      table.rows.push_back(
          {record.id, record.name, record.description, record.dry_matter_percent, record.hand_add});
    }
  }
  return table;
}

OutputTable RecipeTable(SQLite::Database& database, bool all) {
  OutputTable table{.header = {"ID", "Name", "Description", "BatchType", "HeadCount",
                               "RationTarget", "AdjBatTotIndex"},
                    .rows = {}};
  for (const RecipeRecord& record : ReadRecipes(database)) {
    if (all || IsActive(record)) {
      table.rows.push_back({record.id, record.name, record.description, record.batch_type,
                            record.head_count, record.ration_target, record.adjust_batch_index});
    }
  }
  return table;
}

OutputTable PenTable(SQLite::Database& database, bool all) {
  OutputTable table{.header = {"ID", "Name", "Description", "FeedAmount"}, .rows = {}};
  for (const PenRecord& record : ReadPens(database)) {
    if (all || IsActive(record)) {
      table.rows.push_back({record.id, record.name, record.description, record.feed_amount});
    }
  }
  return table;
}

class ListCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("list", "List the records of a recipe database");
    command->add_option("kind", kind_, "ingredients, recipes or pens")
        ->required()
        ->check(CLI::IsMember({"ingredients", "recipes", "pens"}));
    command->add_option("rdb", file_, "A recipe database")->required();
    command->add_flag("--all", all_, "Records out of use as well");
    output_.RegisterCsv(*command);
    output_.RegisterJson(*command);
    AddExamples(*command, {{"list pens SITE.RDB", "The pens in use, as a table."},
                           {"list recipes SITE.RDB --all --csv > recipes.csv",
                            "All 100 recipes, for a spreadsheet."}});
    return command;
  }

  bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    return ReadRecipeFile(session, file_, [&](SQLite::Database& database) {
      WriteTable(session.Out(), output_.Form(), Table(database));
    });
  }

 private:
  OutputTable Table(SQLite::Database& database) const {
    if (kind_ == "ingredients") {
      return IngredientTable(database, all_);
    }
    return kind_ == "recipes" ? RecipeTable(database, all_) : PenTable(database, all_);
  }

  std::string kind_;
  std::string file_;
  bool all_ = false;
  OutputOptions output_;
};

}  // namespace

std::unique_ptr<Command> MakeListCommand() { return std::make_unique<ListCommand>(); }

}  // namespace vrx
