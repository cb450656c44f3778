#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include <SQLiteCpp/Database.h>

#include "database/lock_wait.h"
#include "database/schema.h"

namespace vrx {

// What the views of one database stand on: the one connection that they share. Moving it moves no
// connection, so a reference to that stays good.
struct BoundDatabase {
  std::unique_ptr<SQLite::Database> connection;  // none only before the first binding, after exit
  std::filesystem::path path;                    // empty for a blank one that is no file
  std::string unit;                              // as the database holds it
  bool blank = false;                            // stands for a closed database; is not written
  std::string read_only_note;                    // why a user's file may not be written, else empty
};

// A user's file, for writing where that is allowed. Throws DatabaseError; so do the next two.
BoundDatabase BindUserDatabase(const std::filesystem::path& path, LockWait wait);

// A template in the program's directory, for reading.
BoundDatabase BindBlankTemplate(const std::filesystem::path& path, LockWait wait);

// Stands in for a template that cannot be read.
BoundDatabase BindBlankInMemory(DatabaseKind kind);

}  // namespace vrx
