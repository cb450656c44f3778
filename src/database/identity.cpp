#include "database/identity.h"

#include <filesystem>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <sqlite3.h>

#include "base/application.h"
#include "base/date.h"
#include "database/connection.h"
#include "database/schema.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

std::string FileName(const SQLite::Database& database) {
  return fs::path(database.getFilename()).filename().string();
}

DatabaseError NoRow(const SQLite::Database& database, const OneRowField& field) {
  return {kNoRecordError, FileName(database) + " has no row in " + std::string(field.table)};
}

constexpr KindTexts kRecipeTexts{
    .noun = "recipe",
    .template_name = kRecipeTemplateName,
    .blank_type = kNulRecipeDb,
    .user_type = kUserRecipeDb,
    .extension = "RDB",
    .filter = "Recipe Database (*.RDB)|*.RDB",
    .new_dialog_title = "Create New Recipe Database File",
    .open_dialog_title = "Open Recipe Database File",
    .save_as_dialog_title = "Save Recipe Database As...",
    .new_failure = "New Recipe File Error",
    .open_failure = "Open Recipe File Error",
    .close_failure = "Close Recipe File Error",
    .save_as_failure = "Save As Recipe Database Error",
    .recent_path_key = "MRU_RecipePathName",
    .recent_name_key = "MRU_RecipeFileName",
};

constexpr KindTexts kTransactionTexts{
    .noun = "transaction",
    .template_name = kTransactionTemplateName,
    .blank_type = kNulTransDb,
    .user_type = kUserTransDb,
    .extension = "TDB",
    .filter = "Transaction Database (*.TDB)|*.TDB",
    .new_dialog_title = "Create New Transaction Database File",
    .open_dialog_title = "Open Transaction Database File",
    .save_as_dialog_title = "Save Transaction Database As...",
    .new_failure = "New Transaction File Error",
    .open_failure = "Open Transaction File Error",
    .close_failure = "Close Transaction File Error",
    .save_as_failure = "Save As Transaction Database Error",
    .recent_path_key = "MRU_TransPathName",
    .recent_name_key = "MRU_TransFileName",
};

}  // namespace

std::optional<std::string> ReadField(SQLite::Database& database, const OneRowField& field) {
  return WithDatabaseErrors(database, [&]() -> std::optional<std::string> {
    SQLite::Statement query(
        database, "SELECT " + Bracketed(field.column) + " FROM " + Bracketed(field.table));
    if (!query.executeStep()) {
      throw NoRow(database, field);
    }
    const SQLite::Column value = query.getColumn(0);
    return value.isNull() ? std::nullopt : std::optional(value.getString());
  });
}

void WriteField(SQLite::Database& database, const OneRowField& field, std::string_view value) {
  WithDatabaseErrors(database, [&] {
    const std::string table = Bracketed(field.table);
    SQLite::Statement update(database, "UPDATE " + table + " SET " + Bracketed(field.column) +
                                           " = ? WHERE rowid = (SELECT min(rowid) FROM " + table +
                                           ")");
    update.bind(1, std::string(value));
    if (update.exec() == 0) {
      throw NoRow(database, field);
    }
  });
}

std::optional<Date> ReadDateField(SQLite::Database& database, const OneRowField& field) {
  const std::optional<std::string> text = ReadField(database, field);
  if (!text || text->empty()) {
    return std::nullopt;
  }
  const std::optional<Date> date = ParseStoredDate(*text);
  if (!date) {
    throw DatabaseError(SQLITE_MISMATCH, FileName(database) + " holds \"" + *text + "\" in " +
                                             std::string(field.column) +
                                             "; expected a date as YYYY-MM-DD");
  }
  return date;
}

void TouchDatabase(SQLite::Database& database, const Calendar& calendar) {
  WriteField(database, kModifiedField, StoredText(calendar.Today()));
}

std::string ReadDatabaseUoM(const fs::path& path, LockWait wait) {
  SQLite::Database database = OpenDatabase(path, Access::kRead, wait);
  return ReadField(database, kUnitField).value_or("");
}

const KindTexts& TextsOf(DatabaseKind kind) {
  return kind == DatabaseKind::kRecipe ? kRecipeTexts : kTransactionTexts;
}

}  // namespace vrx
