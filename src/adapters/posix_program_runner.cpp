#include "adapters/posix_program_runner.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vrx {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kLookAround{50};
constexpr std::size_t kPieceSize = 65536;

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { Close(); }

  void Close() {
    if (number_ >= 0) {
      close(std::exchange(number_, -1));
    }
  }
  int Number() const { return number_; }

 private:
  int number_ = -1;
};

struct Pipe {
  Descriptor read;
  Descriptor write;
};

std::optional<Pipe> OpenPipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    return std::nullopt;
  }
  return Pipe{Descriptor(ends[0]), Descriptor(ends[1])};
}

void Limit(decltype(RLIMIT_CPU) what, rlim_t soft, rlim_t hard) {
  const rlimit limit{.rlim_cur = soft, .rlim_max = hard};
  setrlimit(what, &limit);
}

// What a child needs, put together ahead of the fork: behind it nothing may be allocated.
struct ChildPlan {
  const char* path;
  char* const* arguments;
  char* const* environment;
  ProgramLimits limits;
  int output;
  int failure;  // takes the error number when the program cannot be started
  int nothing;  // of the standard input and the standard error
};

[[noreturn]] void BecomeProgram(const ChildPlan& plan) {
  sigset_t none{};
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  std::signal(SIGPIPE, SIG_DFL);
  const auto seconds = static_cast<rlim_t>(plan.limits.processor.count());
  Limit(RLIMIT_CPU, seconds, seconds + 1);
  Limit(RLIMIT_CORE, 0, 0);
  Limit(RLIMIT_FSIZE, 0, 0);
#ifndef __SANITIZE_ADDRESS__
  Limit(RLIMIT_AS, plan.limits.memory_bytes, plan.limits.memory_bytes);
#endif
  dup2(plan.nothing, STDIN_FILENO);
  dup2(plan.output, STDOUT_FILENO);
  dup2(plan.nothing, STDERR_FILENO);
  execve(plan.path, plan.arguments, plan.environment);
  const int why = errno;
  const ssize_t written = write(plan.failure, &why, sizeof(why));
  _exit(written == sizeof(why) ? EXIT_FAILURE : 127);
}

// A child that is killed at the latest when this goes, and always waited for.
class Child {
 public:
  explicit Child(pid_t process) : process_(process) {}
  ~Child() {
    if (process_ > 0) {
      Kill();
      Wait();
    }
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  void Kill() const { kill(process_, SIGKILL); }

  // How it ended.
  ProgramOutcome Wait() {
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    process_ = 0;
    if (WIFEXITED(status)) {
      return {.end = ProgramEnd::kExited, .code = WEXITSTATUS(status)};
    }
    const int signal = WTERMSIG(status);
    return {.end = signal == SIGXCPU ? ProgramEnd::kOutOfTime : ProgramEnd::kCrashed,
            .code = signal};
  }

 private:
  pid_t process_;
};

// Hands on what comes. Says why it had to end the child, if it had to.
std::optional<ProgramEnd> PassOn(const Descriptor& output, std::chrono::milliseconds quiet_limit,
                                 const std::function<bool(std::string_view)>& take) {
  std::array<char, kPieceSize> piece{};
  Clock::time_point last = Clock::now();
  while (true) {
    pollfd waiting{.fd = output.Number(), .events = POLLIN, .revents = 0};
    const int ready = poll(&waiting, 1, static_cast<int>(kLookAround.count()));
    std::size_t count = 0;
    if (ready > 0) {
      const ssize_t got = read(output.Number(), piece.data(), piece.size());
      if (got == 0 || (got < 0 && errno != EINTR)) {
        return std::nullopt;
      }
      count = static_cast<std::size_t>(std::max<ssize_t>(got, 0));
    }
    if (count == 0 && Clock::now() - last > quiet_limit) {
      return ProgramEnd::kOutOfTime;
    }
    if (!take({piece.data(), count})) {
      return ProgramEnd::kStopped;
    }
    // The time that `take` takes is not the program's.
    if (count > 0) {
      last = Clock::now();
    }
  }
}

ProgramOutcome NotStarted(int why) { return {.end = ProgramEnd::kNotStarted, .code = why}; }

}  // namespace

ProgramOutcome PosixProgramRunner::Run(const LimitedProgram& program,
                                       const std::function<bool(std::string_view)>& take) {
  std::optional<Pipe> output = OpenPipe();
  std::optional<Pipe> failure = OpenPipe();
  const Descriptor nothing(open("/dev/null", O_RDWR | O_CLOEXEC));
  if (!output || !failure || nothing.Number() < 0) {
    return NotStarted(errno);
  }
  std::string path = program.path.string();
  std::vector<std::string> words = program.arguments;
  std::vector<char*> arguments{path.data()};
  for (std::string& word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  std::string locale = "LC_ALL=C";
  std::array<char*, 2> environment{locale.data(), nullptr};
  const ChildPlan plan{.path = path.c_str(),
                       .arguments = arguments.data(),
                       .environment = environment.data(),
                       .limits = program.limits,
                       .output = output->write.Number(),
                       .failure = failure->write.Number(),
                       .nothing = nothing.Number()};
  const pid_t process = fork();
  if (process == 0) {
    BecomeProgram(plan);
  }
  if (process < 0) {
    return NotStarted(errno);
  }
  Child child(process);
  output->write.Close();
  failure->write.Close();
  int why = 0;
  if (read(failure->read.Number(), &why, sizeof(why)) == sizeof(why)) {
    child.Wait();
    return NotStarted(why);
  }
  const std::optional<ProgramEnd> cut_short = PassOn(output->read, program.limits.quiet, take);
  if (cut_short) {
    child.Kill();
    child.Wait();
    return {.end = *cut_short, .code = 0};
  }
  return child.Wait();
}

}  // namespace vrx
