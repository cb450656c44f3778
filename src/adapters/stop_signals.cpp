#include "adapters/stop_signals.h"

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <ctime>
#include <system_error>
#include <utility>

#include <sys/signalfd.h>
#include <unistd.h>

namespace vrx {

namespace {

[[noreturn]] void Refuse(int error) {
  throw std::system_error(error, std::generic_category(), "cannot receive signals");
}

// A blocked signal arrives at a descriptor even where it is ignored.
bool Ignored(int signal) {
  struct sigaction now {};
  return sigaction(signal, nullptr, &now) == 0 && now.sa_handler == SIG_IGN;
}

sigset_t StopSet() {
  sigset_t set{};
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  if (!Ignored(SIGHUP)) {
    sigaddset(&set, SIGHUP);
  }
  return set;
}

class SignalDescriptor {
 public:
  explicit SignalDescriptor(const sigset_t& set)
      : fd_(signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC)) {
    if (fd_ < 0) {
      Refuse(errno);
    }
  }
  ~SignalDescriptor() { close(fd_); }
  SignalDescriptor(const SignalDescriptor&) = delete;
  SignalDescriptor& operator=(const SignalDescriptor&) = delete;

  int Get() const { return fd_; }
  void Take() const {
    std::array<signalfd_siginfo, 4> taken{};
    while (read(fd_, taken.data(), sizeof taken) > 0) {
    }
  }

 private:
  int fd_ = -1;
};

}  // namespace

StopSignalBlock::StopSignalBlock() : signals_(StopSet()) {
  if (const int error = pthread_sigmask(SIG_BLOCK, &signals_, &before_); error != 0) {
    Refuse(error);
  }
}

StopSignalBlock::~StopSignalBlock() {
  const timespec at_once{};
  while (sigtimedwait(&signals_, nullptr, &at_once) > 0) {
  }
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

struct StopSignals::Handling {
  StopSignalBlock block;
  SignalDescriptor descriptor{block.Signals()};
  QSocketNotifier notifier{descriptor.Get(), QSocketNotifier::Read};
};

StopSignals::StopSignals(std::function<void()> stop) : handling_(std::make_unique<Handling>()) {
  QObject::connect(&handling_->notifier, &QSocketNotifier::activated,
                   [this, stop = std::move(stop)] {
                     handling_->descriptor.Take();
                     stop();
                   });
}

StopSignals::~StopSignals() = default;

}  // namespace vrx
