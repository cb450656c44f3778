#pragma once

#include <filesystem>
#include <system_error>

namespace vrx {

// Flushes the file's bytes to disk, so that they survive a power cut. Not an error on a file system
// that cannot flush.
[[nodiscard]] std::error_code SyncToDisk(const std::filesystem::path& path);

}  // namespace vrx
