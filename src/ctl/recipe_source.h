#pragma once

#include <filesystem>

namespace vrx {

// Whether a file that may be a recipe database or a recipe backup is to be taken for a backup: by
// its first bytes, and where they do not say so by its name. All else is taken for a database.
bool IsRecipeBackup(const std::filesystem::path& path);

}  // namespace vrx
