#pragma once

#include <filesystem>

#include <SQLiteCpp/Database.h>

#include "database/database_error.h"
#include "database/lock_wait.h"

namespace vrx {

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
