#include "simulator/data_module.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include <fcntl.h>

#include "simulator/device.h"
#include "simulator/pty_line.h"

namespace vrx::simulator {

namespace {

// Neither a command nor a terminator.
constexpr char kWrongFirstByte = '?';
constexpr char kStray = '~';

constexpr mode_t kNewFileMode = 0666;  // restricted by the umask
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

DataModule::DataModule(Faults faults, LogMessage log) : faults_(faults), log_(std::move(log)) {}

std::optional<Transmission> DataModule::Receive(char byte) {
  switch (byte) {
    case kDc4:
      ReportDropped();
      memory_.clear();
      return Acknowledge(byte);
    case kSyn:
    case kEtb:
    case kCan:
    case kEm:
      ReportDropped();
      return Acknowledge(byte);
    case kNak:
    case kFs:
      ReportDropped();
      return Dump(byte);
    default:
      Keep({&byte, 1});
      return std::nullopt;
  }
}

void DataModule::Load(std::string_view bytes) {
  Keep(bytes);
  ReportDropped();
}

void DataModule::Keep(std::string_view bytes) {
  const std::size_t kept = std::min(bytes.size(), kMemorySize - memory_.size());
  memory_ += bytes.substr(0, kept);
  if (kept < bytes.size() && dropped_ == 0) {
    log_("memory is full at " + std::to_string(kMemorySize) +
         " bytes, what comes beyond is dropped");
  }
  dropped_ += bytes.size() - kept;
}

void DataModule::ReportDropped() {
  if (dropped_ > 0) {
    log_("bytes dropped: " + std::to_string(dropped_));
  }
  dropped_ = 0;
}

Transmission DataModule::Acknowledge(char command) const { return Spoil({command, kUs}, false); }

Transmission DataModule::Dump(char command) {
  if (carry_) {
    memory_ = carry_(memory_).value_or(memory_);
  }
  std::string reply{command, kUs};
  reply += memory_;
  if (faults_.extra_us) {
    reply.insert(reply.size() - memory_.size() / 2, 1, kUs);
  }
  reply += kUs;
  reply.append(faults_.strays.value_or(0), kStray);
  return Spoil(std::move(reply), true);
}

Transmission DataModule::Spoil(std::string reply, bool gives_way) const {
  if (faults_.silent) {
    return {{}, gives_way};
  }
  if (faults_.garbage) {
    reply.front() = kWrongFirstByte;
  }
  if (faults_.cut_after && *faults_.cut_after < reply.size()) {
    reply.resize(*faults_.cut_after);
  }
  if (!faults_.stall) {
    return {{{std::move(reply)}}, gives_way};
  }
  // Even a short stalled reply is dropped: a client that asks again no longer waits for it.
  const std::size_t half = reply.size() / 2;
  return {{{reply.substr(0, half)}, {reply.substr(half), *faults_.stall}}, true};
}

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
