#pragma once

#include <chrono>
#include <filesystem>

#include <SQLiteCpp/Database.h>

#include "database/database_error.h"

namespace vrx {

enum class Access { kRead, kWrite };

// How long a connection waits for a lock of another one.
inline constexpr std::chrono::milliseconds kBusyTimeout{5000};

// Opens a recipe or transaction database with the pragmas of this system: rollback journal,
// synchronous FULL, the busy timeout. Never creates a file. What a killed program left half
// written is rolled back first, for Access::kRead as well; a connection for reading then refuses
// every write.
//
// Throws DatabaseError, with the file untouched, for what is none of ours: a missing, empty, text,
// foreign, cut-off or newer file, or one that may not be written when Access::kWrite asks for it.
SQLite::Database OpenDatabase(const std::filesystem::path& path, Access access,
                              std::chrono::milliseconds busy_timeout = kBusyTimeout);

}  // namespace vrx
