#include "feed/record_reset.h"

#include <string>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "base/text.h"
#include "database/identity.h"
#include "database/records.h"
#include "feed/record_commit.h"
#include "feed/where_used.h"

namespace vrx {
namespace {

constexpr const char* kDeleteLines = "DELETE FROM RecipeRation WHERE (RecipeID = ?)";

void ResetRecipe(SQLite::Database& database, int id) {
  RecipeRecord recipe = ReadRecipe(database, id);
  recipe.name = DefaultName(RecordKind::kRecipe, id);
  recipe.description.clear();
  recipe.batch_type = "!";
  WriteRecipe(database, recipe);
  SQLite::Statement remove(database, kDeleteLines);
  remove.bind(1, std::to_string(id));
  remove.exec();
}

void WriteDefaults(SQLite::Database& database, RecordKind kind, int id) {
  const std::string name = DefaultName(kind, id);
  switch (kind) {
    case RecordKind::kIngredient:
      WriteIngredient(database, {.id = id, .name = name});
      break;
    case RecordKind::kRecipe:
      ResetRecipe(database, id);
      break;
    case RecordKind::kPen:
      WritePen(database, {.id = id, .name = name});
      break;
  }
}

bool IsUsed(SQLite::Database& database, RecordKind kind, int id) {
  return kind == RecordKind::kIngredient && !FindWhereIngUsed(database, id, true).empty();
}

}  // namespace

bool ResetRecord(SQLite::Database& database, RecordKind kind, int id, const Calendar& calendar) {
  SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
  if (IsUsed(database, kind, id)) {
    return false;
  }
  WriteDefaults(database, kind, id);
  TouchDatabase(database, calendar);
  transaction.commit();
  return true;
}

}  // namespace vrx
