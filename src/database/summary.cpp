#include "database/summary.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/date.h"
#include "database/connection.h"
#include "database/identity.h"

namespace vrx {
namespace {

constexpr const char* kCountRecords =
    "SELECT (SELECT count(*) FROM Ingredient WHERE Description <> ''), "
    "(SELECT count(*) FROM Recipe WHERE Description <> ''), "
    "(SELECT count(*) FROM Pen WHERE (Pen.FeedAmount <> '0' OR Pen.Description <> ''))";

// Separate subqueries, so that the dates come from the ends of their index and the numbers are read
// in index order.
constexpr const char* kCountTransactions =
    "SELECT (SELECT count(*) FROM Transactions), "
    "(SELECT count(*) FROM (SELECT DISTINCT [Transaction] FROM Transactions "
    "WHERE [Transaction] IS NOT NULL)), "
    "(SELECT min(Date) FROM Transactions), (SELECT max(Date) FROM Transactions)";

RecipeCounts CountRecords(SQLite::Database& database) {
  SQLite::Statement query(database, kCountRecords);
  query.executeStep();
  return {.ingredients = query.getColumn(0).getInt64(),
          .recipes = query.getColumn(1).getInt64(),
          .pens = query.getColumn(2).getInt64()};
}

TransactionCounts CountTransactions(SQLite::Database& database) {
  SQLite::Statement query(database, kCountTransactions);
  query.executeStep();
  return {.rows = query.getColumn(0).getInt64(),
          .transactions = query.getColumn(1).getInt64(),
          .first_date = ParseStoredDate(query.getColumn(2).getString()),
          .last_date = ParseStoredDate(query.getColumn(3).getString())};
}

void SetKind(DatabaseSummary& summary, const std::string& type, const std::filesystem::path& path) {
  summary.blank = type == kNulRecipeDb || type == kNulTransDb;
  if (type == kNulRecipeDb || type == kUserRecipeDb) {
    summary.kind = DatabaseKind::kRecipe;
  } else if (type == kNulTransDb || type == kUserTransDb) {
    summary.kind = DatabaseKind::kTransaction;
  } else {
    throw DatabaseError(SQLITE_MISMATCH,
                        path.filename().string() + " holds the unknown type \"" + type + "\"");
  }
}

}  // namespace

DatabaseSummary ReadDatabaseSummary(const std::filesystem::path& path, LockWait wait) {
  SQLite::Database database = OpenDatabase(path, Access::kRead, wait);
  return WithDatabaseErrors(database, [&] {
    const SQLite::Transaction moment(database);
    DatabaseSummary summary;
    SetKind(summary, ReadField(database, kTypeField).value_or(""), path);
    summary.unit = ReadField(database, kUnitField).value_or("");
    summary.created = ReadDateField(database, kCreatedField);
    summary.modified = ReadDateField(database, kModifiedField);
    if (summary.kind == DatabaseKind::kRecipe) {
      summary.recipe = CountRecords(database);
      summary.missing = FindMissingRecords(database);
    } else {
      summary.transaction = CountTransactions(database);
    }
    return summary;
  });
}

}  // namespace vrx
