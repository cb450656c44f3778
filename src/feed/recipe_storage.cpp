#include "feed/recipe_storage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include <SQLiteCpp/Savepoint.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/error.h"
#include "base/text.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/records.h"
#include "feed/ration.h"
#include "feed/record_commit.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

auto Fields(const RecipeRecord& recipe) {
  return std::tie(recipe.id, recipe.name, recipe.description, recipe.batch_type, recipe.head_count,
                  recipe.ration_target, recipe.adjust_batch_index);
}

const RecipeLineRecord* FindRow(const std::vector<RecipeLineRecord>& lines, std::int64_t row) {
  const auto line = std::find_if(lines.begin(), lines.end(),
                                 [&](const RecipeLineRecord& entry) { return entry.row == row; });
  return line == lines.end() ? nullptr : &*line;
}

struct Difference {
  bool head = false;
  std::vector<std::int64_t> removed = {};
  std::vector<RecipeLineRecord> changed = {};
  bool added = false;

  [[nodiscard]] bool Any() const { return head || added || !removed.empty() || !changed.empty(); }
};

Difference Compare(const Ration& before, const Ration& after) {
  Difference difference{.head = Fields(before.recipe) != Fields(after.recipe)};
  for (const RecipeLineRecord& line : before.lines) {
    if (FindRow(after.lines, line.row) == nullptr) {
      difference.removed.push_back(line.row);
    }
  }
  for (const RecipeLineRecord& line : after.lines) {
    const RecipeLineRecord* stored = FindRow(before.lines, line.row);
    if (stored == nullptr) {
      difference.added = true;
    } else if (*stored != line) {
      difference.changed.push_back(line);
    }
  }
  return difference;
}

void Write(SQLite::Database& database, const Difference& difference, Ration& after,
           const std::function<void()>& changed) {
  if (difference.head) {
    WriteRecipe(database, after.recipe);
  }
  for (const std::int64_t row : difference.removed) {
    DeleteRecipeLine(database, row);
  }
  WriteStoredLines(database, difference.changed);
  for (RecipeLineRecord& line : after.lines) {
    if (line.row == 0) {
      WriteRecipeLine(database, line);
    }
  }
  if (changed) {
    changed();
  }
}

bool IsInTransaction(const SQLite::Database& database) {
  return sqlite3_get_autocommit(database.getHandle()) == 0;
}

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

  // One line for each recipe that failed.
  [[nodiscard]] const std::string& Failures() const { return failures_; }

 private:
  void Recompute(RecipeRecord recipe) {
    const std::vector<RecipeLineRecord>& stored = lines_[std::to_string(recipe.id)];
    Ration ration{.recipe = std::move(recipe), .lines = stored};
    if (const std::string failure = RecalcFailure(ration); !failure.empty()) {
      failures_ += std::string(kLineEnd) + FormatIdPrefix(ration.recipe.id) + ration.recipe.name +
                   ": " + failure;
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

void StoreRecipe(SQLite::Database& database, const Ration& before, Ration& after,
                 const std::function<void()>& changed) {
  const Difference difference = Compare(before, after);
  if (!difference.Any()) {
    return;
  }
  WithDatabaseErrors(database, [&] {
    if (IsInTransaction(database)) {
      SQLite::Savepoint step(database, "recipe_step");
      Write(database, difference, after, changed);
      step.release();
    } else {
      SQLite::Transaction step(database, SQLite::TransactionBehavior::IMMEDIATE);
      Write(database, difference, after, changed);
      step.commit();
    }
  });
}

std::string RecomputeAllRecipes(SQLite::Database& database, ProgressDisplay& progress,
                                const Calendar& calendar) {
  RecipesUpdate update(database, progress);
  update.Run(calendar);
  return update.Failures();
}

}  // namespace vrx
