#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vrx {

// The classic private-profile text file: `[section]` lines and `key=value` lines. Section and key
// names compare without regard to case; where a name stands twice, the first one counts.

// The value without the blanks around it, cut to 1023 bytes; empty for a missing key, section or
// file, and for a file of more than a megabyte, which is none of ours.
std::string ReadProfileText(const std::filesystem::path& path, std::string_view section,
                            std::string_view key);

// Makes file, section and key as needed. Every other line stays as it is, byte for byte. Throws
// FileError, with the file as it was, when it cannot be read or written and for a value that does
// not fit on a line.
void WriteProfileText(const std::filesystem::path& path, std::string_view section,
                      std::string_view key, std::string_view value);

}  // namespace vrx
