#pragma once

#include <filesystem>
#include <string>

namespace vrx {

// Hash of a file's bytes in lower-case hexadecimal. Throws FileError.
[[nodiscard]] std::string Sha256OfFile(const std::filesystem::path& path);

}  // namespace vrx
