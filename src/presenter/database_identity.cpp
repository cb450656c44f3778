#include "presenter/database_identity.h"

#include <algorithm>
#include <array>
#include <exception>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/date.h"
#include "base/text.h"
#include "database/connection.h"
#include "database/identity.h"
#include "settings/settings.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

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
    WithDatabaseErrors(database, [&] {
      SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
      WriteField(database, kUnitField, unit);
      DateChange(database);
      transaction.commit();
    });
  });
}

void DatabaseIdentity::DateChange(SQLite::Database& database) const {
  TouchDatabase(database, calendar_);
}

void DatabaseIdentity::ShowDatabaseError(int number, std::string_view title,
                                         std::string_view cause) {
  operator_.ShowMessage({.icon = Icon::kCritical,
                         .title = std::string(title),
                         .text = DatabaseErrorText(number),
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

}  // namespace vrx
