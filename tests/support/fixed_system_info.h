#pragma once

#include <string>

#include "platform/system_info.h"

namespace vrx::testing {

class FixedSystemInfo : public SystemInfo {
 public:
  std::string WindowsDirectory() const override { return windows_directory; }
  std::string CommonAppDataFolder() const override { return common_app_data_folder; }
  std::string ProgramDirectory() const override { return program_directory; }
  int FindExecutable(const std::string& /*document*/, const std::string& /*directory*/,
                     std::string& viewer) const override {
    viewer = viewer_path;
    return find_executable_code;
  }

  std::string windows_directory = "/usr";
  std::string common_app_data_folder;
  std::string program_directory;
  std::string viewer_path;
  int find_executable_code = 31;
};

}  // namespace vrx::testing
