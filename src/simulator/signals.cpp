#include "simulator/signals.h"

#include <cerrno>
#include <csignal>
#include <system_error>

#include <sys/signalfd.h>

namespace vrx::simulator {

Signals::Signals() {
  sigset_t signals{};
  sigemptyset(&signals);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGUSR1}) {
    sigaddset(&signals, signal);
  }
  if (const int error = ::pthread_sigmask(SIG_BLOCK, &signals, nullptr); error != 0) {
    throw std::system_error(error, std::generic_category(), "cannot block signals");
  }
  descriptor_ = Descriptor(::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC));
  if (!descriptor_.Open()) {
    throw std::system_error(errno, std::generic_category(), "cannot receive signals");
  }
}

Signals::Told Signals::Take() {
  signalfd_siginfo info{};
  if (::read(descriptor_.Get(), &info, sizeof info) != sizeof info) {
    return Told::kNothing;
  }
  return info.ssi_signo == SIGUSR1 ? Told::kSave : Told::kStop;
}

}  // namespace vrx::simulator
