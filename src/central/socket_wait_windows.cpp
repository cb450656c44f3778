#include <winsock2.h>

#include "central/socket_wait.h"

namespace vrx {

void WaitForSocket(int socket, SocketEvent event, int milliseconds) {
  WSAPOLLFD entry{};
  entry.fd = static_cast<SOCKET>(socket);
  entry.events = POLLRDNORM;
  if (event == SocketEvent::kReadOrWrite) {
    entry.events |= POLLWRNORM;
  }
  WSAPoll(&entry, 1, milliseconds);
}

}  // namespace vrx
