#pragma once

#include <filesystem>
#include <memory>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include "database/schema.h"

namespace vrx {

// A database in the making: a copy of the blank template beside the path that it is to have, and
// one transaction on it. One that goes without TakePlace leaves nothing behind, and whatever else
// stands at the path is never replaced. Throws FileError and DatabaseError, with the path
// untouched.
class NewDatabaseFile {
 public:
  // The path itself must not exist.
  NewDatabaseFile(const std::filesystem::path& path, const std::filesystem::path& program_directory,
                  DatabaseKind kind);
  ~NewDatabaseFile();
  NewDatabaseFile(const NewDatabaseFile&) = delete;
  NewDatabaseFile& operator=(const NewDatabaseFile&) = delete;

  SQLite::Database& Connection() { return *connection_; }

  // Commits, and gives the file its name once its bytes are on the disk. Called once, with no
  // statement left.
  void TakePlace();

 private:
  void RemoveSide();

  std::filesystem::path path_;
  std::filesystem::path side_;
  std::unique_ptr<SQLite::Database> connection_;
  std::unique_ptr<SQLite::Transaction> transaction_;
};

}  // namespace vrx
