#include "adapters/port_device.h"

#include <system_error>

#include "platform/serial_control.h"

namespace vrx {

namespace fs = std::filesystem;

std::string BuiltInPortDevice(int number) {
  if (number < 1) {
    throw SerialError("there is no serial port " + std::to_string(number));
  }
  return "/dev/ttyS" + std::to_string(number - 1);
}

std::string LinuxPortDevice(const fs::path& data_folder, int number) {
  std::string built_in = BuiltInPortDevice(number);
  const fs::path folder = data_folder / "Ports";
  std::error_code no_link;
  const fs::path target = fs::read_symlink(folder / ("COM" + std::to_string(number)), no_link);
  if (no_link) {
    return built_in;
  }
  return (folder / target).lexically_normal().string();
}

}  // namespace vrx
