#include "simulator/simulator_program.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vrx::testing {
namespace {

using simulator::Descriptor;

constexpr int kPatience = 10'000;  // ms

[[noreturn]] void Fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

struct PipeEnds {
  Descriptor read;
  Descriptor write;
};

PipeEnds Pipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    Fail("pipe");
  }
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

bool ReadableWithin(int fd, int milliseconds) {
  pollfd watched{.fd = fd, .events = POLLIN, .revents = 0};
  return ::poll(&watched, 1, milliseconds) > 0;
}

}  // namespace

SimulatorProgram::SimulatorProgram(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), VRX_BIN_DIR "/vrx2260sim");
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) {
    argv.push_back(argument.data());
  }
  argv.push_back(nullptr);
  PipeEnds output = Pipe();
  PipeEnds errors = Pipe();
  process_ = ::fork();
  if (process_ < 0) {
    Fail("fork");
  }
  if (process_ == 0) {
    ::dup2(output.write.Get(), STDOUT_FILENO);
    ::dup2(errors.write.Get(), STDERR_FILENO);
    ::execv(argv.front(), argv.data());
    ::_exit(127);
  }
  output_ = std::move(output.read);
  errors_ = std::move(errors.read);
}

SimulatorProgram::~SimulatorProgram() {
  if (process_ > 0) {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
}

std::string SimulatorProgram::OutputLine() {
  std::string line;
  char byte = 0;
  while (ReadableWithin(output_.Get(), kPatience) && ::read(output_.Get(), &byte, 1) == 1 &&
         byte != '\n') {
    line += byte;
  }
  return line;
}

void SimulatorProgram::Signal(int signal) const { ::kill(process_, signal); }

int SimulatorProgram::ExitCode() {
  int status = 0;
  const bool ended = Eventually([&] { return ::waitpid(process_, &status, WNOHANG) == process_; });
  if (!ended) {
    return -1;
  }
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string SimulatorProgram::Errors() {
  std::string text;
  std::array<char, 4096> block{};
  for (ssize_t count = 0; (count = ::read(errors_.Get(), block.data(), block.size())) > 0;) {
    text.append(block.data(), static_cast<std::size_t>(count));
  }
  return text;
}

Client::Client(const std::filesystem::path& link)
    : terminal_(::open(link.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
  if (!terminal_.Open()) {
    Fail("open the line");
  }
}

void Client::Write(std::string_view bytes) const {
  while (!bytes.empty()) {
    pollfd watched{.fd = terminal_.Get(), .events = POLLOUT, .revents = 0};
    if (::poll(&watched, 1, kPatience) <= 0) {
      throw std::runtime_error("the line takes nothing");
    }
    const ssize_t count = ::write(terminal_.Get(), bytes.data(), bytes.size());
    if (count < 0 && errno != EAGAIN) {
      Fail("write to the line");
    }
    bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  }
}

std::string Client::Read(std::size_t count) const {
  std::string bytes;
  std::array<char, 4096> block{};
  while (bytes.size() < count && ReadableWithin(terminal_.Get(), kPatience)) {
    const ssize_t got =
        ::read(terminal_.Get(), block.data(), std::min(block.size(), count - bytes.size()));
    if (got <= 0) {
      break;
    }
    bytes.append(block.data(), static_cast<std::size_t>(got));
  }
  return bytes;
}

std::string Client::ReadUntilSilent(int milliseconds) const {
  std::string bytes;
  while (ReadableWithin(terminal_.Get(), milliseconds)) {
    const std::string byte = Read(1);
    if (byte.empty()) {
      break;
    }
    bytes += byte;
  }
  return bytes;
}

bool Client::IsHungUpWithin(int milliseconds) const {
  pollfd watched{.fd = terminal_.Get(), .events = 0, .revents = 0};
  return ::poll(&watched, 1, milliseconds) > 0;
}

void Client::TakeForItself() const {
  if (::ioctl(terminal_.Get(), TIOCEXCL) != 0) {
    Fail("take the line");
  }
}

bool Client::TakenForOne() const {
  int taken = 0;
  if (::ioctl(terminal_.Get(), TIOCGEXCL, &taken) != 0) {
    Fail("ask about the line");
  }
  return taken != 0;
}

std::size_t Client::Untaken() const {
  int count = 0;
  if (::ioctl(terminal_.Get(), FIONREAD, &count) != 0) {
    Fail("count the bytes on the line");
  }
  return static_cast<std::size_t>(count);
}

void SleepShortly() { std::this_thread::sleep_for(std::chrono::milliseconds(10)); }

}  // namespace vrx::testing
