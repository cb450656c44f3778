#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/system_info.h"

namespace vrx {

// What `SETUP` only shows. Lines end in CR LF.

// `txtAppPath`: the program's own file.
std::string ApplicationPath(const SystemInfo& system);

// `txtIniFileData`: the file as it is on disk, line by line. Throws FileError.
std::string IniFileText(const std::filesystem::path& ini_file);

// `txtQxtFileData`: a transaction file with a line break after each comma. What follows the last
// comma is left out.
std::string TransactionFileText(std::string_view text);

}  // namespace vrx
