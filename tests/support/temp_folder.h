#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vrx::testing {

// An empty folder that is gone with the object.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

  // Writes a file of that name and returns its path.
  std::filesystem::path Write(std::string_view name, std::string_view bytes) const;

 private:
  std::filesystem::path path_;
};

// The whole file; throws when it cannot be read.
std::string ReadAll(const std::filesystem::path& path);

}  // namespace vrx::testing
