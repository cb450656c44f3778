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
  setpgid(0, 0);
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

// A child in a process group of its own, which is killed at the latest when this object goes.
class Child {
 public:
  Child(pid_t process, std::chrono::seconds processor_limit)
      : process_(process), processor_limit_(processor_limit) {}
  ~Child() {
    if (process_ > 0) {
      Kill();
      Wait();
    }
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // The child and what it started.
  void Kill() const { kill(-process_, SIGKILL); }

  bool HasEnded() const { return Await(WNOHANG); }

  // How it ended. What it started and left is killed; until then the group keeps its number.
  ProgramOutcome Wait() {
    while (!Await(0)) {  // interrupted by a signal
    }
    Kill();
    int status = 0;
    rusage used{};
    while (wait4(process_, &status, 0, &used) < 0 && errno == EINTR) {
    }
    process_ = 0;
    if (WIFEXITED(status)) {
      return {.end = ProgramEnd::kExited, .code = WEXITSTATUS(status)};
    }
    const int signal = WTERMSIG(status);
    // One that ignores the first signal of the limit is killed by the system a second later.
    const bool out_of_time =
        signal == SIGXCPU || (signal == SIGKILL && ProcessorTime(used) >= processor_limit_);
    return {.end = out_of_time ? ProgramEnd::kOutOfTime : ProgramEnd::kCrashed, .code = signal};
  }

 private:
  // True once it has ended; it is still there for Wait.
  bool Await(int options) const {
    siginfo_t info{};
    const int result =
        waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED | WNOWAIT | options);
    return result == 0 ? info.si_pid == process_ : errno != EINTR;
  }

  static std::chrono::seconds ProcessorTime(const rusage& used) {
    return std::chrono::seconds(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
           std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::microseconds(used.ru_utime.tv_usec + used.ru_stime.tv_usec));
  }

  pid_t process_;
  std::chrono::seconds processor_limit_;
};

// The reading end of a child's output.
class Output {
 public:
  explicit Output(Descriptor pipe) : pipe_(std::move(pipe)) {}

  // What comes within the time; empty if nothing does. Returns early at the end of the output, and
  // once that is reached waits without it: shortly at first, as a child mostly ends then.
  std::string_view Read(std::chrono::milliseconds limit) {
    pollfd waiting{.fd = pipe_.Number(), .events = POLLIN, .revents = 0};  // -1 is passed over
    if (pipe_.Number() < 0) {
      limit = std::min(limit, next_wait_);
      next_wait_ = std::min(2 * next_wait_, kLookAround);
    }
    if (poll(&waiting, 1, static_cast<int>(limit.count())) <= 0) {
      return {};
    }
    const ssize_t got = read(pipe_.Number(), piece_.data(), piece_.size());
    if (got == 0 || (got < 0 && errno != EINTR)) {
      pipe_.Close();
    }
    return {piece_.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0))};
  }

 private:
  Descriptor pipe_;
  std::chrono::milliseconds next_wait_{1};
  std::array<char, kPieceSize> piece_{};
};

// Hands on what comes until the child has ended. Says why it had to end the child, if it had to.
std::optional<ProgramEnd> PassOn(const Child& child, Output& output,
                                 std::chrono::milliseconds quiet_limit,
                                 const std::function<bool(std::string_view)>& take) {
  Clock::duration quiet{};  // without the time that `take` takes
  while (true) {
    // Asked before the reading, so that nothing which it wrote is missed.
    const bool ended = child.HasEnded();
    if (ended) {
      child.Kill();  // what it left may hold the output open, and write on
    }
    const Clock::time_point start = Clock::now();
    const std::string_view piece = output.Read(ended ? std::chrono::milliseconds{0} : kLookAround);
    quiet = piece.empty() ? quiet + (Clock::now() - start) : Clock::duration::zero();
    if (piece.empty() && ended) {
      return std::nullopt;
    }
    if (quiet > quiet_limit) {
      return ProgramEnd::kOutOfTime;
    }
    if (!take(piece)) {
      return ProgramEnd::kStopped;
    }
  }
}

// 0, or the error number of a program that cannot be started.
int WaitForStart(const Descriptor& failure) {
  int why = 0;
  ssize_t got = 0;
  do {
    got = read(failure.Number(), &why, sizeof(why));
  } while (got < 0 && errno == EINTR);
  return got == sizeof(why) ? why : 0;
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
  Child child(process, program.limits.processor);
  output->write.Close();
  failure->write.Close();
  if (const int why = WaitForStart(failure->read)) {
    child.Wait();
    return NotStarted(why);
  }
  Output pieces(std::move(output->read));
  const std::optional<ProgramEnd> cut_short = PassOn(child, pieces, program.limits.quiet, take);
  if (cut_short) {
    child.Kill();
    child.Wait();
    return {.end = *cut_short, .code = 0};
  }
  return child.Wait();
}

}  // namespace vrx
