#pragma once

#include <filesystem>

#include <SQLiteCpp/Database.h>

#include "database/schema.h"

namespace vrx {

// Creates the blank template of a kind with its fixed rows and the NUL marker. Replaces the file at
// `path` by renaming a complete one. Throws DatabaseError or std::filesystem::filesystem_error.
void CreateTemplate(const std::filesystem::path& path, DatabaseKind kind);

// A read-only template in memory. Throws DatabaseError.
[[nodiscard]] SQLite::Database BlankInMemory(DatabaseKind kind);

}  // namespace vrx
