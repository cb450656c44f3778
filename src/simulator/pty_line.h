#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include <unistd.h>

namespace vrx::simulator {

// Owns a file descriptor.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) {
      Close();
      fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int Get() const { return fd_; }
  [[nodiscard]] bool Open() const { return fd_ >= 0; }
  void Close() {
    if (fd_ >= 0) {
      ::close(std::exchange(fd_, -1));
    }
  }

 private:
  int fd_ = -1;
};

// The signals that control a simulator: SIGTERM, SIGINT and SIGHUP stop it, SIGUSR1 makes it save.
// The constructor blocks their usual effect in its thread and in threads started later.
class Signals {
 public:
  enum class Request { kNone, kStop, kSave };

  Signals();

  // For poll: readable when a signal is pending.
  [[nodiscard]] int Handle() const { return descriptor_.Get(); }

  // Takes the next pending signal; does not wait.
  [[nodiscard]] Request Take();

 private:
  Descriptor descriptor_;
};

// A pseudo-terminal in raw mode; clients open its other end through a link. It outlives its
// clients. Throws std::system_error with a text for the user.
class PtyLine {
 public:
  // Clients that opened or closed the line since the last call.
  struct Clients {
    bool came = false;
    bool went = false;
  };

  // Creates the line and its link. Replaces an existing file only if it is a link to a
  // pseudo-terminal that no longer exists, left by a killed simulator.
  explicit PtyLine(std::filesystem::path link);
  // Hangs up and removes the link if it still belongs to this line.
  ~PtyLine();
  PtyLine(const PtyLine&) = delete;
  PtyLine& operator=(const PtyLine&) = delete;

  // For poll: readable when a client has sent bytes, writable when the line accepts some.
  [[nodiscard]] int Handle() const { return master_.Get(); }

  // Neither waits. Read returns nothing if no bytes are pending; Write returns the number of bytes
  // that the line accepted.
  [[nodiscard]] std::string Read();
  std::size_t Write(std::string_view bytes);

  // For poll: readable when clients opened or closed the line.
  [[nodiscard]] int ClientsHandle() const { return watch_.Get(); }
  // Does not wait. Ends the exclusive use of a client that closed the line or was killed.
  Clients TakeClients();

  // The number of bytes that no client has read, as far as the client's end shows them (at most
  // 4095).
  [[nodiscard]] std::size_t Untaken() const;
  // Discards all bytes that no client has read.
  void DiscardUntaken();

 private:
  std::filesystem::path link_;
  std::string name_;  // of the client's end
  Descriptor master_;
  Descriptor kept_;  // keeps the client's end open, so that the line outlives each client
  Descriptor watch_;
};

}  // namespace vrx::simulator
