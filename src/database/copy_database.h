#pragma once

#include <filesystem>

#include "database/lock_wait.h"

namespace vrx {

// Replaces `target` by a byte-for-byte copy of `source`; on failure the target is unchanged. Only
// the copy of a database that was pushed to the central database differs: it is a generation of its
// own. Hot journals of both files are rolled back first, and other writers are blocked during the
// copy. A file that is not a database of this system is copied without these steps. Throws
// DatabaseError for a file that another program has locked, and FileError.
void CopyDatabaseFile(const std::filesystem::path& source, const std::filesystem::path& target,
                      LockWait wait);

}  // namespace vrx
