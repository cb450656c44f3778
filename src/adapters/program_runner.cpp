#include "adapters/program_runner.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
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
#include <unistd.h>

namespace vrx {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPollInterval{50};
constexpr std::size_t kChunkSize = 65536;

// The standard output of a child. A channel of QProcess would buffer without limit while the
// receiver of the output handles events; a full pipe stops the child.
class OutputPipe {
 public:
  // Check IsOpen; errno says why it is not.
  OutputPipe() {
    if (pipe2(ends_.data(), O_CLOEXEC) != 0) {
      ends_ = {-1, -1};
    }
  }
  ~OutputPipe() {
    Close(ends_[0]);
    Close(ends_[1]);
  }
  OutputPipe(const OutputPipe&) = delete;
  OutputPipe& operator=(const OutputPipe&) = delete;

  [[nodiscard]] bool IsOpen() const { return ends_[0] >= 0; }
  [[nodiscard]] int WriteEnd() const { return ends_[1]; }
  void CloseWriteEnd() { Close(ends_[1]); }

  // Returns what arrives within the limit, and nothing at the end of the output, which closes the
  // pipe.
  [[nodiscard]] std::string_view Read(std::chrono::milliseconds limit) {
    pollfd readable{.fd = ends_[0], .events = POLLIN, .revents = 0};
    if (poll(&readable, 1, static_cast<int>(limit.count())) <= 0) {
      return {};
    }
    const ssize_t got = read(ends_[0], chunk_.data(), chunk_.size());
    if (got == 0 || (got < 0 && errno != EINTR)) {
      Close(ends_[0]);
    }
    return {chunk_.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0))};
  }

 private:
  static void Close(int& descriptor) {
    if (descriptor >= 0) {
      close(std::exchange(descriptor, -1));
    }
  }

  std::array<int, 2> ends_{-1, -1};
  std::array<char, kChunkSize> chunk_{};
};

void Limit(decltype(RLIMIT_CPU) resource, rlim_t soft, rlim_t hard) {
  const rlimit limit{.rlim_cur = soft, .rlim_max = hard};
  setrlimit(resource, &limit);
}

// Runs in the child between fork and exec, where nothing may be allocated.
void PrepareChild(const ProgramLimits& limits, int output) {
  setpgid(0, 0);
  sigset_t none{};
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  const auto seconds = static_cast<rlim_t>(limits.processor.count());
  Limit(RLIMIT_CPU, seconds, seconds + 1);
  Limit(RLIMIT_CORE, 0, 0);
  Limit(RLIMIT_FSIZE, 0, 0);
#ifndef __SANITIZE_ADDRESS__
  Limit(RLIMIT_AS, limits.memory_bytes, limits.memory_bytes);
#endif
  dup2(output, STDOUT_FILENO);
}

// QProcess reports the error of a failed start as a text that ends with the system's message.
int ErrorNumber(const QString& error) {
  constexpr int kLargest = EHWPOISON;
  for (int number = 1; number <= kLargest; ++number) {
    if (error.endsWith(QStringLiteral(": ") + qt_error_string(number))) {
      return number;
    }
  }
  return EIO;
}

// The processor time of all children that have ended.
std::chrono::microseconds ChildrenProcessorTime() {
  rusage used{};
  getrusage(RUSAGE_CHILDREN, &used);
  return std::chrono::seconds(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
         std::chrono::microseconds(used.ru_utime.tv_usec + used.ru_stime.tv_usec);
}

// A child in a process group of its own. The destructor kills it, and waits for its end, before
// QProcess is destroyed.
class Child {
 public:
  explicit Child(const ProgramLimits& limits)
      : limits_(limits), processor_time_before_(ChildrenProcessorTime()) {
    // The receiver of the output may handle events, and QProcess may collect the child meanwhile.
    // The group must be killed at once: its number is free when its last member has ended.
    QObject::connect(&process_, &QProcess::finished, [this] { KillGroup(); });
  }
  ~Child() { End(); }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Returns 0, or the system's error number.
  [[nodiscard]] int Start(const LimitedProgram& program, int output) {
    QStringList arguments;
    for (const std::string& argument : program.arguments) {
      arguments << QString::fromStdString(argument);
    }
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    process_.setProgram(QString::fromStdString(program.path.string()));
    process_.setArguments(arguments);
    process_.setProcessEnvironment(environment);
    process_.setStandardInputFile(QProcess::nullDevice());
    process_.setStandardOutputFile(QProcess::nullDevice());
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.setChildProcessModifier([this, output] { PrepareChild(limits_, output); });
    process_.start(QIODevice::ReadOnly);
    if (!process_.waitForStarted(-1)) {
      return ErrorNumber(process_.errorString());
    }
    group_ = static_cast<pid_t>(process_.processId());
    return 0;
  }

  // Waits until it has ended, at most for the limit.
  [[nodiscard]] bool HasEnded(std::chrono::milliseconds limit = {}) {
    process_.waitForFinished(static_cast<int>(limit.count()));
    return process_.state() == QProcess::NotRunning;
  }

  // Kills it and what it has started.
  void End() {
    if (process_.state() != QProcess::NotRunning) {
      KillGroup();
      process_.waitForFinished(-1);
    }
  }

  // How it ended.
  [[nodiscard]] ProgramOutcome Outcome() const {
    const int code = process_.exitCode();  // or the signal
    if (process_.exitStatus() == QProcess::NormalExit) {
      return {.end = ProgramEnd::kExited, .code = code};
    }
    // The system kills one that ignores SIGXCPU a second later.
    const bool out_of_time =
        code == SIGXCPU ||
        (code == SIGKILL && ChildrenProcessorTime() - processor_time_before_ >= limits_.processor);
    return {.end = out_of_time ? ProgramEnd::kOutOfTime : ProgramEnd::kCrashed, .code = code};
  }

 private:
  void KillGroup() const {
    if (group_ > 0) {
      kill(-group_, SIGKILL);
    }
  }

  ProgramLimits limits_;
  std::chrono::microseconds processor_time_before_;
  pid_t group_ = 0;
  QProcess process_;
};

// Passes the output on until the child has ended. Returns why it must be ended earlier, if it must.
std::optional<ProgramEnd> PassOutput(Child& child, OutputPipe& output,
                                     std::chrono::milliseconds quiet_limit,
                                     const std::function<bool(std::string_view)>& take) {
  Clock::duration quiet{};  // without the time that `take` uses
  while (true) {
    const Clock::time_point start = Clock::now();
    // Asked before reading, so that nothing it wrote is missed.
    const bool ended =
        child.HasEnded(output.IsOpen() ? std::chrono::milliseconds{} : kPollInterval);
    const std::string_view chunk =
        output.Read(ended || !output.IsOpen() ? std::chrono::milliseconds{} : kPollInterval);
    quiet = chunk.empty() ? quiet + (Clock::now() - start) : Clock::duration::zero();
    if (chunk.empty() && ended) {
      return std::nullopt;
    }
    if (quiet > quiet_limit) {
      return ProgramEnd::kOutOfTime;
    }
    if (!take(chunk)) {
      return ProgramEnd::kStopped;
    }
  }
}

ProgramOutcome NotStarted(int error) { return {.end = ProgramEnd::kNotStarted, .code = error}; }

}  // namespace

ProgramOutcome ChildProcessRunner::Run(const LimitedProgram& program,
                                       const std::function<bool(std::string_view)>& take) {
  OutputPipe output;
  if (!output.IsOpen()) {
    return NotStarted(errno);
  }
  Child child(program.limits);
  if (const int error = child.Start(program, output.WriteEnd())) {
    return NotStarted(error);
  }
  output.CloseWriteEnd();
  const std::optional<ProgramEnd> ended_early =
      PassOutput(child, output, program.limits.quiet, take);
  if (ended_early) {
    child.End();
    return {.end = *ended_early, .code = 0};
  }
  return child.Outcome();
}

}  // namespace vrx
