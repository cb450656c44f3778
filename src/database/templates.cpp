#include "database/templates.h"

#include <string>
#include <string_view>
#include <system_error>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "base/number.h"
#include "base/undo.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/records.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

std::string CreateText(const Table& table) {
  std::string text = "CREATE TABLE " + Bracketed(table.name) + " (";
  for (const Column& column : table.columns) {
    text += Bracketed(column.name) + " " + std::string(column.type) + ", ";
  }
  text.replace(text.size() - 2, 2, ")");
  return text;
}

// Inserts rows 1 to `count`. `query` has parameters for ID and default name, and the other values.
void InsertFixedRows(SQLite::Database& database, const char* query, std::string_view name_head,
                     int count) {
  SQLite::Statement insert(database, query);
  for (int id = 1; id <= count; ++id) {
    insert.bind(1, id);
    insert.bind(2, std::string(name_head) + Format(id, "000"));
    insert.exec();
    insert.reset();
  }
}

void FillTemplate(SQLite::Database& database, DatabaseKind kind) {
  if (kind == DatabaseKind::kRecipe) {
    InsertFixedRows(database, "INSERT INTO Ingredient VALUES (?, ?, '', 100, 0)", "ING",
                    kIngredientCount);
    InsertFixedRows(database, "INSERT INTO Recipe VALUES (?, ?, '', '!', 0, '', '20')", "REC",
                    kRecipeCount);
    InsertFixedRows(database, "INSERT INTO Pen VALUES (?, ?, '', '0')", "PEN", kPenCount);
  }
  database.exec("INSERT INTO UnitsOfMeasure VALUES ('')");
  database.exec("INSERT INTO History VALUES (NULL, NULL)");
  SQLite::Statement marker(database, "INSERT INTO BrantockDatabase VALUES (?)");
  marker.bind(1, std::string(kind == DatabaseKind::kRecipe ? kNulRecipeDb : kNulTransDb));
  marker.exec();
}

void WriteTemplate(SQLite::Database& database, DatabaseKind kind) {
  database.exec("PRAGMA synchronous=FULL");
  SQLite::Transaction transaction(database);
  database.exec("PRAGMA application_id=" + std::to_string(kApplicationId));
  database.exec("PRAGMA user_version=" + std::to_string(kSchemaVersion));
  for (const Table& table : Schema(kind)) {
    database.exec(CreateText(table));
  }
  for (const std::string& index : SchemaIndexes(kind)) {
    database.exec(index);
  }
  FillTemplate(database, kind);
  transaction.commit();
}

}  // namespace

void CreateTemplate(const fs::path& path, DatabaseKind kind) {
  const fs::path unfinished = path.string() + ".new";
  // A killed run may have left this file. SQLite deletes a journal that belongs to an empty file.
  fs::remove(unfinished);
  const auto write = [&] {
    SQLite::Database database(unfinished, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    WriteTemplate(database, kind);
  };
  WithDatabaseErrors(path, [&] {
    RunOrUndo(write, [&] {
      std::error_code ignored;
      fs::remove(unfinished, ignored);
    });
  });
  fs::rename(unfinished, path);
}

SQLite::Database BlankInMemory(DatabaseKind kind) {
  SQLite::Database database(":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
  WithDatabaseErrors(database, [&] {
    WriteTemplate(database, kind);
    database.exec("PRAGMA query_only=ON");
  });
  return database;
}

}  // namespace vrx
