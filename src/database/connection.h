#pragma once

#include <filesystem>

#include <SQLiteCpp/Database.h>

#include "database/database_error.h"

namespace vrx {

enum class Access { kRead, kWrite };

// Opens a recipe or transaction database with the pragmas of this system: rollback journal,
// synchronous FULL, a busy timeout of 5000 ms. Never creates a file.
//
// Throws DatabaseError, with the file untouched, for what is none of ours: a missing, empty, text,
// foreign, cut-off or newer file, or one that may not be written when Access::kWrite asks for it.
SQLite::Database OpenDatabase(const std::filesystem::path& path, Access access);

}  // namespace vrx
