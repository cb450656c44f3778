#include <memory>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include "ctl/command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/recipe_file.h"
#include "ctl/recipe_output.h"
#include "ctl/session.h"
#include "database/records.h"
#include "exchange/recipe_text.h"
#include "feed/ration.h"
#include "feed/where_used.h"

namespace vrx {

namespace {

Json Inputs(const RecipeInputs& inputs) {
  return {{"HeadCount", inputs.head_count},
          {"RationTarget", inputs.ration_target},
          {"AdjustBatch", inputs.adjust_batch}};
}

// Plain output has four tables with header lines, separated by empty lines.
void ShowRecipe(std::ostream& out, OutputForm form, const Ration& ration,
                const RecipeTotals& totals) {
  Json document = RecipeHead(ration.recipe);
  const OutputTable lines = RecipeLineTable(ration.lines);
  if (form == OutputForm::kJson) {
    document["lines"] = ToJson(lines);
    document["totals"] = RecipeTotalsObject(totals.row);
    document["inputs"] = Inputs(totals.enabled);
    WriteObject(out, form, document);
    return;
  }
  WriteObject(out, form, document);
  out << '\n';
  WriteTable(out, form, lines);
  out << '\n';
  WriteObject(out, form, RecipeTotalsObject(totals.row));
  out << '\n';
  WriteObject(out, form, Inputs(totals.enabled));
}

class RecipeCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("recipe", "Show a recipe, recomputed from its lines");
    command->add_option("rdb", file_, "A recipe database")->required();
    AddRecordNumber(*command, "id", "Number of the recipe", kRecipeCount, id_);
    output_.RegisterJson(*command);
    AddExamples(*command, {{"recipe SITE.RDB 4", "Recipe 4 with its lines and totals."},
                           {"recipe SITE.RDB 4 --json", "The same for a program."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    return ReadRecipeFile(session, file_, [&](SQLite::Database& database) {
      Ration ration{.recipe = ReadRecipe(database, id_), .lines = ReadRecipeLines(database, id_)};
      const RecipeTotals totals = RecalcRecipe(ration);
      ShowRecipe(session.Out(), output_.Form(), ration, totals);
    });
  }

 private:
  std::string file_;
  int id_ = 0;
  OutputOptions output_;
};

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

  [[nodiscard]] bool OnlyReads() const override { return true; }

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

class DownloadTextCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "download-text", "Print the recipe file that a download would send; nothing is stored");
    command->add_option("rdb", file_, "A recipe database")->required();
    AddExamples(*command, {{"download-text SITE.RDB > SITE.RBU",
                            "Writes the recipe file as a backup, byte for byte."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const bool batch_target = session.Settings().BatchTargetWtIsRecTargetOn();
    return ReadRecipeFile(session, file_, [&](SQLite::Database& database) {
      const SQLite::Transaction snapshot(database);
      session.Out() << BuildRecipeDownload(ReadRecipeTables(database), batch_target).text;
    });
  }

 private:
  std::string file_;
};

}  // namespace

std::unique_ptr<Command> MakeRecipeCommand() { return std::make_unique<RecipeCommand>(); }

std::unique_ptr<Command> MakeWhereUsedCommand() { return std::make_unique<WhereUsedCommand>(); }

std::unique_ptr<Command> MakeDownloadTextCommand() {
  return std::make_unique<DownloadTextCommand>();
}

}  // namespace vrx
