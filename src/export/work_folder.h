#pragma once

#include <filesystem>

namespace vrx {

// A private folder in the system's temporary folder, removed with the object. Other users have no
// access. Throws FileError.
class WorkFolder {
 public:
  WorkFolder();
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace vrx
