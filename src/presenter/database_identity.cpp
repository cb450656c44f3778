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
#include "base/translation.h"
#include "database/connection.h"
#include "database/identity.h"
#include "presenter/report_failure.h"
#include "settings/settings.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr std::array kTypes{kNulRecipeDb, kNulTransDb, kUserRecipeDb, kUserTransDb};

}  // namespace

std::string DatabaseIdentity::GetDatabaseType(const fs::path& path) {
  std::string type;
  Run("Database-Type Error", [&] {
    SQLite::Database database = OpenDatabase(path, Access::kRead, lock_wait_);
    type = ReadField(database, kTypeField).value_or("");
  });
  return std::find(kTypes.begin(), kTypes.end(), type) == kTypes.end() ? std::string() : type;
}

bool DatabaseIdentity::IsUserDatabase(DatabaseKind kind, const fs::path& path,
                                      std::string_view name) {
  const KindTexts& words = TextsOf(kind);
  const std::string type = GetDatabaseType(path);
  if (type == words.user_type) {
    return true;
  }
  operator_.ShowMessage({.icon = Icon::kWarning,
                         .title = "Invalid Database",
                         .text = "The database file (" + std::string(name) +
                                 ") that you specified, is not a valid VRX-2260 " +
                                 std::string(words.noun) + " database.",
                         .cause = Tr("%1 is of type '%2'; expected '%3'",
                                     {path.string(), type, std::string(words.user_type)})});
  return false;
}

bool DatabaseIdentity::SetDatabaseType(const fs::path& path, std::string_view type) {
  return Run("Set Database-Type Error", [&] {
    SQLite::Database database = OpenDatabase(path, Access::kWrite, lock_wait_);
    WriteField(database, kTypeField, type);
  });
}

std::optional<Date> DatabaseIdentity::GetDatabaseDate(const fs::path& path, DateSelector selector) {
  std::optional<Date> date;
  Run("Database Date Read Error", [&] {
    SQLite::Database database = OpenDatabase(path, Access::kRead, lock_wait_);
    date = ReadDateField(database, DateField(selector));
  });
  return date;
}

bool DatabaseIdentity::SetDatabaseDate(const fs::path& path, DateSelector selector) {
  return Run("Database Date Write Error", [&] {
    const std::string today = StoredText(calendar_.Today());
    SQLite::Database database = OpenDatabase(path, Access::kWrite, lock_wait_);
    WriteField(database, DateField(selector), today);
  });
}

bool DatabaseIdentity::SetDatabaseUoM(const fs::path& path, std::string_view unit) {
  return Run("Database UoM Write Error", [&] {
    SQLite::Database database = OpenDatabase(path, Access::kWrite, lock_wait_);
    WriteField(database, kUnitField, unit);
  });
}

bool DatabaseIdentity::SetDatabaseUoM(SQLite::Database& database, std::string_view unit) {
  return Run("Database UoM Write Error", [&] {
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

bool DatabaseIdentity::Run(std::string_view title, const std::function<void()>& body) {
  const auto report = [&](const std::exception& failure) -> FailureReport {
    failure_cause_ = failure.what();
    return {
        .title = title, .text = FailureText::kDatabaseWords, .beeps = settings_.EnableBeeperOn()};
  };
  return RunReported(operator_, report, body);
}

}  // namespace vrx
