#include "adapters/signals.h"

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

// A signal handler can access nothing else.
volatile std::sig_atomic_t raised = 0;

extern "C" void RaiseFlag(int /*signal*/) { raised = 1; }

[[noreturn]] void Refuse(int error) {
  throw std::system_error(error, std::generic_category(), "cannot receive signals");
}

// A blocked signal reaches a descriptor even if it is ignored.
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

  [[nodiscard]] int Get() const { return fd_; }
  void Take() const {
    std::array<signalfd_siginfo, 4> taken{};
    while (read(fd_, taken.data(), sizeof taken) > 0) {
    }
  }

 private:
  int fd_ = -1;
};

}  // namespace

InterruptFlag::InterruptFlag() {
  raised = 0;
  struct sigaction raise {};
  raise.sa_handler = RaiseFlag;
  raise.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals.at(i), nullptr, &before_.at(i));
    if (kSignals.at(i) != SIGHUP || before_.at(i).sa_handler != SIG_IGN) {
      sigaction(kSignals.at(i), &raise, nullptr);
    }
  }
}

InterruptFlag::~InterruptFlag() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals.at(i), &before_.at(i), nullptr);
  }
}

bool InterruptFlag::Raised() const { return raised != 0; }

SignalBlock::SignalBlock() : signals_(StopSet()) {
  if (const int error = pthread_sigmask(SIG_BLOCK, &signals_, &before_); error != 0) {
    Refuse(error);
  }
}

SignalBlock::~SignalBlock() {
  const timespec at_once{};
  while (sigtimedwait(&signals_, nullptr, &at_once) > 0) {
  }
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

struct SignalHandler::Handling {
  SignalBlock block;
  SignalDescriptor descriptor{block.Signals()};
  QSocketNotifier notifier{descriptor.Get(), QSocketNotifier::Read};
};

SignalHandler::SignalHandler(std::function<void()> stop) : handling_(std::make_unique<Handling>()) {
  QObject::connect(&handling_->notifier, &QSocketNotifier::activated,
                   [this, stop = std::move(stop)] {
                     handling_->descriptor.Take();
                     stop();
                   });
}

SignalHandler::~SignalHandler() = default;

}  // namespace vrx
