#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vrx {

// The serial ports of this Linux machine. No device is opened here: opening one may raise its DTR
// line.

// /dev/ttyS(n-1). Throws SerialError for a number below 1.
[[nodiscard]] std::string BuiltInPortDevice(int number);

// The device of a serial port: the target of the link Ports/COMn in the data folder, else the
// built-in one. The device need not exist. Throws SerialError for a number below 1.
[[nodiscard]] std::string LinuxPortDevice(const std::filesystem::path& data_folder, int number);

// The paths of the existing devices, sorted.
[[nodiscard]] std::vector<std::string> SerialDevices();

// "USB serial adapter", "serial port" or "pseudo-terminal"; if it cannot be used "in use" by
// another program, "no such device", "no access" or "no serial device".
[[nodiscard]] std::string DescribeDevice(const std::string& device);

// Links a port number to a device. An empty device removes the link, and the number means the
// built-in port again. Throws SerialError.
void PutDeviceBehindPort(const std::filesystem::path& data_folder, int number,
                         const std::string& device);

}  // namespace vrx
