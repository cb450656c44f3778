#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "base/error.h"

namespace vrx {

// A file or folder that could not be read or written. what() names it and says why.
class FileError : public Error {
 public:
  using Error::Error;
};

// True if the path names anything, hidden files included.
bool FileExists(const std::filesystem::path& path);

// Copies; false, with nothing changed, when the destination exists or the copy fails. `why` then
// gets the system's reason, "File exists" in the first case.
bool CopyFileNoOverwrite(const std::filesystem::path& source,
                         const std::filesystem::path& destination, std::error_code* why = nullptr);

// The bytes of a file; throws FileError. Reads at most `limit` bytes: a longer file gives its first
// `limit` + 1, so that the caller can tell.
std::string ReadFileBytes(const std::filesystem::path& path, std::size_t limit);

// Writes beside the path and renames, so that the file is the old one or the new one, whole. Throws
// FileError with the old file untouched.
void WriteFileBytes(const std::filesystem::path& path, std::string_view bytes);

// The file name of a path in upper case, as the screen shows it.
std::string FileTitle(const std::filesystem::path& path);

// A file written piece by piece beside its path, which it takes once it is whole. Until then the
// path holds what it held before, and an object that goes without Commit leaves nothing behind.
// A link stays, and what it points to is replaced; a folder, a device or a pipe is refused. Every
// call throws FileError, which names the path and says why.
class AtomicFile {
 public:
  explicit AtomicFile(const std::filesystem::path& path);
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  void Write(std::string_view bytes);

  // Called once, after the last piece. The bytes are on the disk before the name is.
  void Commit();

 private:
  std::filesystem::path target_;
  std::filesystem::path side_;
  std::ofstream out_;
};

}  // namespace vrx
