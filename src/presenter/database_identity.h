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

// Reads and writes what a database says of itself, by its full path, open in the main window or
// not: each call makes its own connection. A failure beeps (if the beeper is on), shows the
// routine's box and comes back as the result told.
class DatabaseIdentity {
 public:
  DatabaseIdentity(Operator& op, const Calendar& calendar, const PrivateINI& settings,
                   LockWait wait = kBusyTimeout)
      : operator_(op), calendar_(calendar), settings_(settings), lock_wait_(wait) {}

  // One of the four types; "" for another text in the file, without a box, and after a failure.
  std::string GetDatabaseType(const std::filesystem::path& path);
  bool SetDatabaseType(const std::filesystem::path& path, std::string_view type);

  // Nothing for a date that is not set, and after a failure. A selector that is neither of the two
  // stands for kModified.
  std::optional<Date> GetDatabaseDate(const std::filesystem::path& path, DateSelector selector);
  // Always to today's date.
  bool SetDatabaseDate(const std::filesystem::path& path, DateSelector selector);

  bool SetDatabaseUoM(const std::filesystem::path& path, std::string_view unit);
  // The same by the connection of an open database, dated as a change of it.
  bool SetDatabaseUoM(SQLite::Database& database, std::string_view unit);

  // Sets `Modified` to today inside the transaction of the change that it dates. Throws
  // DatabaseError.
  void DateChange(SQLite::Database& database) const;

  // How its connections wait for locks; for routines that open their own beside them.
  LockWait Wait() const { return lock_wait_; }

  // The cause of the failure that was reported last; empty before the first one.
  const std::string& FailureCause() const { return failure_cause_; }

  // A critical box with the words of that error number; `cause` goes with it.
  void ShowDatabaseError(int number, std::string_view title, std::string_view cause = {});

 private:
  // False when `body` threw; the operator has then been told under the title.
  bool Trapped(std::string_view title, const std::function<void()>& body);

  Operator& operator_;
  const Calendar& calendar_;
  const PrivateINI& settings_;
  LockWait lock_wait_;
  std::string failure_cause_;
};

}  // namespace vrx
