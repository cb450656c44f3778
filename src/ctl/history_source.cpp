#include <vector>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>

#include "ctl/command.h"
#include "ctl/history_commands.h"
#include "ctl/options.h"
#include "ctl/recipe_file.h"
#include "ctl/session.h"
#include "database/connection.h"
#include "database/records.h"

namespace vrx {

void HistorySource::Register(CLI::App& app, Recipes recipes) {
  app.add_option("tdb", transactions_, "A transaction database")->required();
  AddWholeNumber(app, "--group", "Index of the data group; see groups", 0, kDataGroupCount - 1,
                 group_)
      ->required();
  app.add_option("--name", name_, "The recipe, ingredient or pen of groups 4, 7 and 9");
  app.add_option("--recipes", recipes_, "The recipe database that names the ingredient columns")
      ->type_name("RDB")
      ->required(recipes == Recipes::kRequired);
}

int HistorySource::Run(Session& session, const std::function<int(HistoryGrid&)>& work) const {
  CheckUsage();
  if (!session.IsUserDatabase(transactions_, DatabaseKind::kTransaction)) {
    return kFailed;
  }
  std::vector<IngredientRecord> ingredients;
  if (!recipes_.empty()) {
    const int read = ReadRecipeFile(session, recipes_, [&](SQLite::Database& recipes) {
      ingredients = ReadIngredients(recipes);
    });
    if (read != kDone) {
      return read;
    }
  }
  return session.OnDatabase(transactions_, DatabaseKind::kTransaction, [&] {
    SQLite::Database database =
        OpenDatabase(transactions_, Access::kRead, session.Context().busy_timeout);
    HistoryGrid grid(database);
    grid.RefreshIngredientColumns(ingredients);
    grid.SetUp(*FindDataGroup(group_), name_);
    return work(grid);
  });
}

OpenDatabases HistorySource::Databases(const Session& session) const {
  return {.recipe_db_path = recipes_,
          .trans_db_path = transactions_,
          .lock_wait = session.Context().busy_timeout};
}

void HistorySource::CheckUsage() const {
  const DataGroup& group = *FindDataGroup(group_);
  const std::string words = std::to_string(group_) + ", " + std::string(group.item) + ",";
  if (group.named_column.empty()) {
    if (!name_.empty()) {
      throw CLI::ValidationError("--name", "group " + words + " takes no name");
    }
  } else if (name_.empty() || recipes_.empty()) {
    throw CLI::ValidationError(name_.empty() ? "--name" : "--recipes",
                               "group " + words + " needs --name and --recipes");
  }
}

}  // namespace vrx
