#pragma once

#include <filesystem>
#include <string>

namespace vrx {

// Of the file's bytes, in lower-case hexadecimal. Only reads. Throws FileError.
std::string Sha256OfFile(const std::filesystem::path& path);

}  // namespace vrx
