#include "exchange/recipe_download_store.h"

#include <SQLiteCpp/Transaction.h>

#include "base/date.h"
#include "database/identity.h"
#include "database/translated.h"

namespace vrx {
namespace {

void Store(SQLite::Database& database, const RecipeDownload& download, const Calendar& calendar) {
  WriteStoredLines(database, download.recomputed_lines);
  for (const RecipeRecord& recipe : download.emptied_head_counts) {
    WriteRecipe(database, recipe);
  }
  if (!download.emptied_head_counts.empty()) {
    WriteField(database, DateField(DateSelector::kModified), StoredText(calendar.Today()));
  }
}

}  // namespace

RecipeDownload TakeRecipeDownload(const std::filesystem::path& recipe_db_path, bool batch_target,
                                  const Calendar& calendar, const TellProgress& tell,
                                  LockWait wait) {
  SQLite::Database database = OpenDatabase(recipe_db_path, Access::kWrite, wait);
  return Translated(database, [&] {
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    RecipeDownload download = BuildRecipeDownload(ReadRecipeTables(database), batch_target, tell);
    Store(database, download, calendar);
    transaction.commit();
    return download;
  });
}

}  // namespace vrx
