#pragma once

#include <exception>
#include <filesystem>
#include <string>
#include <utility>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>

#include "base/error.h"
#include "database/lock_wait.h"

namespace vrx {

// The numbers that ShowDatabaseError has words for; every other number is the storage engine's
// extended result code.
inline constexpr int kInvalidTableError = -2147217865;  // 0x80040E37
inline constexpr int kNoRecordError = 3021;
inline constexpr int kTableLockedError = 3251;
inline constexpr int kInvalidFieldError = 3265;

// A failure of a database. what() is the cause in words, with the file's name: "YARD.RDB is cut
// off: 8192 bytes instead of 40960".
class DatabaseError : public Error {
 public:
  DatabaseError(int number, const std::string& cause) : Error(cause), number_(number) {}

  int Number() const { return number_; }

 private:
  int number_;
};

// Maps what the storage engine reports: a missing table, a missing column, a busy or locked file to
// the told numbers, anything else to its extended code.
DatabaseError TranslateSqliteError(const SQLite::Exception& error,
                                   const std::filesystem::path& path);

// The number that a box tells of a failure: that of a DatabaseError, the system's own of a file
// error, else the engine's general error.
int FailureNumber(const std::exception& failure);

// The text by which the operator is shown an error number: a sentence for the four of this system,
// "Error: 14" for all others.
std::string DatabaseErrorText(int number);

// Runs `body`, with a failure of the storage engine turned into a DatabaseError that names the
// file.
template <typename Body>
decltype(auto) WithDatabaseErrors(const SQLite::Database& database, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (const SQLite::Exception& error) {
    throw TranslateSqliteError(error, database.getFilename());
  }
}

enum class Access { kRead, kWrite };

// Opens a recipe or transaction database with the pragmas of this system: rollback journal,
// synchronous FULL, the wait for locks. Never creates a file. What a killed program left half
// written is rolled back first, for Access::kRead as well; a connection for reading then refuses
// every write.
//
// Throws DatabaseError, with the file untouched, for what is none of ours: a missing, empty, text,
// foreign, cut-off or newer file, or one that may not be written when Access::kWrite asks for it.
SQLite::Database OpenDatabase(const std::filesystem::path& path, Access access,
                              LockWait wait = kBusyTimeout);

// The file itself refuses writes, whatever the connection was opened for.
bool IsWriteProtected(const SQLite::Database& database);

}  // namespace vrx
