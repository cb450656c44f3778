#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include <SQLiteCpp/Database.h>

#include "database/lock_wait.h"
#include "database/schema.h"

namespace vrx {

// An open database with the one connection that all its views share. Moving the struct does not
// move the connection, so references to it stay valid.
struct BoundDatabase {
  std::unique_ptr<SQLite::Database> connection;  // null only before the first bind and after exit
  std::filesystem::path path;                    // empty for a blank database in memory
  std::string unit;                              // as stored in the database
  bool blank = false;                            // shown while no file is open; never written
  std::string read_only_note;                    // why the file cannot be written, else empty
};

// All three throw DatabaseError.

// Opens a user's file for writing, or for reading if it is write-protected.
[[nodiscard]] BoundDatabase BindUserDatabase(const std::filesystem::path& path, LockWait wait);

// Opens a template in the program's directory for reading.
[[nodiscard]] BoundDatabase BindBlankTemplate(const std::filesystem::path& path, LockWait wait);

// Replacement for a template that cannot be read.
[[nodiscard]] BoundDatabase BindBlankInMemory(DatabaseKind kind);

}  // namespace vrx
