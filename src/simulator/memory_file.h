#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vrx::simulator {

// Both throw std::system_error, its text for the user.

// The whole file.
std::string ReadFile(const std::filesystem::path& path);

// Writes beside the file and renames: whoever reads it sees the old or the new one, whole.
void WriteFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace vrx::simulator
