#pragma once

namespace vrx {

enum class SocketEvent { kRead, kReadOrWrite };

// Waits until the socket has such an event or an error, at most that long; a signal may end the
// wait earlier.
void WaitForSocket(int socket, SocketEvent event, int milliseconds);

}  // namespace vrx
