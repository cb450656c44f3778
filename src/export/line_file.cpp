#include "export/line_file.h"

#include <cerrno>
#include <cstddef>
#include <ios>
#include <system_error>

#include "base/files.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kHeldBack = std::size_t{256} * 1024;

[[noreturn]] void Fail(const fs::path& path, const std::error_code& why) {
  throw FileError("cannot write " + path.string() + ": " + why.message());
}

// What the C library said about the stream operation that has just failed.
std::error_code LastError() { return {errno != 0 ? errno : EIO, std::generic_category()}; }

// A device or a folder of that name is left alone; a link goes, what it points to stays.
void DeleteFile(const fs::path& path) {
  std::error_code error;
  const fs::file_type type = fs::symlink_status(path, error).type();
  if (type == fs::file_type::regular || type == fs::file_type::symlink) {
    fs::remove(path, error);
    if (error) {
      Fail(path, error);
    }
  }
}

}  // namespace

LineFile::LineFile(const fs::path& path) : path_(path) {
  DeleteFile(path);
  errno = 0;
  out_.open(path, std::ios::binary | std::ios::trunc);
  if (!out_) {
    Fail(path, LastError());
  }
}

LineFile::~LineFile() {
  if (out_.is_open()) {
    out_.write(held_.data(), static_cast<std::streamsize>(held_.size()));
  }
}

void LineFile::EndLine() {
  held_ += "\r\n";
  if (held_.size() >= kHeldBack) {
    Flush();
  }
}

void LineFile::Close() {
  Flush();
  errno = 0;
  out_.close();
  if (!out_) {
    Fail(path_, LastError());
  }
}

void LineFile::Flush() {
  errno = 0;
  out_.write(held_.data(), static_cast<std::streamsize>(held_.size()));
  out_.flush();
  held_.clear();
  if (!out_) {
    Fail(path_, LastError());
  }
}

}  // namespace vrx
