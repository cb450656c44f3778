#include "adapters/stop_signals.h"

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include <sys/signalfd.h>
#include <unistd.h>

namespace vrx {

namespace {

[[noreturn]] void Refuse() {
  throw std::system_error(errno, std::generic_category(), "cannot receive signals");
}

sigset_t StopSet() {
  sigset_t set{};
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  return set;
}

// The signals stay away from the other threads too: they are made later and inherit the mask.
class BlockedSignals {
 public:
  BlockedSignals() {
    const sigset_t set = StopSet();
    if (const int error = pthread_sigmask(SIG_BLOCK, &set, &before_); error != 0) {
      errno = error;
      Refuse();
    }
  }
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

 private:
  sigset_t before_{};
};

class SignalDescriptor {
 public:
  SignalDescriptor() {
    const sigset_t set = StopSet();
    fd_ = signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
    if (fd_ < 0) {
      Refuse();
    }
  }
  // What was not taken is no longer pending when the signals are let through again.
  ~SignalDescriptor() {
    Take();
    close(fd_);
  }
  SignalDescriptor(const SignalDescriptor&) = delete;
  SignalDescriptor& operator=(const SignalDescriptor&) = delete;

  int Get() const { return fd_; }
  void Take() const {
    std::array<signalfd_siginfo, 2> taken{};
    while (read(fd_, taken.data(), sizeof taken) > 0) {
    }
  }

 private:
  int fd_ = -1;
};

}  // namespace

struct StopSignals::Handling {
  BlockedSignals blocked;
  SignalDescriptor descriptor;
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
