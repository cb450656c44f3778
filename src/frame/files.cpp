#include "frame/files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <random>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "frame/text.h"

namespace vrx {
namespace fs = std::filesystem;
namespace {

[[noreturn]] void Fail(std::string_view what, const fs::path& path, const std::error_code& why) {
  throw FileError(std::string(what) + " " + path.string() + ": " + why.message());
}

// What the C library said about the stream operation that has just failed.
std::error_code LastError() { return {errno != 0 ? errno : EIO, std::generic_category()}; }

// A file beside its target that is gone with the object unless it has taken the target's place.
class SideFile {
 public:
  explicit SideFile(const fs::path& target) : target_(target), path_(target) {
    path_ += "." + std::to_string(std::random_device{}()) + ".tmp";
  }
  ~SideFile() {
    std::error_code ignored;
    fs::remove(path_, ignored);
  }
  SideFile(const SideFile&) = delete;
  SideFile& operator=(const SideFile&) = delete;

  void Write(std::string_view bytes) {
    errno = 0;
    std::ofstream out(path_, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
      Fail("cannot write", target_, LastError());
    }
    Sync();
  }

  void TakePlace() {
    std::error_code error;
    const fs::file_status old = fs::status(target_, error);
    if (fs::is_regular_file(old)) {
      fs::permissions(path_, old.permissions(), error);
    }
    fs::rename(path_, target_, error);
    if (error) {
      Fail("cannot write", target_, error);
    }
  }

 private:
  // A power cut must not leave the new name with the bytes still unwritten.
  void Sync() const {
    const int file = open(path_.c_str(), O_RDONLY | O_CLOEXEC);
    const bool synced = file >= 0 && fsync(file) == 0;
    const std::error_code error = synced ? std::error_code() : LastError();
    if (file >= 0) {
      close(file);
    }
    // A file system without syncing says EINVAL; it has done what it can.
    if (!synced && error != std::errc::invalid_argument) {
      Fail("cannot write", target_, error);
    }
  }

  fs::path target_;
  fs::path path_;
};

// A link stays and what it points to is replaced.
fs::path ResolveLink(const fs::path& path) {
  std::error_code error;
  if (!fs::is_symlink(path, error)) {
    return path;
  }
  fs::path target = fs::weakly_canonical(path, error);
  return error ? path : target;
}

}  // namespace

bool FileExists(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

bool CopyFileNoOverwrite(const fs::path& source, const fs::path& destination) {
  if (FileExists(destination)) {
    return false;
  }
  std::error_code error;
  fs::copy_file(source, destination, error);
  std::error_code ignored;
  if (error) {
    if (error != std::errc::file_exists) {
      fs::remove(destination, ignored);
    }
    return false;
  }
  // The copy is the user's own, even of a template that is installed read-only.
  fs::permissions(destination, fs::perms::owner_write, fs::perm_options::add, ignored);
  return true;
}

std::string ReadFileBytes(const fs::path& path, std::size_t limit) {
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    Fail("cannot read", path, LastError());
  }
  std::string bytes;
  std::array<char, 65536> block{};
  while (in && bytes.size() <= limit) {
    in.read(block.data(), static_cast<std::streamsize>(block.size()));
    bytes.append(block.data(), static_cast<std::size_t>(in.gcount()));
  }
  if (in.bad()) {
    Fail("cannot read", path, LastError());
  }
  if (bytes.size() > limit) {
    bytes.resize(limit + 1);
  }
  return bytes;
}

void WriteFileBytes(const fs::path& path, std::string_view bytes) {
  SideFile file(ResolveLink(path));
  file.Write(bytes);
  file.TakePlace();
}

std::string FileTitle(const fs::path& path) { return UpperCase(path.filename().string()); }

}  // namespace vrx
