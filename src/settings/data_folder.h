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

  // The platform's folder; 260 NULs if the platform has none.
  [[nodiscard]] std::string GetCommonAPPPath() const;

  // Creates the maker's and the product's folder below the common application data folder if they
  // are missing, and sets the two paths. Always true; throws FileError if a folder cannot be
  // created, also because the common folder is missing.
  bool CheckAppDefaultDir();

  // Both create the folder if it is missing and throw FileError on failure. CheckPathAndCreate is
  // always true; CreateDirectory returns whether the folder existed before.
  static bool CheckPathAndCreate(const std::filesystem::path& path);
  static bool CreateDirectory(const std::filesystem::path& directory);

  // Returns 0 if the source file is missing, 1 if the destination folder is missing, 3 after
  // copying; an existing file is replaced. Throws FileError if the copy fails.
  [[nodiscard]] static std::int32_t CopyFile(const std::filesystem::path& source_file,
                                             const std::filesystem::path& destination_folder);

  // Both empty until CheckAppDefaultDir, unless a path was given.
  [[nodiscard]] const std::filesystem::path& DefaultAppPath() const { return default_app_path_; }
  [[nodiscard]] const std::filesystem::path& IniFilePath() const { return ini_file_path_; }

 private:
  const SystemInfo* system_;
  std::string product_folder_name_;
  std::filesystem::path default_app_path_;
  std::filesystem::path ini_file_path_;
};

// Returns false if a blank template is missing from the program's directory. A message was shown
// then, and the program must end.
[[nodiscard]] bool CheckSupportFiles(const SystemInfo& system, Operator& op);

}  // namespace vrx
