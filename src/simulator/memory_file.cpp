#include "simulator/memory_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>

#include "simulator/descriptor.h"

namespace vrx::simulator {
namespace {

constexpr mode_t kNewFileMode = 0666;  // less what the umask takes
constexpr std::size_t kBlock = 65536;

[[noreturn]] void Fail(const char* what, const std::filesystem::path& path) {
  throw std::system_error(errno, std::generic_category(), what + path.string());
}

void WriteAll(int fd, std::string_view bytes, const std::filesystem::path& path) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(fd, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) {
      Fail("cannot write ", path);
    }
    bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
  }
  if (::fsync(fd) != 0) {
    Fail("cannot write ", path);
  }
}

}  // namespace

std::string ReadFile(const std::filesystem::path& path) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.Open()) {
    Fail("cannot read ", path);
  }
  std::string bytes;
  std::array<char, kBlock> block{};
  for (;;) {
    const ssize_t count = ::read(file.Get(), block.data(), block.size());
    if (count == 0) {
      return bytes;
    }
    if (count > 0) {
      bytes.append(block.data(), static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      Fail("cannot read ", path);
    }
  }
}

void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
  std::filesystem::path beside = path;
  beside += "." + std::to_string(::getpid()) + ".tmp";
  Descriptor file(
      ::open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, kNewFileMode));
  if (!file.Open()) {
    Fail("cannot write ", path);
  }
  try {
    WriteAll(file.Get(), bytes, path);
    file.Close();
    if (std::rename(beside.c_str(), path.c_str()) != 0) {
      Fail("cannot write ", path);
    }
  } catch (const std::system_error&) {
    ::unlink(beside.c_str());
    throw;
  }
}

}  // namespace vrx::simulator
