#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/local_time.h"
#include "platform/operator.h"

namespace vrx {

// Bytes that an indicator sent and that could not be saved as data files, raw in a file of their
// own.

// True for a name that ends in .KRM, in either case.
bool IsRescueFile(const std::filesystem::path& path);

// Throws FileError, also for a file far longer than any memory.
std::string ReadRescueFile(const std::filesystem::path& path);

// Writes RESCUE-YYYYMMDD-HHMMSS.KRM into the first of the folders that takes it, or else into the
// temporary folder, and returns its path. A folder that is missing is made; an empty path is
// skipped. A name that is taken gets a later second. Throws FileError with the reason of each
// folder when none takes it.
std::filesystem::path WriteRescueFile(std::string_view bytes,
                                      const std::vector<std::filesystem::path>& folders,
                                      const LocalTime& now);

// Writes the file and shows its path, or why it could not be written. False in that case.
bool RescueReceived(std::string_view bytes, const std::vector<std::filesystem::path>& folders,
                    const LocalTime& now, Operator& op);

}  // namespace vrx
