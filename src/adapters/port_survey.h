#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vrx {

// The serial devices of this machine, as the operator chooses among them. Linux. No device is
// opened for it: opening one may raise its DTR line.

// The paths of those that are there, in the order of their names.
std::vector<std::string> SerialDevices();

// What stands at a path: "USB serial adapter", "serial port" or "pseudo-terminal"; "in use" by
// another program, "no such device", "no access" or "no serial device" where it cannot be used.
std::string DescribeDevice(const std::string& device);

// Puts a device behind a serial port's number, in place of what the link had; an empty one takes
// the link away, and the number stands for the built-in port again. Throws SerialError.
void PutDeviceBehindPort(const std::filesystem::path& data_folder, int number,
                         const std::string& device);

}  // namespace vrx
