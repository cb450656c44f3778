#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "ctl/command.h"

namespace vrx {

// A line of this machine. A QCoreApplication must exist during its lifetime.
std::unique_ptr<SerialLine> MakeSerialLine(const std::string& device,
                                           const std::filesystem::path& data_folder);

}  // namespace vrx
