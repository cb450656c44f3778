#include "settings/data_folder.h"

#include <system_error>

#include "base/application.h"
#include "base/files.h"
#include "base/text.h"
#include "base/translation.h"
#include "settings/settings.h"

namespace vrx {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kPathBufferLength = 260;

}  // namespace

Folder::Folder(const SystemInfo& system) : system_(&system) {}

Folder::Folder(const SystemInfo& system, fs::path default_app_path)
    : system_(&system),
      default_app_path_(std::move(default_app_path)),
      ini_file_path_(default_app_path_ / kIniFileName) {}

std::string Folder::GetCommonAPPPath() const {
  const std::string path = system_->CommonAppDataFolder();
  return path.empty() ? std::string(kPathBufferLength, '\0') : path.substr(0, path.find('\0'));
}

bool Folder::CheckAppDefaultDir() {
  const std::string common = GetCommonAPPPath();
  if (common.empty() || common.front() == '\0') {
    throw FileError(Tr("the common application data folder is unknown"));
  }
  product_folder_name_ = kProductName;
  default_app_path_ = fs::path(common) / kMakerFolderName;
  CheckPathAndCreate(default_app_path_);
  default_app_path_ /= product_folder_name_;
  ini_file_path_ = default_app_path_ / kIniFileName;
  return CheckPathAndCreate(default_app_path_);
}

bool Folder::CheckPathAndCreate(const fs::path& path) {
  CreateDirectory(path);
  return true;
}

bool Folder::CreateDirectory(const fs::path& directory) {
  std::error_code error;
  if (fs::is_directory(directory, error)) {
    return true;
  }
  fs::create_directory(directory, error);
  if (error) {
    throw FileError(Tr("cannot make the folder %1: %2", {directory.string(), error.message()}));
  }
  return false;
}

std::int32_t Folder::CopyFile(const fs::path& source_file, const fs::path& destination_folder) {
  std::error_code error;
  if (!FileExists(source_file)) {
    return 0;
  }
  if (!fs::is_directory(destination_folder, error)) {
    return 1;
  }
  fs::copy_file(source_file, destination_folder / source_file.filename(),
                fs::copy_options::overwrite_existing, error);
  if (error) {
    throw FileError(Tr("cannot copy %1 to %2: %3",
                       {source_file.string(), destination_folder.string(), error.message()}));
  }
  return 3;
}

bool CheckSupportFiles(const SystemInfo& system, Operator& op) {
  std::string missing;
  for (const std::string_view name : {kRecipeTemplateName, kTransactionTemplateName}) {
    if (!FileExists(fs::path(system.ProgramDirectory()) / name)) {
      missing.append(name).append("\r\n");
    }
  }
  if (missing.empty()) {
    return true;
  }
  op.Beep();
  op.ShowMessage({.icon = Icon::kCritical,
                  .title = "Missing Files",
                  .text = "The following VRX-2260 support files are missing from the applications "
                          "installation directory:\r\n\r\n" +
                          missing +
                          "\r\nPlease run the VRX-2260 installation program and follow "
                          "instructions to 'Reinstall Support Files'.\r\n\r\n"
                          "This program will now terminate."});
  return false;
}

}  // namespace vrx
