#include "frame/files.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>

#include "frame/replacing_file.h"
#include "frame/text.h"

namespace vrx {
namespace fs = std::filesystem;
namespace {

// Says what the C library said about the stream operation that has just failed.
[[noreturn]] void FailToRead(const fs::path& path) {
  const std::error_code why(errno != 0 ? errno : EIO, std::generic_category());
  throw FileError("cannot read " + path.string() + ": " + why.message());
}

}  // namespace

bool FileExists(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

bool CopyFileNoOverwrite(const fs::path& source, const fs::path& destination,
                         std::error_code* why) {
  std::error_code error =
      FileExists(destination) ? std::make_error_code(std::errc::file_exists) : std::error_code();
  if (!error) {
    fs::copy_file(source, destination, error);
    std::error_code ignored;
    if (!error) {
      // The copy is the user's own, even of a template that is installed read-only.
      fs::permissions(destination, fs::perms::owner_write, fs::perm_options::add, ignored);
    } else if (error != std::errc::file_exists) {
      fs::remove(destination, ignored);
    }
  }
  if (why != nullptr) {
    *why = error;
  }
  return !error;
}

std::string ReadFileBytes(const fs::path& path, std::size_t limit) {
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    FailToRead(path);
  }
  std::string bytes;
  std::array<char, 65536> block{};
  while (in && bytes.size() <= limit) {
    in.read(block.data(), static_cast<std::streamsize>(block.size()));
    bytes.append(block.data(), static_cast<std::size_t>(in.gcount()));
  }
  if (in.bad()) {
    FailToRead(path);
  }
  if (bytes.size() > limit) {
    bytes.resize(limit + 1);
  }
  return bytes;
}

void WriteFileBytes(const fs::path& path, std::string_view bytes) {
  ReplacingFile file(path);
  file.Write(bytes);
  file.TakePlace();
}

std::string FileTitle(const fs::path& path) { return UpperCase(path.filename().string()); }

}  // namespace vrx
