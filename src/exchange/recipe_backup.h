#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/operator.h"
#include "settings/settings.h"

namespace vrx {

// The bytes of a recipe backup. Throws FileError, also for a file far longer than any backup.
std::string ReadRecipeBackup(const std::filesystem::path& path);

// False, the operator told, for a text that does not begin as a recipe backup and so cannot be
// downloaded.
bool HasBackupHeader(std::string_view text, Operator& op, const PrivateINI& settings);

}  // namespace vrx
