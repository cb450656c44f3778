#include <cstdint>
#include <string>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/translation.h"
#include "base/undo.h"
#include "database/central_source.h"
#include "database/connection.h"
#include "database/schema.h"

namespace vrx {
namespace {

constexpr const char* kColumnQuery =
    "SELECT count(*) FROM pragma_table_info('Transactions') WHERE name = 'RowNumber' COLLATE "
    "NOCASE AND pk = 1 AND type = 'INTEGER' COLLATE NOCASE";

// A row whose number is not its ID, as the changed definition reads it.
constexpr const char* kWrongRow =
    "SELECT EXISTS (SELECT 1 FROM (SELECT RowNumber, rowid AS id FROM Transactions ORDER BY rowid "
    "LIMIT 100) WHERE RowNumber IS NOT id)";

[[noreturn]] void Refuse(const SQLite::Database& database) {
  throw DatabaseError(SQLITE_SCHEMA,
                      Tr("%1 cannot get row numbers: its table Transactions is not the usual one",
                         {database.getFilename()}));
}

// SQLite stores nothing of an INTEGER PRIMARY KEY in a row, and reads a row that ends before the
// last columns. So the definition can get the column at its end without a change of the rows.
void ExtendDefinition(SQLite::Database& database) {
  std::string text =
      database
          .execAndGet(
              "SELECT ifnull((SELECT sql FROM sqlite_schema WHERE type = 'table' AND name "
              "= 'Transactions' COLLATE NOCASE), '')")
          .getString();
  const std::size_t end = text.rfind(')');
  const bool has_key =
      database.execAndGet("SELECT count(*) FROM pragma_table_info('Transactions') WHERE pk > 0")
          .getInt() != 0;
  if (end == std::string::npos || has_key ||
      text.find_first_not_of(" \t\r\n", end + 1) != std::string::npos) {
    Refuse(database);
  }
  text.insert(end, ", " + Bracketed(kRowNumberColumn) + " INTEGER PRIMARY KEY");
  const std::int64_t version = database.execAndGet("PRAGMA schema_version").getInt64();
  database.exec("PRAGMA writable_schema=ON");
  SQLite::Statement update(database,
                           "UPDATE sqlite_schema SET sql = ? WHERE type = 'table' AND name = "
                           "'Transactions' COLLATE NOCASE");
  update.bind(1, text);
  update.exec();
  // Makes every connection read the definition again.
  database.exec("PRAGMA schema_version=" + std::to_string(version + 1));
  database.exec("PRAGMA writable_schema=OFF");
}

}  // namespace

bool HasRowNumbers(SQLite::Database& database) {
  return WithDatabaseErrors(database,
                            [&] { return database.execAndGet(kColumnQuery).getInt() != 0; });
}

void AddRowNumbers(SQLite::Database& database) {
  WithDatabaseErrors(database, [&] {
    if (HasRowNumbers(database)) {
      return;
    }
    const auto extend = [&] {
      SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
      if (HasRowNumbers(database)) {
        return;  // another program was faster
      }
      ExtendDefinition(database);
      if (!HasRowNumbers(database) || database.execAndGet(kWrongRow).getInt() != 0) {
        Refuse(database);
      }
      transaction.commit();
    };
    RunOrUndo(extend, [&] { database.tryExec("PRAGMA writable_schema=RESET"); });
  });
}

}  // namespace vrx
