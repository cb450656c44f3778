#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "platform/event_pump.h"

namespace vrx {

// What one start may hand over; more is refused.
inline constexpr std::size_t kMostHandedFiles = 100;
inline constexpr std::size_t kMostHandedBytes = 65536;

// The running program's end of the handover: receives the files of later starts through a socket
// that only its user can reach. A sender of another user, a message that is too long or has a
// relative path, and a sender that does not send are refused; the program never waits for one.
class FileReceiver {
 public:
  using Take = std::function<void(std::vector<std::filesystem::path>)>;

  // Replaces a socket that a killed program has left: the caller must be the only instance. Calls
  // `take` from the event loop. Throws Error if the socket cannot be made.
  FileReceiver(const std::filesystem::path& socket, Take take);
  ~FileReceiver();  // removes the socket
  FileReceiver(const FileReceiver&) = delete;
  FileReceiver& operator=(const FileReceiver&) = delete;

 private:
  struct Listening;
  std::unique_ptr<Listening> listening_;
};

// Hands absolute paths to the running program. Waits up to `limit` for it to listen and to answer,
// running events. Returns whether it has taken them.
[[nodiscard]] bool HandOverFiles(const std::filesystem::path& socket,
                                 const std::vector<std::filesystem::path>& paths, EventPump& pump,
                                 Milliseconds limit);

}  // namespace vrx
