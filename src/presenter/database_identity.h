#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <SQLiteCpp/Database.h>

#include "database/connection.h"
#include "database/identity.h"
#include "platform/calendar.h"
#include "platform/operator.h"
#include "presenter/database_identity.h"

namespace vrx {

class PrivateINI;

// Reads and writes the identity of a database by its full path, whether it is open in the main
// window or not: each call makes its own connection. A failure beeps (if the beeper is on), shows
// the routine's message box and gives the specified result.
class DatabaseIdentity {
 public:
  DatabaseIdentity(Operator& op, const Calendar& calendar, const PrivateINI& settings,
                   LockWait wait = kBusyTimeout)
      : operator_(op), calendar_(calendar), settings_(settings), lock_wait_(wait) {}

  // One of the four types; "" after a failure and, without a message, for any other text.
  std::string GetDatabaseType(const std::filesystem::path& path);
  // Whether it is a user's file of that kind. Otherwise a message, which names the file `name`,
  // says so.
  bool IsUserDatabase(DatabaseKind kind, const std::filesystem::path& path, std::string_view name);
  bool SetDatabaseType(const std::filesystem::path& path, std::string_view type);

  // Empty if the date is not set, and after a failure. Any other selector is treated as kModified.
  std::optional<Date> GetDatabaseDate(const std::filesystem::path& path, DateSelector selector);
  // Sets today's date.
  bool SetDatabaseDate(const std::filesystem::path& path, DateSelector selector);

  bool SetDatabaseUoM(const std::filesystem::path& path, std::string_view unit);
  // The same through the connection of an open database; also sets `Modified`.
  bool SetDatabaseUoM(SQLite::Database& database, std::string_view unit);

  // Sets `Modified` to today. Call it inside the transaction of the change. Throws DatabaseError.
  void DateChange(SQLite::Database& database) const;

  // How its connections wait for locks, for routines that open connections of their own.
  [[nodiscard]] LockWait Wait() const { return lock_wait_; }

  // The cause of the failure that was reported last; empty before the first one.
  [[nodiscard]] const std::string& FailureCause() const { return failure_cause_; }

 private:
  // Returns false if `body` threw, after reporting it under the title.
  bool Run(std::string_view title, const std::function<void()>& body);

  Operator& operator_;
  const Calendar& calendar_;
  const PrivateINI& settings_;
  LockWait lock_wait_;
  std::string failure_cause_;
};

}  // namespace vrx
