#include "base/files.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <ios>
#include <random>
#include <string>
#include <system_error>

#include <nettle/sha2.h>

#include "base/sync.h"
#include "base/text.h"
#include "base/translation.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

// The error of the C library call that has just failed.
std::error_code LastError() { return {errno != 0 ? errno : EIO, std::generic_category()}; }

[[noreturn]] void FailToRead(const fs::path& path) {
  throw FileError(Tr("cannot read %1: %2", {path.string(), LastError().message()}));
}

[[noreturn]] void FailToWrite(const fs::path& path, const std::string& why) {
  throw FileError(Tr("cannot write %1: %2", {path.string(), why}));
}

[[noreturn]] void FailToWrite(const fs::path& path, const std::error_code& why) {
  FailToWrite(path, why.message());
}

std::error_code CopyBytes(std::ifstream& in, std::FILE* out) {
  std::array<char, 65536> block{};
  while (in) {
    in.read(block.data(), static_cast<std::streamsize>(block.size()));
    const auto count = static_cast<std::size_t>(in.gcount());
    if (std::fwrite(block.data(), 1, count, out) != count) {
      return LastError();
    }
  }
  return in.bad() ? LastError() : std::error_code();
}

// Not std::filesystem::copy_file: it reports a full disk as an I/O error.
std::error_code CopyToNewFile(const fs::path& source, const fs::path& destination) {
  errno = 0;
  std::ifstream in(source, std::ios::binary);
  if (!in) {
    return LastError();
  }
  std::FILE* const out = std::fopen(destination.string().c_str(), "wbx");
  if (out == nullptr) {
    return LastError();
  }
  std::error_code error = CopyBytes(in, out);
  if (std::fclose(out) != 0 && !error) {
    error = LastError();
  }
  if (error) {
    std::error_code ignored;
    fs::remove(destination, ignored);
  }
  return error;
}

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

void Update(sha256_ctx& hash, std::string_view bytes) {
  sha256_update(&hash, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
}

std::string HexDigest(sha256_ctx& hash) {
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&hash, digest.size(), digest.data());
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : digest) {
    text.push_back(kDigits[byte >> 4U]);
    text.push_back(kDigits[byte & 0x0FU]);
  }
  return text;
}

}  // namespace

bool FileExists(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

bool CopyFileNoOverwrite(const fs::path& source, const fs::path& destination,
                         std::error_code* why) {
  const std::error_code error = CopyToNewFile(source, destination);
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

std::string Sha256(std::string_view bytes) {
  sha256_ctx hash{};
  sha256_init(&hash);
  Update(hash, bytes);
  return HexDigest(hash);
}

std::string Sha256OfFile(const fs::path& path) {
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  sha256_ctx hash{};
  sha256_init(&hash);
  std::array<char, 65536> block{};
  while (in) {
    in.read(block.data(), static_cast<std::streamsize>(block.size()));
    Update(hash, {block.data(), static_cast<std::size_t>(in.gcount())});
  }
  if (!in.eof()) {
    FailToRead(path);
  }
  return HexDigest(hash);
}

void WriteFileBytes(const fs::path& path, std::string_view bytes) {
  AtomicFile file(path);
  file.Write(bytes);
  file.Commit();
}

std::string FileTitle(const fs::path& path) { return UnicodeUpperCase(path.filename().string()); }

AtomicFile::AtomicFile(const fs::path& path) : target_(ResolveLink(path)), temporary_(target_) {
  const fs::file_status old = Status(target_);
  if (fs::is_directory(old)) {
    FailToWrite(target_, std::make_error_code(std::errc::is_a_directory));
  }
  if (fs::exists(old) && !fs::is_regular_file(old)) {
    FailToWrite(target_, Tr("it is a device or a pipe, not a file"));
  }
  temporary_ += "." + std::to_string(std::random_device{}()) + ".tmp";
  errno = 0;
  out_.open(temporary_, std::ios::binary | std::ios::trunc);
  if (!out_) {
    FailToWrite(target_, LastError());
  }
}

AtomicFile::~AtomicFile() {
  std::error_code ignored;
  fs::remove(temporary_, ignored);
}

void AtomicFile::Write(std::string_view bytes) {
  errno = 0;
  out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out_) {
    FailToWrite(target_, LastError());
  }
}

const fs::path& AtomicFile::Close() {
  errno = 0;
  if (out_.is_open()) {
    out_.close();
  }
  if (!out_) {
    FailToWrite(target_, LastError());
  }
  return temporary_;
}

void AtomicFile::Commit() {
  Close();
  // Otherwise a power cut could leave the new name with missing bytes.
  if (const std::error_code unsynced = SyncToDisk(temporary_)) {
    FailToWrite(target_, unsynced);
  }
  std::error_code error;
  const fs::file_status old = Status(target_);
  if (fs::is_regular_file(old)) {
    fs::permissions(temporary_, old.permissions(), error);
  }
  fs::rename(temporary_, target_, error);
  if (error) {
    FailToWrite(target_, error);
  }
}

NewFile::NewFile(const fs::path& path) : path_(path), temporary_(path) {
  RefuseExisting();
  temporary_ += "." + std::to_string(std::random_device{}()) + ".tmp";
}

NewFile::~NewFile() {
  std::error_code ignored;
  fs::remove(temporary_, ignored);
  fs::remove(temporary_.string() + "-journal", ignored);
}

void NewFile::TakeName() {
  std::error_code error = SyncToDisk(temporary_);
  if (!error) {
    // Unlike a rename, a hard link never replaces a file. Not every file system has hard links.
    fs::create_hard_link(temporary_, path_, error);
    if (error) {
      RefuseExisting();
      fs::rename(temporary_, path_, error);
    }
  }
  if (error) {
    FailToWrite(path_, error);
  }
}

void NewFile::RefuseExisting() const {
  if (FileExists(path_)) {
    throw FileError(Tr("%1 already exists; choose another name", {path_.string()}));
  }
}

}  // namespace vrx
