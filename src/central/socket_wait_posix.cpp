#include <poll.h>

#include "central/socket_wait.h"

namespace vrx {

void WaitForSocket(int socket, SocketEvent event, int milliseconds) {
  pollfd entry{.fd = socket, .events = POLLIN, .revents = 0};
  if (event == SocketEvent::kReadOrWrite) {
    entry.events |= POLLOUT;
  }
  static_cast<void>(poll(&entry, 1, milliseconds));
}

}  // namespace vrx
