#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>

namespace vrx {

// A file written piece by piece beside its path, which it takes once it is whole. Until then the
// path holds what it held before, and an object that goes without TakePlace leaves nothing behind.
// A link stays, and what it points to is replaced; a folder, a device or a pipe is refused. Every
// call throws FileError, which names the path and says why.
class ReplacingFile {
 public:
  explicit ReplacingFile(const std::filesystem::path& path);
  ~ReplacingFile();
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;

  void Write(std::string_view bytes);

  // Called once, after the last piece. The bytes are on the disk before the name is.
  void TakePlace();

 private:
  std::filesystem::path target_;
  std::filesystem::path side_;
  std::ofstream out_;
};

}  // namespace vrx
