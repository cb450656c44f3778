#pragma once

#include <exception>
#include <filesystem>
#include <string>
#include <type_traits>
#include <utility>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>

#include "base/error.h"
#include "database/lock_wait.h"

namespace vrx {

// Error numbers with a text of their own (DatabaseErrorText). Every other number is an extended
// result code of SQLite.
inline constexpr int kInvalidTableError = -2147217865;  // 0x80040E37
inline constexpr int kNoRecordError = 3021;
inline constexpr int kTableLockedError = 3251;
inline constexpr int kInvalidFieldError = 3265;

// what() names the file and the cause: "YARD.RDB is cut off: 8192 bytes instead of 40960".
class DatabaseError : public Error {
 public:
  DatabaseError(int number, const std::string& cause) : Error(cause), number_(number) {}

  [[nodiscard]] int Number() const { return number_; }

 private:
  int number_;
};

// Maps a missing table, a missing column and a busy or locked file to the numbers above, any other
// error to its extended code.
[[nodiscard]] DatabaseError TranslateSqliteError(const SQLite::Exception& error,
                                                 const std::filesystem::path& path);

// Error number shown to the operator: that of a DatabaseError, the code of a std::system_error,
// else SQLITE_ERROR.
[[nodiscard]] int FailureNumber(const std::exception& failure);

// Text of an error number for the operator: a sentence for the four numbers above, "Error: 14" for
// all others.
[[nodiscard]] std::string DatabaseErrorText(int number);

// Runs `body` and turns an SQLite::Exception into a DatabaseError that names the file, which is a
// path or an open database.
template <typename File, typename Body>
decltype(auto) WithDatabaseErrors(const File& file, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (const SQLite::Exception& error) {
    if constexpr (std::is_same_v<File, SQLite::Database>) {
      throw TranslateSqliteError(error, file.getFilename());
    } else {
      throw TranslateSqliteError(error, file);
    }
  }
}

enum class Access { kRead, kWrite };

// Opens a recipe or transaction database with a rollback journal, synchronous FULL and the given
// wait for locks. Never creates a file. A hot journal of a killed program is rolled back first,
// also for Access::kRead; a connection for reading then refuses every write.
//
// Throws DatabaseError and leaves the file unchanged if it is missing, locked, cut off, of a newer
// version, not one of our databases, or write-protected with Access::kWrite.
SQLite::Database OpenDatabase(const std::filesystem::path& path, Access access,
                              LockWait wait = kBusyTimeout);

// True if the file itself is write-protected, independent of the connection's access.
[[nodiscard]] bool IsWriteProtected(const SQLite::Database& database);

}  // namespace vrx
