#include "export/work_folder.h"

#include <random>
#include <string>
#include <system_error>

#include "base/files.h"

namespace vrx {

namespace fs = std::filesystem;

WorkFolder::WorkFolder() {
  std::error_code error;
  const fs::path common = fs::temp_directory_path(error);
  if (error) {
    throw FileError("cannot find the folder for temporary files: " + error.message());
  }
  do {
    path_ = common / ("vrx-2260." + std::to_string(std::random_device{}()));
  } while (!fs::create_directory(path_, error) && !error);
  if (!error) {
    fs::permissions(path_, fs::perms::owner_all, error);
  }
  if (error) {
    throw FileError("cannot make the folder " + path_.string() + ": " + error.message());
  }
}

WorkFolder::~WorkFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace vrx
