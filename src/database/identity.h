#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <SQLiteCpp/Database.h>

#include "database/connection.h"
#include "database/schema.h"
#include "platform/calendar.h"

namespace vrx {

// The four texts of the marker table.
inline constexpr std::string_view kNulRecipeDb = "NUL_RECIPE_DB";
inline constexpr std::string_view kNulTransDb = "NUL_TRANS_DB";
inline constexpr std::string_view kUserRecipeDb = "USER_RECIPE_DB";
inline constexpr std::string_view kUserTransDb = "USER_TRANS_DB";

enum class DateSelector { kCreated = 1, kModified = 2 };

// A field of a table of one row: what a file says of itself.
struct OneRowField {
  std::string_view table;
  std::string_view column;
};

inline constexpr OneRowField kTypeField{kMarkerTable, "dBType"};
inline constexpr OneRowField kCreatedField{kHistoryTable, "Created"};
inline constexpr OneRowField kModifiedField{kHistoryTable, "Modified"};
inline constexpr OneRowField kUnitField{kUnitsTable, "UoM"};

constexpr OneRowField DateField(DateSelector selector) {
  return selector == DateSelector::kCreated ? kCreatedField : kModifiedField;
}

// The field of the first row, nothing for NULL; DatabaseError (no record) without a row.
std::optional<std::string> ReadField(SQLite::Database& database, const OneRowField& field);
void WriteField(SQLite::Database& database, const OneRowField& field, std::string_view value);

// Sets `Modified` to today inside the transaction of the change that it dates. Throws
// DatabaseError.
void TouchDatabase(SQLite::Database& database, const Calendar& calendar);

// The unit that a database holds, "" when none. Throws DatabaseError (no record without a row).
std::string ReadDatabaseUoM(const std::filesystem::path& path, LockWait wait = kBusyTimeout);

// Throws DatabaseError for a text that is no date.
std::optional<Date> ReadDateField(SQLite::Database& database, const OneRowField& field);

// The words in which the two kinds of database differ.
struct KindTexts {
  std::string_view noun;  // within the messages
  std::string_view template_name;
  std::string_view blank_type;
  std::string_view user_type;
  std::string_view extension;  // default extension of the dialogs
  std::string_view filter;
  std::string_view new_dialog_title;
  std::string_view open_dialog_title;
  std::string_view save_as_dialog_title;
  // Titles of the boxes that tell a trapped failure.
  std::string_view new_failure;
  std::string_view open_failure;
  std::string_view close_failure;
  std::string_view save_as_failure;
  // Keys of the per-user settings.
  std::string_view recent_path_key;
  std::string_view recent_name_key;
};

const KindTexts& TextsOf(DatabaseKind kind);

}  // namespace vrx
