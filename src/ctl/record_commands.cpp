#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>

#include "base/number.h"
#include "ctl/command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/recipe_file.h"
#include "ctl/session.h"
#include "database/records.h"
#include "feed/batch_type.h"
#include "feed/record_commit.h"
#include "feed/record_fields.h"
#include "presenter/record_actions.h"
#include "presenter/report_failure.h"

namespace vrx {

namespace {

// The value of an option, which may be empty; nothing if the option was not given.
std::optional<std::string> Given(const CLI::Option* option) {
  return option->count() > 0 ? std::optional(option->results().back()) : std::nullopt;
}

// The common part of the three kinds of records: options, and one edit of the database.
class RecordForm {
 public:
  RecordForm(CLI::App& set, const RecordKindTraits& kind)
      : app_(set.add_subcommand(std::string(kind.noun), "Edit a record as its form does")) {
    app_->add_option("rdb", file_, "A recipe database")->required();
    AddRecordNumber(*app_, "id", "Number of the record", kind.count, id_);
    name_ = Text("--name", "At most 6 characters: letters, digits, / + - and blank");
    description_ = Text("--description", "At most 16 characters: letters, digits, + - and blank");
  }

  CLI::Option* Text(const std::string& option, const std::string& help) {
    CLI::Option* added = app_->add_option(option, help)->expected(1)->type_name("TEXT");
    options_.push_back(added);
    return added;
  }

  CLI::App& App() { return *app_; }
  [[nodiscard]] bool Chosen() const { return app_->parsed(); }
  [[nodiscard]] int Id() const { return id_; }
  [[nodiscard]] std::optional<std::string> Name() const { return Given(name_); }
  [[nodiscard]] std::optional<std::string> Description() const { return Given(description_); }

  // `edit` reads, changes and writes the record, and returns the notes to show.
  int Run(Session& session,
          const std::function<std::vector<std::string>(SQLite::Database&)>& edit) {
    RequireAnOption();
    return EditRecipeFile(session, file_, kFieldErrorTitle, [&](SQLite::Database& database) {
      return EditOutcome{.notes = edit(database)};
    });
  }

 private:
  void RequireAnOption() const {
    for (const CLI::Option* option : options_) {
      if (option->count() > 0) {
        return;
      }
    }
    throw CLI::RequiredError("set " + app_->get_name() + ": at least one field to set");
  }

  CLI::App* app_;
  std::string file_;
  int id_ = 0;
  CLI::Option* name_ = nullptr;
  CLI::Option* description_ = nullptr;
  std::vector<CLI::Option*> options_;
};

class IngredientForm : public RecordForm {
 public:
  explicit IngredientForm(CLI::App& set) : RecordForm(set, TraitsOf(RecordKind::kIngredient)) {
    dry_matter_ = Text("--dry-matter", "Percent, 0 to 100");
    hand_add_ = Text("--hand-add", "yes or no")->check(CLI::IsMember({"yes", "no"}));
    AddExamples(App(),
                {{"set ingredient SITE.RDB 3 --name CORN --dry-matter 86",
                  "Names ingredient 3 and sets its dry matter; the recipes with it follow."}});
  }

  int Run(Session& session) {
    return RecordForm::Run(session, [&](SQLite::Database& database) {
      IngredientRecord record = ReadIngredient(database, Id());
      IngredientEdit edit{
          .name = Name(), .description = Description(), .dry_matter_percent = Given(dry_matter_)};
      if (const auto hand_add = Given(hand_add_)) {
        edit.hand_add = *hand_add == "yes";
      }
      auto notes = ApplyEdit(edit, session.Settings().AutoAbbreviateOn(), record);
      CommitIngredientRecord(database, record);
      return notes;
    });
  }

 private:
  CLI::Option* dry_matter_;
  CLI::Option* hand_add_;
};

class RecipeForm : public RecordForm {
 public:
  explicit RecipeForm(CLI::App& set) : RecordForm(set, TraitsOf(RecordKind::kRecipe)) {
    type_ = Text("--type", "W, H, % or P")->check(CLI::IsMember({"W", "H", "%", "P"}));
    head_count_ = Text("--head-count", "Head to feed, in a recipe of type H");
    ration_target_ = Text("--ration-target", "Weight wanted, in a recipe of type W, % or P");
    adjust_ = RequireWholeNumber(Text("--adjust", "Percent"), -kNoAdjustIndex, kNoAdjustIndex);
    AddExamples(App(),
                {{"set recipe SITE.RDB 4 --ration-target 12000", "Has 12000 of recipe 4 made."},
                 {"set recipe SITE.RDB 4 --adjust -5", "Has 5 percent less made."}});
  }

  int Run(Session& session) {
    return RecordForm::Run(session, [&](SQLite::Database& database) {
      RecipeRecord record = ReadRecipe(database, Id());
      RecipeEdit edit{.name = Name(),
                      .description = Description(),
                      .batch_type = Given(type_),
                      .head_count = Given(head_count_),
                      .ration_target = Given(ration_target_)};
      if (const auto adjust = Given(adjust_)) {
        edit.adjust_batch_index = kNoAdjustIndex - TextToLong(*adjust);
      }
      auto notes = ApplyEdit(edit, ReadRecipeLines(database, Id()),
                             session.Settings().AutoAbbreviateOn(), record);
      if (const std::string failure = CommitRecipeRecord(database, record); !failure.empty()) {
        notes.push_back("Recipe " + std::to_string(Id()) + " still cannot be computed: " + failure);
      }
      return notes;
    });
  }

 private:
  CLI::Option* type_;
  CLI::Option* head_count_;
  CLI::Option* ration_target_;
  CLI::Option* adjust_;
};

class PenForm : public RecordForm {
 public:
  explicit PenForm(CLI::App& set) : RecordForm(set, TraitsOf(RecordKind::kPen)) {
    feed_ = Text("--feed", "Feed amount, digits");
    AddExamples(App(), {{"set pen SITE.RDB 12 --feed 750", "Plans 750 for pen 12."}});
  }

  int Run(Session& session) {
    return RecordForm::Run(session, [&](SQLite::Database& database) {
      PenRecord record = ReadPen(database, Id());
      const PenEdit edit{.name = Name(), .description = Description(), .feed_amount = Given(feed_)};
      auto notes = ApplyEdit(edit, session.Settings().AutoAbbreviateOn(), record);
      CommitPenRecord(database, record);
      if (const auto size = CheckPenCapacity(ReadPens(database))) {
        notes.push_back(PenCapacityWarning(*size));
      }
      return notes;
    });
  }

 private:
  CLI::Option* feed_;
};

class SetCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("set", "Edit a record as its form does");
    command->require_subcommand(1);
    ingredient_.emplace(*command);
    recipe_.emplace(*command);
    pen_.emplace(*command);
    AddExamples(*command,
                {{"set recipe SITE.RDB 4 --ration-target 12000", "Has 12000 of recipe 4 made."},
                 {"set pen SITE.RDB 12 --feed 750", "Plans 750 for pen 12."}});
    return command;
  }

  int Run(Session& session) override {
    if (ingredient_->Chosen()) {
      return ingredient_->Run(session);
    }
    return recipe_->Chosen() ? recipe_->Run(session) : pen_->Run(session);
  }

 private:
  std::optional<IngredientForm> ingredient_;
  std::optional<RecipeForm> recipe_;
  std::optional<PenForm> pen_;
};

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

  [[nodiscard]] bool OnlyReads() const override { return true; }

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
      const bool reset =
          AskAndReset(database, kind_, id_, session.GetServices()) == ResetOutcome::kReset;
      if (kind_ == RecordKind::kPen) {
        ReportPenCapacity(session, database);
      }
      return reset;
    });
  }

 private:
  static void ReportPenCapacity(Session& session, SQLite::Database& database) {
    if (const auto size = CheckPenCapacity(ReadPens(database))) {
      session.Op().ShowNote(PenCapacityWarning(*size));
    }
  }

  RecordKind kind_ = RecordKind::kIngredient;
  std::string file_;
  int id_ = 0;
};

}  // namespace

std::unique_ptr<Command> MakeSetCommand() { return std::make_unique<SetCommand>(); }

std::unique_ptr<Command> MakeListCommand() { return std::make_unique<ListCommand>(); }

std::unique_ptr<Command> MakeResetCommand() { return std::make_unique<ResetCommand>(); }

}  // namespace vrx
