#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

inline constexpr std::string_view kMakerFolderName = "Brantock";
inline constexpr std::string_view kProductName = "VRX-2260";

// The application data folder, common to all users of the machine.
class Folder {
 public:
  explicit Folder(const SystemInfo& system);
  // At another path, which is not made.
  Folder(const SystemInfo& system, std::filesystem::path default_app_path);

  // What the platform says; when it cannot tell, 260 NULs.
  std::string GetCommonAPPPath() const;

  // Makes the two levels below the common application data folder, each only if it is not there,
  // and sets the two paths. Always true; throws FileError when a folder cannot be made, which is so
  // when the common folder itself is missing.
  bool CheckAppDefaultDir();

  // Both throw FileError when the folder cannot be made. The results are as they stand: always
  // true, and whether the folder was there before.
  static bool CheckPathAndCreate(const std::filesystem::path& path);
  static bool CreateDirectory(const std::filesystem::path& directory);

  // 0: no source file. 1: no such destination folder. 3: copied, over a file of that name. Throws
  // FileError when the copy fails.
  static std::int32_t CopyFile(const std::filesystem::path& source_file,
                               const std::filesystem::path& destination_folder);

  // Both empty until CheckAppDefaultDir, unless a path was given.
  const std::filesystem::path& DefaultAppPath() const { return default_app_path_; }
  const std::filesystem::path& IniFilePath() const { return ini_file_path_; }

 private:
  const SystemInfo* system_;
  std::string product_folder_name_;
  std::filesystem::path default_app_path_;
  std::filesystem::path ini_file_path_;
};

// False: a blank template is missing from the program's directory; the operator was told and the
// process must end.
bool CheckSupportFiles(const SystemInfo& system, Operator& op);

}  // namespace vrx
