#include "frame/replacing_file.h"

#include <cerrno>
#include <ios>
#include <random>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "frame/files.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(const fs::path& path, const std::error_code& why) {
  throw FileError("cannot write " + path.string() + ": " + why.message());
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

}  // namespace

ReplacingFile::ReplacingFile(const fs::path& path) : target_(ResolveLink(path)), side_(target_) {
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
  Sync();
  std::error_code error;
  const fs::file_status old = fs::status(target_, error);
  if (fs::is_regular_file(old)) {
    fs::permissions(side_, old.permissions(), error);
  }
  fs::rename(side_, target_, error);
  if (error) {
    Fail(target_, error);
  }
}

// A power cut must not leave the new name with the bytes still unwritten.
void ReplacingFile::Sync() const {
  const int file = open(side_.c_str(), O_RDONLY | O_CLOEXEC);
  const bool synced = file >= 0 && fsync(file) == 0;
  const std::error_code error = synced ? std::error_code() : LastError();
  if (file >= 0) {
    close(file);
  }
  // A file system without syncing says EINVAL; it has done what it can.
  if (!synced && error != std::errc::invalid_argument) {
    Fail(target_, error);
  }
}

}  // namespace vrx
