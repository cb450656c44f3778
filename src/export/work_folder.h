#pragma once

#include <filesystem>

namespace vrx {

// A folder of its own below the system's temporary one, for a file that is only passed on; gone
// with the object. Others have no access. Throws FileError.
class WorkFolder {
 public:
  WorkFolder();
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace vrx
