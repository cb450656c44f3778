#include "database/identity.h"

#include <algorithm>
#include <array>
#include <exception>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "database/one_row_table.h"
#include "database/translated.h"
#include "frame/number.h"
#include "frame/text.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

struct ErrorWords {
  int number;
  std::string_view text;
};

constexpr std::array<ErrorWords, 4> kErrorWords{{
    {kInvalidTableError, "There is an invalid table in the specified database."},
    {kNoRecordError, "There is no record available in the specified database."},
    {kTableLockedError, "A table in the specified database is locked."},
    {kInvalidFieldError, "There is an invalid field in the specified database."},
}};

constexpr std::array kTypes{kNulRecipeDb, kNulTransDb, kUserRecipeDb, kUserTransDb};

}  // namespace

std::string DatabaseIdentity::GetDatabaseType(const fs::path& path) {
  std::string type;
  Trapped("Database-Type Error", [&] {
    SQLite::Database database = OpenDatabase(path, Access::kRead, lock_wait_);
    type = ReadField(database, kTypeField).value_or("");
  });
  return std::find(kTypes.begin(), kTypes.end(), type) == kTypes.end() ? std::string() : type;
}

bool DatabaseIdentity::SetDatabaseType(const fs::path& path, std::string_view type) {
  return Trapped("Set Database-Type Error", [&] {
    SQLite::Database database = OpenDatabase(path, Access::kWrite, lock_wait_);
    WriteField(database, kTypeField, type);
  });
}

std::optional<Date> DatabaseIdentity::GetDatabaseDate(const fs::path& path, DateSelector selector) {
  std::optional<Date> date;
  Trapped("Database Date Read Error", [&] {
    SQLite::Database database = OpenDatabase(path, Access::kRead, lock_wait_);
    date = ReadDateField(database, DateField(selector));
  });
  return date;
}

bool DatabaseIdentity::SetDatabaseDate(const fs::path& path, DateSelector selector) {
  return Trapped("Database Date Write Error", [&] {
    const std::string today = StoredText(calendar_.Today());
    SQLite::Database database = OpenDatabase(path, Access::kWrite, lock_wait_);
    WriteField(database, DateField(selector), today);
  });
}

bool DatabaseIdentity::SetDatabaseUoM(const fs::path& path, std::string_view unit) {
  return Trapped("Database UoM Write Error", [&] {
    SQLite::Database database = OpenDatabase(path, Access::kWrite, lock_wait_);
    WriteField(database, kUnitField, unit);
  });
}

bool DatabaseIdentity::SetDatabaseUoM(SQLite::Database& database, std::string_view unit) {
  return Trapped("Database UoM Write Error", [&] {
    Translated(database, [&] {
      SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
      WriteField(database, kUnitField, unit);
      DateChange(database);
      transaction.commit();
    });
  });
}

void DatabaseIdentity::DateChange(SQLite::Database& database) const {
  WriteField(database, DateField(DateSelector::kModified), StoredText(calendar_.Today()));
}

void DatabaseIdentity::ShowDatabaseError(int number, std::string_view title,
                                         std::string_view cause) {
  const auto* const words =
      std::find_if(kErrorWords.begin(), kErrorWords.end(),
                   [number](const ErrorWords& row) { return row.number == number; });
  const std::string text =
      words == kErrorWords.end() ? "Error: " + std::to_string(number) : std::string(words->text);
  operator_.ShowMessage({.icon = Icon::kCritical,
                         .title = std::string(title),
                         .text = text,
                         .cause = std::string(cause)});
}

bool DatabaseIdentity::Trapped(std::string_view title, const std::function<void()>& body) {
  try {
    body();
    return true;
  } catch (const std::exception& failure) {
    failure_cause_ = failure.what();
    BeepIfEnabled(operator_, settings_);
    ShowDatabaseError(FailureNumber(failure), title, failure.what());
    return false;
  }
}

std::string ReadDatabaseUoM(const fs::path& path, LockWait wait) {
  SQLite::Database database = OpenDatabase(path, Access::kRead, wait);
  return ReadField(database, kUnitField).value_or("");
}

}  // namespace vrx
