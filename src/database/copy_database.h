#pragma once

#include <filesystem>

#include "database/lock_wait.h"

namespace vrx {

// Copies a file, over one of that name, byte for byte. The target holds the whole copy or what it
// held before. Other programs' writes are held off meanwhile, and what a killed program left half
// written in either file is settled first; a file that is no database of this system is copied as
// it stands. Throws DatabaseError for a file that another program holds, and FileError.
void CopyDatabaseFile(const std::filesystem::path& source, const std::filesystem::path& target,
                      LockWait wait);

}  // namespace vrx
