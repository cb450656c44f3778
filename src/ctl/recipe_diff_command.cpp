#include <algorithm>
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include "base/error.h"
#include "base/files.h"
#include "base/number.h"
#include "ctl/command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/recipe_file.h"
#include "ctl/recipe_output.h"
#include "ctl/session.h"
#include "database/identity.h"
#include "database/records.h"
#include "feed/ration.h"

namespace vrx {

namespace {

struct ComparedLine {
  std::string ingredient;  // its name in its own database
  std::size_t place;       // in the recipe, from 1
  Json cells;
};

// A recipe of a database, recomputed in memory.
struct ComparedRecipe {
  Json head;
  Json totals;
  std::vector<ComparedLine> lines;
  std::string unit;
};

// Lines of the same ingredient; nullptr for a line that only one recipe has.
struct LinePair {
  const ComparedLine* a;
  const ComparedLine* b;

  [[nodiscard]] const ComparedLine& Any() const { return a != nullptr ? *a : *b; }
};

// An ingredient that the database does not have is named by its number.
std::string IngredientName(const std::vector<IngredientRecord>& ingredients,
                           const std::string& number) {
  const auto found = std::find_if(
      ingredients.begin(), ingredients.end(),
      [&](const IngredientRecord& ingredient) { return ingredient.id == ParseLong(number); });
  return found == ingredients.end() ? "ingredient '" + number + "'" : found->name;
}

RecipeTotals RecalcCompared(Ration& ration, const std::string& file) {
  try {
    return RecalcRecipe(ration);
  } catch (const Error& error) {
    throw Error("Recipe " + std::to_string(ration.recipe.id) + " of " + FileTitle(file) + ": " +
                error.what());
  }
}

ComparedRecipe ReadCompared(SQLite::Database& database, const std::string& file, int id) {
  Ration ration{.recipe = ReadRecipe(database, id), .lines = ReadRecipeLines(database, id)};
  const RecipeTotals totals = RecalcCompared(ration, file);
  const std::vector<IngredientRecord> ingredients = ReadIngredients(database);
  ComparedRecipe compared{.head = RecipeHead(ration.recipe),
                          .totals = RecipeTotalsObject(totals.row),
                          .lines = {},
                          .unit = ReadField(database, kUnitField).value_or("")};
  Json cells = ToJson(RecipeLineTable(ration.lines));
  for (std::size_t line = 0; line < ration.lines.size(); ++line) {
    compared.lines.push_back(
        {.ingredient = IngredientName(ingredients, ration.lines[line].ingredient),
         .place = line + 1,
         .cells = std::move(cells[line])});
  }
  return compared;
}

// The lines of `a` in their order, then those that only `b` has.
std::vector<LinePair> PairLines(const ComparedRecipe& a, const ComparedRecipe& b) {
  std::vector<const ComparedLine*> unpaired;
  for (const ComparedLine& line : b.lines) {
    unpaired.push_back(&line);
  }
  std::vector<LinePair> pairs;
  for (const ComparedLine& line : a.lines) {
    const auto match = std::find_if(
        unpaired.begin(), unpaired.end(),
        [&](const ComparedLine* other) { return other->ingredient == line.ingredient; });
    if (match == unpaired.end()) {
      pairs.push_back({.a = &line, .b = nullptr});
    } else {
      pairs.push_back({.a = &line, .b = *match});
      unpaired.erase(match);
    }
  }
  for (const ComparedLine* line : unpaired) {
    pairs.push_back({.a = nullptr, .b = line});
  }
  return pairs;
}

// The fields with different values, as {"field","a","b"}. One of the objects may be null. Fields
// without a value in either object are the same.
Json DifferentFields(const Json& a, const Json& b, const std::vector<std::string>& ignored) {
  Json different = Json::array();
  for (const auto& [field, value] : (a.is_null() ? b : a).items()) {
    Json in_a = a.is_null() ? Json() : a[field];
    Json in_b = b.is_null() ? Json() : b[field];
    const bool compared = std::find(ignored.begin(), ignored.end(), field) == ignored.end();
    if (compared && in_a != in_b) {
      different.push_back({{"field", field}, {"a", std::move(in_a)}, {"b", std::move(in_b)}});
    }
  }
  return different;
}

// Two recipes and what differs between them.
class RecipeComparison {
 public:
  // The recipes must outlive the comparison.
  RecipeComparison(const ComparedRecipe& a, const ComparedRecipe& b, bool one_database)
      : a_(a), b_(b), one_database_(one_database) {}

  void Write(std::ostream& out, OutputForm form) const {
    if (form == OutputForm::kJson) {
      WriteObject(out, form, Document());
    } else {
      WriteTable(out, form, Table());
    }
  }

 private:
  [[nodiscard]] Json Fields() const { return DifferentFields(a_.head, b_.head, {"ID"}); }
  [[nodiscard]] Json Totals() const { return DifferentFields(a_.totals, b_.totals, {}); }

  static Json CellsOf(const ComparedLine* line) { return line == nullptr ? Json() : line->cells; }

  // The numbers of ingredients are those of their database. A line that only one recipe has is
  // described by its name.
  [[nodiscard]] Json Cells(const LinePair& pair) const {
    const bool numbers = one_database_ && pair.a != nullptr && pair.b != nullptr;
    return DifferentFields(CellsOf(pair.a), CellsOf(pair.b),
                           {"RecipeID", numbers ? "" : "Ingredient"});
  }

  [[nodiscard]] Json Document() const {
    const auto named = [](const Json& head) {
      return Json{{"ID", head["ID"]}, {"Name", head["Name"]}};
    };
    Json document = {{"a", named(a_.head)}, {"b", named(b_.head)}};
    document["fields"] = Fields();
    document["totals"] = Totals();
    document["lines"] = Json::array();
    for (const LinePair& pair : PairLines(a_, b_)) {
      if (!Cells(pair).empty()) {
        document["lines"].push_back({{"ingredient", pair.Any().ingredient},
                                     {"a", CellsOf(pair.a)},
                                     {"b", CellsOf(pair.b)}});
      }
    }
    return document;
  }

  [[nodiscard]] OutputTable Table() const {
    OutputTable table{.header = {"field", "a", "b"}, .rows = {}};
    const auto add = [&](const std::string& key, const Json& differences) {
      for (const Json& difference : differences) {
        table.rows.push_back(
            {key + difference["field"].get<std::string>(), difference["a"], difference["b"]});
      }
    };
    add("", Fields());
    add("", Totals());
    for (const LinePair& pair : PairLines(a_, b_)) {
      add("line " + std::to_string(pair.Any().place) + " " + pair.Any().ingredient + " ",
          Cells(pair));
    }
    return table;
  }

  const ComparedRecipe& a_;
  const ComparedRecipe& b_;
  bool one_database_;
};

class RecipeDiffCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "diff",
        "Compare two recipes, recomputed from their lines; the exit code is 0 even if "
        "they differ");
    command->add_option("rdb", file_, "A recipe database")->required();
    AddRecordNumber(*command, "a", "Number of a recipe", kRecipeCount, a_);
    AddRecordNumber(*command, "b", "Number of the recipe to compare it with", kRecipeCount, b_);
    with_ =
        command
            ->add_option("--with", other_, "The recipe database of recipe b, if it is another one")
            ->type_name("RDB");
    output_.RegisterCsv(*command);
    output_.RegisterJson(*command);
    AddExamples(*command, {{"recipe diff SITE.RDB 4 5", "A line for each figure that differs."},
                           {"recipe diff SITE.RDB 4 4 --with OLDSITE.RDB",
                            "Compares recipe 4 with that of another database."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const bool one_database = with_->count() == 0;
    const std::string& other = one_database ? file_ : other_;
    std::vector<ComparedRecipe> recipes;
    const bool done =
        one_database ? Read(session, file_, {a_, b_}, recipes)
                     : Read(session, file_, {a_}, recipes) && Read(session, other_, {b_}, recipes);
    if (!done) {
      return kFailed;
    }
    const ComparedRecipe& a = recipes.front();
    const ComparedRecipe& b = recipes.back();
    if (a.unit != b.unit) {
      session.Op().ShowNote("The weights of " + FileTitle(file_) + " are in " + a.unit +
                            ", those of " + FileTitle(other) + " in " + b.unit +
                            ": they are compared as numbers.");
    }
    RecipeComparison(a, b, one_database).Write(session.Out(), output_.Form());
    return kDone;
  }

 private:
  // Appends recipes of one state of the database. Returns false after a message.
  static bool Read(Session& session, const std::string& file, const std::vector<int>& ids,
                   std::vector<ComparedRecipe>& recipes) {
    const auto read = [&](SQLite::Database& database) {
      const SQLite::Transaction snapshot(database);
      for (const int id : ids) {
        recipes.push_back(ReadCompared(database, file, id));
      }
    };
    return ReadRecipeFile(session, file, read) == kDone;
  }

  std::string file_;
  std::string other_;
  int a_ = 0;
  int b_ = 0;
  CLI::Option* with_ = nullptr;
  OutputOptions output_;
};

}  // namespace

std::unique_ptr<Command> MakeRecipeDiffCommand() { return std::make_unique<RecipeDiffCommand>(); }

}  // namespace vrx
