#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>

#include "ctl/command.h"
#include "ctl/options.h"
#include "ctl/recipe_file.h"
#include "ctl/session.h"
#include "database/records.h"
#include "feed/recipe_columns.h"
#include "feed/recipe_editor.h"
#include "feed/record_fields.h"
#include "presenter/record_actions.h"
#include "settings/settings.h"

namespace vrx {

namespace {

// One of the four subcommands: its options and its edit of the recipe.
class LineAction {
 public:
  // Returns false after reporting a refusal.
  using Edit = std::function<bool(RecipeEditor&)>;

  LineAction(CLI::App& line, const std::string& name, const std::string& description)
      : app_(line.add_subcommand(name, description)) {
    app_->add_option("rdb", file_, "A recipe database")->required();
    AddRecordNumber(*app_, "recipe", "Number of the recipe", kRecipeCount, recipe_);
  }

  [[nodiscard]] bool Chosen() const { return app_->parsed(); }

  int Run(Session& session, const Edit& edit) const {
    const PrivateINI& settings = session.Settings();
    return EditRecipeFile(session, file_, kFieldErrorTitle, [&](SQLite::Database& database) {
      RecipeMessages messages(session.Op(), settings);
      RecipeEditor editor(database, messages, recipe_);
      editor.RequireOpenLines();
      EditOutcome outcome{.done = edit(editor)};
      if (const std::string& failure = editor.Current().failure; !failure.empty()) {
        outcome.notes.push_back(Label() + " still cannot be computed: " + failure);
      }
      return outcome;
    });
  }

 protected:
  CLI::App& App() { return *app_; }
  [[nodiscard]] std::string Label() const { return "Recipe " + std::to_string(recipe_); }

 private:
  CLI::App* app_;
  std::string file_;
  int recipe_ = 0;
};

// The options for the amount of a line, which depend on the recipe's type.
class AmountOptions {
 public:
  void Register(CLI::App& app) {
    weight_option_ =
        app.add_option(
               "--weight", weight_,
               "Dry-matter weight (Target), in a recipe of type W, H or %: at most 6 digits")
            ->type_name("N");
    percent_option_ =
        app.add_option("--percent", percent_,
                       "Share (Ingredient%), in a recipe of type P: 0 to 100, at most "
                       "two decimals")
            ->type_name("P")
            ->excludes(weight_option_);
  }

  [[nodiscard]] bool Given() const {
    return weight_option_->count() + percent_option_->count() > 0;
  }

  // Enters nothing if neither was given. Refuses an empty text, which is most likely an unset
  // variable of a script.
  void Enter(RecipeEditor& editor) const {
    if (!Given()) {
      return;
    }
    const bool by_weight = weight_option_->count() > 0;
    const LineColumn column = by_weight ? LineColumn::kTarget : LineColumn::kIngredientPercent;
    const std::string& typed = by_weight ? weight_ : percent_;
    if (typed.empty()) {
      throw FieldRefusal("The '" + std::string(LineColumnName(column)) + "' field needs a number.");
    }
    editor.EnterCell(column, typed);
  }

 private:
  std::string weight_;
  std::string percent_;
  CLI::Option* weight_option_ = nullptr;
  CLI::Option* percent_option_ = nullptr;
};

class AddAction : public LineAction {
 public:
  explicit AddAction(CLI::App& line)
      : LineAction(line, "add", "Add a line after the last one of a recipe") {
    AddRecordNumber(App(), "ingredient", "Number of an ingredient in use", kIngredientCount,
                    ingredient_);
    amount_.Register(App());
    AddExamples(App(),
                {{"line add SITE.RDB 4 3 --weight 5400", "Adds 5400 of ingredient 3 to recipe 4."},
                 {"line add SITE.RDB 1 3 --percent 12.5", "Adds a share, in a recipe of type P."}});
  }

  int Run(Session& session) const {
    if (!amount_.Given()) {
      throw CLI::RequiredError("line add: --weight or --percent");
    }
    return LineAction::Run(session, [&](RecipeEditor& editor) {
      editor.RequireRoom();
      editor.GoToRow(kEntryRow);
      editor.ChooseIngredient(ingredient_);
      amount_.Enter(editor);
      return editor.CommitRow();
    });
  }

 private:
  int ingredient_ = 0;
  AmountOptions amount_;
};

// An action on an existing line.
class PositionAction : public LineAction {
 public:
  PositionAction(CLI::App& line, const std::string& name, const std::string& description)
      : LineAction(line, name, description) {
    // The editor checks the position against the recipe.
    using Any = std::numeric_limits<int>;
    AddWholeNumber(App(), "position", "Place of the line in the recipe, from 1", Any::min(),
                   Any::max(), position_)
        ->required();
  }

 protected:
  int RunOnLine(Session& session, const Edit& edit) const {
    return LineAction::Run(session, [&](RecipeEditor& editor) {
      GoToPosition(editor);
      return edit(editor);
    });
  }

 private:
  void GoToPosition(RecipeEditor& editor) const {
    const int count = editor.Current().LineCount();
    if (position_ < 1 || position_ > count) {
      const std::string lines =
          count == 1 ? "its only line is 1" : "its lines are 1 to " + std::to_string(count);
      throw FieldRefusal(Label() + (count == 0 ? " has no lines."
                                               : " has no line " + std::to_string(position_) +
                                                     ", " + lines + "."));
    }
    editor.GoToRow(position_);
  }

  int position_ = 0;
};

class SetAction : public PositionAction {
 public:
  explicit SetAction(CLI::App& line) : PositionAction(line, "set", "Change a line of a recipe") {
    ingredient_option_ = AddWholeNumber(App(), "--ingredient", "Number of an ingredient in use", 1,
                                        kIngredientCount, ingredient_);
    amount_.Register(App());
    AddExamples(
        App(),
        {{"line set SITE.RDB 4 1 --weight 5200", "Changes the weight of line 1 of recipe 4."},
         {"line set SITE.RDB 4 1 --ingredient 7", "Puts ingredient 7 into its place."}});
  }

  int Run(Session& session) const {
    const bool ingredient_given = ingredient_option_->count() > 0;
    if (!ingredient_given && !amount_.Given()) {
      throw CLI::RequiredError("line set: --ingredient, --weight or --percent");
    }
    return RunOnLine(session, [&](RecipeEditor& editor) {
      if (ingredient_given) {
        editor.ChooseIngredient(ingredient_);
      }
      amount_.Enter(editor);
      return true;
    });
  }

 private:
  int ingredient_ = 0;
  CLI::Option* ingredient_option_ = nullptr;
  AmountOptions amount_;
};

class DeleteAction : public PositionAction {
 public:
  explicit DeleteAction(CLI::App& line)
      : PositionAction(line, "delete", "Delete a line of a recipe, after its question") {
    AddExamples(App(), {{"line delete SITE.RDB 4 2 --yes",
                         "Deletes line 2 of recipe 4 without a question."}});
  }

  int Run(Session& session) const {
    return RunOnLine(session, [](RecipeEditor& editor) { return editor.DeleteIng(); });
  }
};

class MoveAction : public PositionAction {
 public:
  explicit MoveAction(CLI::App& line)
      : PositionAction(line, "move",
                       "Swap a line with its neighbour; Sequence, HandAdd and Ingredient% stay") {
    App()
        .add_option("direction", direction_, "up or down")
        ->required()
        ->check(CLI::IsMember({"up", "down"}));
    AddExamples(App(), {{"line move SITE.RDB 4 2 up", "Loads the second line of recipe 4 first."}});
  }

  int Run(Session& session) const {
    return RunOnLine(session, [&](RecipeEditor& editor) {
      return editor.MoveRow(direction_ == "up" ? MoveDirection::kUp : MoveDirection::kDown);
    });
  }

 private:
  std::string direction_;
};

class LineCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("line", "Edit the lines of a recipe");
    command->require_subcommand(1);
    add_.emplace(*command);
    set_.emplace(*command);
    delete_.emplace(*command);
    move_.emplace(*command);
    AddExamples(*command,
                {{"line add SITE.RDB 4 3 --weight 5400", "Adds 5400 of ingredient 3 to recipe 4."},
                 {"line move SITE.RDB 4 2 up", "Loads its second line first."}});
    return command;
  }

  int Run(Session& session) override {
    if (add_->Chosen()) {
      return add_->Run(session);
    }
    if (set_->Chosen()) {
      return set_->Run(session);
    }
    return delete_->Chosen() ? delete_->Run(session) : move_->Run(session);
  }

 private:
  std::optional<AddAction> add_;
  std::optional<SetAction> set_;
  std::optional<DeleteAction> delete_;
  std::optional<MoveAction> move_;
};

}  // namespace

std::unique_ptr<Command> MakeLineCommand() { return std::make_unique<LineCommand>(); }

}  // namespace vrx
