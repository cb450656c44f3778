#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/local_time.h"
#include "platform/operator.h"

namespace vrx {

// A rescue file holds the raw bytes that an indicator sent and that could not be saved as data
// files.

// True for the extension .KRM in any case.
[[nodiscard]] bool IsRescueFile(const std::filesystem::path& path);

// Throws FileError, also for a file longer than 16 MiB, far more than any memory.
[[nodiscard]] std::string ReadRescueFile(const std::filesystem::path& path);

// Writes RESCUE-YYYYMMDD-HHMMSS.KRM to the first folder where that succeeds, with the temporary
// folder as the last, and returns its path. Missing folders are created, empty paths skipped. If
// the name exists, later seconds are tried. If all folders fail, throws FileError with all reasons.
std::filesystem::path WriteRescueFile(std::string_view bytes,
                                      const std::vector<std::filesystem::path>& folders,
                                      const LocalTime& now);

// Writes the file and shows a message with its path, or with the error; returns false then.
bool RescueReceived(std::string_view bytes, const std::vector<std::filesystem::path>& folders,
                    const LocalTime& now, Operator& op);

}  // namespace vrx
