#include "base/replacing_file.h"

#include <cerrno>
#include <ios>
#include <random>
#include <string>
#include <system_error>

#include "base/files.h"
#include "base/sync.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(const fs::path& path, const std::string& why) {
  throw FileError("cannot write " + path.string() + ": " + why);
}

[[noreturn]] void Fail(const fs::path& path, const std::error_code& why) {
  Fail(path, why.message());
}

// What the C library said about the operation that has just failed.
std::error_code LastError() { return {errno != 0 ? errno : EIO, std::generic_category()}; }

fs::path ResolveLink(const fs::path& path) {
  std::error_code error;
  if (!fs::is_symlink(path, error)) {
    return path;
  }
  fs::path target = fs::weakly_canonical(path, error);
  return error ? path : target;
}

fs::file_status Status(const fs::path& path) {
  std::error_code ignored;
  return fs::status(path, ignored);
}

}  // namespace

ReplacingFile::ReplacingFile(const fs::path& path) : target_(ResolveLink(path)), side_(target_) {
  const fs::file_status old = Status(target_);
  if (fs::is_directory(old)) {
    Fail(target_, std::make_error_code(std::errc::is_a_directory));
  }
  if (fs::exists(old) && !fs::is_regular_file(old)) {
    Fail(target_, "it is a device or a pipe, not a file");
  }
  side_ += "." + std::to_string(std::random_device{}()) + ".tmp";
  errno = 0;
  out_.open(side_, std::ios::binary | std::ios::trunc);
  if (!out_) {
    Fail(target_, LastError());
  }
}

ReplacingFile::~ReplacingFile() {
  std::error_code ignored;
  fs::remove(side_, ignored);
}

void ReplacingFile::Write(std::string_view bytes) {
  errno = 0;
  out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out_) {
    Fail(target_, LastError());
  }
}

void ReplacingFile::TakePlace() {
  errno = 0;
  out_.close();
  if (!out_) {
    Fail(target_, LastError());
  }
  // A power cut must not leave the new name with the bytes still unwritten.
  if (const std::error_code unsynced = SyncToDisk(side_)) {
    Fail(target_, unsynced);
  }
  std::error_code error;
  const fs::file_status old = Status(target_);
  if (fs::is_regular_file(old)) {
    fs::permissions(side_, old.permissions(), error);
  }
  fs::rename(side_, target_, error);
  if (error) {
    Fail(target_, error);
  }
}

}  // namespace vrx
