#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include "base/files.h"
#include "ctl/command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/recipe_file.h"
#include "ctl/recipe_output.h"
#include "ctl/session.h"
#include "database/records.h"
#include "feed/recipe_comparison.h"

namespace vrx {

namespace {

// A recipe and its cells as the command writes them.
struct WrittenRecipe {
  explicit WrittenRecipe(ComparedRecipe compared)
      : recipe(std::move(compared)),
        head(RecipeHead(recipe.head)),
        totals(RecipeTotalsObject(recipe.totals)) {
    std::vector<RecipeLineRecord> cells;
    for (const ComparedLine& line : recipe.lines) {
      cells.push_back(line.cells);
    }
    lines = ToJson(RecipeLineTable(cells));
  }

  // Null for no line.
  [[nodiscard]] Json CellsOf(const ComparedLine* line) const {
    return line == nullptr ? Json() : lines[static_cast<std::size_t>(line->place) - 1];
  }

  ComparedRecipe recipe;
  Json head;
  Json totals;
  Json lines;
};

// The fields of those names as {"field","a","b"}. One of the objects may be null.
Json Differences(const std::vector<std::string_view>& names, const Json& a, const Json& b) {
  const auto value = [](const Json& object, const std::string& name) {
    return object.is_null() ? Json() : object[name];
  };
  Json different = Json::array();
  for (const std::string_view each : names) {
    const std::string name(each);
    different.push_back({{"field", name}, {"a", value(a, name)}, {"b", value(b, name)}});
  }
  return different;
}

// Two recipes and what differs between them.
class RecipeComparison {
 public:
  // The recipes must outlive the comparison.
  RecipeComparison(const WrittenRecipe& a, const WrittenRecipe& b, bool one_database)
      : a_(a), b_(b), one_database_(one_database) {}

  void Write(std::ostream& out, OutputForm form) const {
    if (form == OutputForm::kJson) {
      WriteObject(out, form, Document());
    } else {
      WriteTable(out, form, Table());
    }
  }

 private:
  [[nodiscard]] Json Fields() const {
    return Differences(DifferentFields(a_.recipe.head, b_.recipe.head), a_.head, b_.head);
  }
  [[nodiscard]] Json Totals() const {
    return Differences(DifferentTotals(a_.recipe.totals, b_.recipe.totals), a_.totals, b_.totals);
  }
  [[nodiscard]] Json Cells(const ComparedPair& pair) const {
    return Differences(DifferentCells(pair, one_database_), a_.CellsOf(pair.a), b_.CellsOf(pair.b));
  }

  [[nodiscard]] Json Document() const {
    const auto named = [](const Json& head) {
      return Json{{"ID", head["ID"]}, {"Name", head["Name"]}};
    };
    Json document = {{"a", named(a_.head)}, {"b", named(b_.head)}};
    document["fields"] = Fields();
    document["totals"] = Totals();
    document["lines"] = Json::array();
    for (const ComparedPair& pair : PairLines(a_.recipe, b_.recipe)) {
      if (!Cells(pair).empty()) {
        document["lines"].push_back({{"ingredient", pair.Any().ingredient},
                                     {"a", a_.CellsOf(pair.a)},
                                     {"b", b_.CellsOf(pair.b)}});
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
    for (const ComparedPair& pair : PairLines(a_.recipe, b_.recipe)) {
      add("line " + std::to_string(pair.Any().place) + " " + pair.Any().ingredient + " ",
          Cells(pair));
    }
    return table;
  }

  const WrittenRecipe& a_;
  const WrittenRecipe& b_;
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
    std::vector<WrittenRecipe> recipes;
    const bool done =
        one_database ? Read(session, file_, {a_, b_}, recipes)
                     : Read(session, file_, {a_}, recipes) && Read(session, other_, {b_}, recipes);
    if (!done) {
      return kFailed;
    }
    const WrittenRecipe& a = recipes.front();
    const WrittenRecipe& b = recipes.back();
    const std::string units = UnitsDiffer(a.recipe, FileTitle(file_), b.recipe, FileTitle(other));
    if (!units.empty()) {
      session.Op().ShowNote(units);
    }
    RecipeComparison(a, b, one_database).Write(session.Out(), output_.Form());
    return kDone;
  }

 private:
  // Appends recipes of one state of the database. Returns false after a message.
  static bool Read(Session& session, const std::string& file, const std::vector<int>& ids,
                   std::vector<WrittenRecipe>& recipes) {
    const auto read = [&](SQLite::Database& database) {
      const SQLite::Transaction snapshot(database);
      for (const int id : ids) {
        recipes.emplace_back(ReadCompared(database, FileTitle(file), id));
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
