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

// True if the path names anything: a file, hidden or not, a folder, a device.
[[nodiscard]] bool FileExists(const std::filesystem::path& path);

// Returns false, and changes nothing, if the destination exists or the copy fails. `why` then gets
// the system's error, "File exists" in the first case.
[[nodiscard]] bool CopyFileNoOverwrite(const std::filesystem::path& source,
                                       const std::filesystem::path& destination,
                                       std::error_code* why = nullptr);

// Reads a whole file; throws FileError. A file longer than `limit` returns its first `limit` + 1
// bytes, so that the caller notices.
[[nodiscard]] std::string ReadFileBytes(const std::filesystem::path& path, std::size_t limit);

// SHA-256 of bytes in lower-case hexadecimal.
[[nodiscard]] std::string Sha256(std::string_view bytes);

// The same of a file's bytes. Throws FileError.
[[nodiscard]] std::string Sha256OfFile(const std::filesystem::path& path);

// Replaces the file as AtomicFile does. Throws FileError and leaves the old file unchanged.
void WriteFileBytes(const std::filesystem::path& path, std::string_view bytes);

// File name of the path in upper case, as the screen shows it.
[[nodiscard]] std::string FileTitle(const std::filesystem::path& path);

// Writes to a temporary file in the same folder and renames it on Commit(). The old file remains
// until then; destruction without Commit removes the temporary file. If the path is a link, its
// target is replaced; a folder, device or pipe is refused. Every call throws FileError, which names
// the path and the reason.
class AtomicFile {
 public:
  explicit AtomicFile(const std::filesystem::path& path);
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  void Write(std::string_view bytes);

  // Ends the writing. The temporary file, returned by name, may be changed until Commit().
  const std::filesystem::path& Close();

  // Call once, after the last Write. Flushes the bytes to disk before renaming.
  void Commit();

 private:
  std::filesystem::path target_;
  std::filesystem::path temporary_;
  std::ofstream out_;
};

// A file that is made under a temporary name in the same folder and disappears, with a journal of
// it, unless it takes its name. It never replaces a file. Every call throws FileError.
class NewFile {
 public:
  // Refuses a path that names anything.
  explicit NewFile(const std::filesystem::path& path);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // Where the caller makes it.
  [[nodiscard]] const std::filesystem::path& Path() const { return temporary_; }

  // Call once, when nothing has the file open. Flushes its bytes to disk before.
  void TakeName();

 private:
  void RefuseExisting() const;

  std::filesystem::path path_;
  std::filesystem::path temporary_;
};

}  // namespace vrx
