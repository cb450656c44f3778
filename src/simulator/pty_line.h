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

  int Get() const { return fd_; }
  bool Open() const { return fd_ >= 0; }
  void Close() {
    if (fd_ >= 0) {
      ::close(std::exchange(fd_, -1));
    }
  }

 private:
  int fd_ = -1;
};

// The signals by which a simulator is told something. From its making on they arrive here only, in
// the thread that made it and in threads started later.
class Signals {
 public:
  enum class Specified { kNothing, kStop, kSave };

  Signals();

  // For poll: readable when a signal waits.
  int Handle() const { return descriptor_.Get(); }

  // Takes the next one: SIGTERM, SIGINT and SIGHUP stop, SIGUSR1 saves. Does not wait.
  Specified Take();

 private:
  Descriptor descriptor_;
};

// A pseudo-terminal in raw mode whose other end clients open at a link. Clients come and go; the
// line stays. Throws std::system_error where the system refuses, its text for the user.
class PtyLine {
 public:
  // What clients did since it was last asked.
  struct Clients {
    bool came = false;
    bool went = false;
  };

  // Makes the line and its link. What stands at `link` is replaced only if it is a link to a
  // pseudo-terminal that is gone, as a killed simulator leaves it.
  explicit PtyLine(std::filesystem::path link);
  // Closes the line, which hangs it up for a client, and removes the link if it is still this
  // line's.
  ~PtyLine();
  PtyLine(const PtyLine&) = delete;
  PtyLine& operator=(const PtyLine&) = delete;

  // For poll: readable when a client has sent bytes, writable when the line takes some.
  int Handle() const { return master_.Get(); }

  // Neither of them waits. Read is empty when nothing is there; Write tells how many bytes the line
  // took.
  std::string Read();
  std::size_t Write(std::string_view bytes);

  // For poll: readable when clients came or went.
  int ClientsHandle() const { return watch_.Get(); }
  // Does not wait. A client that went, even a killed one, no longer has the line for itself alone.
  Clients TakeClients();

  // Bytes that wait for a client to read them, as far as the client's end shows them (at most
  // 4095).
  std::size_t Untaken() const;
  // Throws away all bytes that no client has read.
  void DiscardUntaken();

 private:
  std::filesystem::path link_;
  std::string name_;  // of the client's end
  Descriptor master_;
  Descriptor kept_;  // the client's end held open, so that the line outlives each client
  Descriptor watch_;
};

}  // namespace vrx::simulator
