#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "ctl/command.h"

namespace vrx {

// A line of this machine. Needs a QCoreApplication for as long as it lives.
std::unique_ptr<SerialLine> MakeSerialLine(const std::string& device,
                                           const std::filesystem::path& data_folder);

}  // namespace vrx
