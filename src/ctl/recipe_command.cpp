#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>

#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/number_option.h"
#include "ctl/output.h"
#include "ctl/recipe_file.h"
#include "ctl/session.h"
#include "database/records.h"
#include "feed/line_cells.h"
#include "feed/ration.h"
#include "feed/ration_totals.h"

namespace vrx {
namespace {

Json Head(const RecipeRecord& recipe) {
  return {{"ID", recipe.id},
          {"Name", recipe.name},
          {"Description", recipe.description},
          {"BatchType", recipe.batch_type},
          {"HeadCount", recipe.head_count},
          {"RationTarget", recipe.ration_target},
          {"AdjBatTotIndex", recipe.adjust_batch_index}};
}

OutputTable LineTable(const std::vector<RecipeLineRecord>& lines) {
  OutputTable table{.header = {"RecipeID", "Ingredient", "Target", "Ration%", "DryMatter%",
                               "DryMatter", "BatchTarget", "Sequence", "HandAdd", "Ingredient%"},
                    .rows = {}};
  for (const RecipeLineRecord& line : lines) {
    table.rows.push_back({line.recipe_id, line.ingredient, line.target, line.ration_percent,
                          line.dry_matter_percent, line.dry_matter, line.batch_target,
                          std::to_string(line.sequence), line.hand_add,
                          PercentText(line.ingredient_percent)});
  }
  return table;
}

Json Totals(const TotalsRow& row) {
  Json object = Json::object();
  for (const auto& [label, text] : row.Labels()) {
    object[std::string(label)] = text;
  }
  return object;
}

Json Inputs(const RecipeInputs& inputs) {
  return {{"HeadCount", inputs.head_count},
          {"RationTarget", inputs.ration_target},
          {"AdjustBatch", inputs.adjust_batch}};
}

// Plain: four tables with a header line each, an empty line between them.
void ShowRecipe(std::ostream& out, OutputForm form, const Ration& ration,
                const RecipeTotals& totals) {
  Json document = Head(ration.recipe);
  const OutputTable lines = LineTable(ration.lines);
  if (form == OutputForm::kJson) {
    document["lines"] = ToJson(lines);
    document["totals"] = Totals(totals.row);
    document["inputs"] = Inputs(totals.enabled);
    WriteObject(out, form, document);
    return;
  }
  WriteObject(out, form, document);
  out << '\n';
  WriteTable(out, form, lines);
  out << '\n';
  WriteObject(out, form, Totals(totals.row));
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

  bool OnlyReads() const override { return true; }

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

}  // namespace

std::unique_ptr<Command> MakeRecipeCommand() { return std::make_unique<RecipeCommand>(); }

}  // namespace vrx
