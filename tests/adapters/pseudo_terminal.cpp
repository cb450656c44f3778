#include "adapters/pseudo_terminal.h"

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <poll.h>
#include <pty.h>
#include <unistd.h>

namespace vrx::testing {

PseudoTerminal::PseudoTerminal() {
  if (openpty(&far_end_, &near_end_, nullptr, nullptr, nullptr) != 0) {
    throw std::system_error(errno, std::generic_category(), "openpty");
  }
  device_ = ttyname(near_end_);
}

PseudoTerminal::~PseudoTerminal() {
  HangUp();
  close(near_end_);
}

void PseudoTerminal::Write(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t written = write(far_end_, bytes.data(), bytes.size());
    if (written < 0) {
      throw std::system_error(errno, std::generic_category(), "write to the far end");
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string PseudoTerminal::Read(int limit_ms) const {
  pollfd far{.fd = far_end_, .events = POLLIN, .revents = 0};
  if (poll(&far, 1, limit_ms) <= 0) {
    return {};
  }
  std::array<char, 4096> bytes{};
  const ssize_t count = read(far_end_, bytes.data(), bytes.size());
  return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : std::string();
}

void PseudoTerminal::HangUp() {
  if (far_end_ >= 0) {
    close(std::exchange(far_end_, -1));
  }
}

}  // namespace vrx::testing
