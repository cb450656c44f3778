#pragma once

#include <filesystem>
#include <string>

namespace vrx {

// /dev/ttyS(n-1). Throws SerialError for a number below 1.
std::string BuiltInPortDevice(int number);

// The device of serial port `number` on Linux: what the link Ports/COMn in the data folder points
// to, else the built-in one. The device need not exist. Throws SerialError for a number below 1.
std::string LinuxPortDevice(const std::filesystem::path& data_folder, int number);

}  // namespace vrx
