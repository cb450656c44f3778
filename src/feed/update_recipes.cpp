#include "feed/update_recipes.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include <SQLiteCpp/Transaction.h>

#include "base/error.h"
#include "base/text.h"
#include "database/identity.h"
#include "database/records.h"
#include "feed/ration.h"
#include "feed/ration_totals.h"
#include "feed/record_commit.h"
#include "feed/record_kind.h"

namespace vrx {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

class RecipesUpdate {
 public:
  RecipesUpdate(SQLite::Database& database, ProgressDisplay& progress)
      : database_(database), progress_(progress) {}

  void Run(const Calendar& calendar) {
    SQLite::Transaction transaction(database_, SQLite::TransactionBehavior::IMMEDIATE);
    for (RecipeLineRecord& line : ReadAllRecipeLines(database_)) {
      lines_[line.recipe_id].push_back(std::move(line));
    }
    for (RecipeRecord& recipe : ReadRecipes(database_)) {
      progress_.SetProgressValue(recipe.id);
      if (IsActive(recipe)) {
        Recompute(std::move(recipe));
      }
    }
    if (!changed_.empty()) {
      WriteStoredLines(database_, changed_);
      TouchDatabase(database_, calendar);
    }
    transaction.commit();
  }

  // A line for each recipe that failed; empty when none did.
  const std::string& Failures() const { return failures_; }

 private:
  void Recompute(RecipeRecord recipe) {
    const std::vector<RecipeLineRecord>& stored = lines_[std::to_string(recipe.id)];
    Ration ration{.recipe = std::move(recipe), .lines = stored};
    try {
      RecalcRecipe(ration);
    } catch (const Error& error) {
      failures_ += std::string(kLineEnd) + FormatIdPrefix(ration.recipe.id) + ration.recipe.name +
                   ": " + error.what();
      return;
    }
    for (std::size_t line = 0; line < stored.size(); ++line) {
      if (ration.lines[line] != stored[line]) {
        changed_.push_back(std::move(ration.lines[line]));
      }
    }
  }

  SQLite::Database& database_;
  ProgressDisplay& progress_;
  std::map<std::string, std::vector<RecipeLineRecord>> lines_;
  std::vector<RecipeLineRecord> changed_;
  std::string failures_;
};

}  // namespace

std::string RecomputeAllRecipes(SQLite::Database& database, ProgressDisplay& progress,
                                const Calendar& calendar) {
  RecipesUpdate update(database, progress);
  update.Run(calendar);
  return update.Failures();
}

}  // namespace vrx
