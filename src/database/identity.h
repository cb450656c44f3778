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

// Values of kTypeField.
inline constexpr std::string_view kNulRecipeDb = "NUL_RECIPE_DB";
inline constexpr std::string_view kNulTransDb = "NUL_TRANS_DB";
inline constexpr std::string_view kUserRecipeDb = "USER_RECIPE_DB";
inline constexpr std::string_view kUserTransDb = "USER_TRANS_DB";

// A field of a table with one row, which describes the file.
struct OneRowField {
  std::string_view table;
  std::string_view column;
};

inline constexpr OneRowField kTypeField{kMarkerTable, "dBType"};
inline constexpr OneRowField kCreatedField{kHistoryTable, "Created"};
inline constexpr OneRowField kModifiedField{kHistoryTable, "Modified"};
inline constexpr OneRowField kUnitField{kUnitsTable, "UoM"};

enum class DateSelector { kCreated = 1, kModified = 2 };

constexpr OneRowField DateField(DateSelector selector) {
  return selector == DateSelector::kCreated ? kCreatedField : kModifiedField;
}

// Field of the first row; nothing for NULL. All functions below throw DatabaseError, with
// kNoRecordError if the table has no row.
[[nodiscard]] std::optional<std::string> ReadField(SQLite::Database& database,
                                                   const OneRowField& field);
void WriteField(SQLite::Database& database, const OneRowField& field, std::string_view value);

// Throws DatabaseError also for a text that is not a date.
[[nodiscard]] std::optional<Date> ReadDateField(SQLite::Database& database,
                                                const OneRowField& field);

// Sets `Modified` to today. To be called inside the transaction of the change.
void TouchDatabase(SQLite::Database& database, const Calendar& calendar);

// Unit of the database at `path`; "" if it has none.
std::string ReadDatabaseUoM(const std::filesystem::path& path, LockWait wait = kBusyTimeout);

// Texts that differ between the two kinds of database.
struct KindTexts {
  std::string_view noun;  // used inside messages
  std::string_view template_name;
  std::string_view blank_type;
  std::string_view user_type;
  std::string_view extension;  // default extension of the dialogs
  std::string_view filter;
  std::string_view new_dialog_title;
  std::string_view open_dialog_title;
  std::string_view save_as_dialog_title;
  // Titles of the message boxes that report a failure.
  std::string_view new_failure;
  std::string_view open_failure;
  std::string_view close_failure;
  std::string_view save_as_failure;
  // Keys of the per-user settings.
  std::string_view recent_path_key;
  std::string_view recent_name_key;
};

[[nodiscard]] const KindTexts& TextsOf(DatabaseKind kind);

}  // namespace vrx
