#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

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
#include "feed/recipe_copy.h"
#include "feed/where_used.h"
#include "presenter/report_failure.h"

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

// Shows a recipe, or runs one of its subcommands.
class RecipeCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    app_ = app.add_subcommand(
        "recipe", "Show a recipe, recomputed from its lines; copy a recipe, compare two");
    app_->add_option("rdb", file_, "A recipe database; ./copy or ./diff for a file with that name")
        ->required();
    AddRecordNumber(*app_, "id", "Number of the recipe", kRecipeCount, id_);
    output_.RegisterJson(*app_);
    // The parser takes the name of a subcommand for a required argument that is missing.
    app_->preparse_callback([this](std::size_t) {
      for (CLI::Option* argument : Arguments()) {
        argument->required(false);
      }
    });
    AddSubcommand(MakeRecipeCopyCommand());
    AddSubcommand(MakeRecipeDiffCommand());
    AddExamples(*app_, {{"recipe SITE.RDB 4", "Recipe 4 with its lines and totals."},
                        {"recipe SITE.RDB 4 --json", "The same for a program."},
                        {"recipe copy SITE.RDB 4 10", "Copies recipe 4 to recipe 10."},
                        {"recipe diff SITE.RDB 4 5", "What differs between recipes 4 and 5."}});
    return app_;
  }

  [[nodiscard]] bool OnlyReads() const override {
    const Command* chosen = Chosen();
    return chosen == nullptr || chosen->OnlyReads();
  }

  int Run(Session& session) override {
    if (Command* const chosen = Chosen()) {
      RequireNoArguments();
      return chosen->Run(session);
    }
    RequireArguments();
    return ReadRecipeFile(session, file_, [&](SQLite::Database& database) {
      Ration ration{.recipe = ReadRecipe(database, id_), .lines = ReadRecipeLines(database, id_)};
      const RecipeTotals totals = RecalcRecipe(ration);
      ShowRecipe(session.Out(), output_.Form(), ration, totals);
    });
  }

 private:
  struct Subcommand {
    std::unique_ptr<Command> command;
    CLI::App* app;
  };

  void AddSubcommand(std::unique_ptr<Command> command) {
    CLI::App* const app = command->Register(*app_);
    subcommands_.push_back({std::move(command), app});
  }

  [[nodiscard]] Command* Chosen() const {
    for (const Subcommand& subcommand : subcommands_) {
      if (subcommand.app->parsed()) {
        return subcommand.command.get();
      }
    }
    return nullptr;
  }

  [[nodiscard]] std::vector<CLI::Option*> Arguments() const {
    return app_->get_options([](const CLI::Option* option) { return option->get_positional(); });
  }

  void RequireArguments() const {
    for (const CLI::Option* argument : Arguments()) {
      if (argument->count() == 0) {
        throw CLI::RequiredError(argument->get_name());
      }
    }
  }

  // The parser gives this command whatever a subcommand does not take.
  void RequireNoArguments() const {
    for (const CLI::Option* option : app_->get_options()) {
      if (option->count() > 0) {
        throw CLI::ExtrasError(
            {option->get_positional() ? option->results().front() : option->get_name()});
      }
    }
  }

  CLI::App* app_ = nullptr;
  std::string file_;
  int id_ = 0;
  OutputOptions output_;
  std::vector<Subcommand> subcommands_;
};

class RecipeCopyCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("copy", "Copy a recipe with its lines to a free record");
    command->add_option("rdb", file_, "A recipe database")->required();
    AddRecordNumber(*command, "from", "Number of the recipe", kRecipeCount, from_);
    AddRecordNumber(*command, "to", "Number of a recipe without description and lines",
                    kRecipeCount, to_);
    AddExamples(*command, {{"recipe copy SITE.RDB 4 10",
                            "Copies recipe 4 to recipe 10, which must be free."}});
    return command;
  }

  int Run(Session& session) override {
    return ActOnRecipeFile(session, file_, [&](SQLite::Database& database) {
      const FailureReport refusal{.title = "Copy (Error)", .text = FailureText::kMessage};
      return RunReported<CopyRefusal>(session.Op(), refusal, [&] {
        ShowNotes(session.Op(), CopyRecipe(database, from_, to_, session.Context().calendar));
      });
    });
  }

 private:
  static void ShowNotes(TerminalOperator& op, const RecipeCopy& copied) {
    const auto numbered = [](const RecipeRecord& recipe) {
      return std::to_string(recipe.id) + " (" + recipe.name + ")";
    };
    op.ShowNote("Recipe " + numbered(copied.source) + " is copied to recipe " +
                numbered(copied.copy) + ", with " + std::to_string(copied.line_count) +
                (copied.line_count == 1 ? " line." : " lines."));
    if (copied.source.name == copied.copy.name) {
      op.ShowNote(
          "Both have the same name: the history shows their batches as one recipe until one of "
          "them is renamed.");
    }
  }

  std::string file_;
  int from_ = 0;
  int to_ = 0;
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

std::unique_ptr<Command> MakeRecipeCopyCommand() { return std::make_unique<RecipeCopyCommand>(); }

std::unique_ptr<Command> MakeWhereUsedCommand() { return std::make_unique<WhereUsedCommand>(); }

std::unique_ptr<Command> MakeDownloadTextCommand() {
  return std::make_unique<DownloadTextCommand>();
}

}  // namespace vrx
