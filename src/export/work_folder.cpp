#include "export/work_folder.h"

#include <random>
#include <string>
#include <system_error>

#include "base/files.h"
#include "base/translation.h"

namespace vrx {

namespace fs = std::filesystem;

WorkFolder::WorkFolder() {
  std::error_code error;
  const fs::path common = fs::temp_directory_path(error);
  if (error) {
    throw FileError(Tr("cannot find the folder for temporary files: %1", {error.message()}));
  }
  do {
    path_ = common / ("vrx-2260." + std::to_string(std::random_device{}()));
  } while (!fs::create_directory(path_, error) && !error);
  if (!error) {
    fs::permissions(path_, fs::perms::owner_all, error);
  }
  if (error) {
    throw FileError(Tr("cannot make the folder %1: %2", {path_.string(), error.message()}));
  }
}

WorkFolder::~WorkFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace vrx
