#pragma once

#include <filesystem>
#include <system_error>

namespace vrx {

// Waits until the file's bytes are on the disk, so that a power cut no longer loses them. A file
// system that cannot say so has done what it can: no error.
std::error_code SyncToDisk(const std::filesystem::path& path);

}  // namespace vrx
