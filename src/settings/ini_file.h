#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vrx {

// The classic private-profile text file: `[section]` lines and `key=value` lines. Section and key
// names are not case-sensitive; if a name occurs twice, the first one is used.

// The trimmed value, cut to 1023 bytes. Empty if the key, section or file is missing and if the
// file is longer than 1 MiB.
[[nodiscard]] std::string ReadProfileText(const std::filesystem::path& path,
                                          std::string_view section, std::string_view key);

// Creates file, section and key if missing. Every other line is kept byte for byte. Throws
// FileError and leaves the file unchanged if it cannot be read or written, and if the value is
// longer than 1023 bytes or has a line break or NUL.
void WriteProfileText(const std::filesystem::path& path, std::string_view section,
                      std::string_view key, std::string_view value);

}  // namespace vrx
