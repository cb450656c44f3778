#include "adapters/file_handover.h"

#include <QObject>
#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "base/error.h"
#include "base/translation.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

// A message is one packet: the paths, each with a NUL at its end. So is the answer.
constexpr std::string_view kTaken = "taken";
constexpr std::string_view kRefused = "refused";

constexpr std::size_t kMostSenders = 8;  // that have connected and not sent yet
constexpr Milliseconds kRetry{50};

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~Descriptor() {
    if (fd_ >= 0) {
      close(fd_);
    }
  }

  [[nodiscard]] int Get() const { return fd_; }

 private:
  int fd_;
};

Descriptor NewSocket() {
  return Descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

// Nothing for a path that is too long for a socket.
std::optional<sockaddr_un> AddressOf(const fs::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string& name = path.native();
  if (name.empty() || name.size() >= sizeof address.sun_path) {
    return std::nullopt;
  }
  std::memcpy(static_cast<char*>(address.sun_path), name.data(), name.size());
  return address;
}

const sockaddr* Generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);  // NOLINT: the interface of the system
}

bool IsOurUser(int fd) {
  ucred peer{};
  socklen_t size = sizeof peer;
  return getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
}

bool SendPacket(int fd, std::string_view packet) {
  const ssize_t sent = send(fd, packet.data(), packet.size(), MSG_NOSIGNAL);
  return sent >= 0 && static_cast<std::size_t>(sent) == packet.size();
}

std::string PacketOf(const std::vector<fs::path>& paths) {
  std::string packet;
  for (const fs::path& path : paths) {
    packet += path.native();
    packet += '\0';
  }
  return packet;
}

// Empty if any part is not an absolute path.
std::vector<fs::path> PathsIn(std::string_view packet) {
  std::vector<fs::path> paths;
  while (!packet.empty()) {
    const std::size_t end = packet.find('\0');
    const fs::path path(packet.substr(0, end));
    if (end == std::string_view::npos || !path.is_absolute() || paths.size() == kMostHandedFiles) {
      return {};
    }
    paths.push_back(path);
    packet.remove_prefix(end + 1);
  }
  return paths;
}

// Only a socket is removed: anything else there is not ours.
void RemoveSocket(const fs::path& path) {
  struct stat found {};
  if (lstat(path.c_str(), &found) == 0 && S_ISSOCK(found.st_mode)) {
    unlink(path.c_str());
  }
}

Descriptor Listen(const fs::path& path) {
  const std::optional<sockaddr_un> address = AddressOf(path);
  Descriptor listener = NewSocket();
  RemoveSocket(path);
  if (!address || listener.Get() < 0 ||
      bind(listener.Get(), Generic(*address), sizeof *address) != 0 ||
      chmod(path.c_str(), S_IRUSR | S_IWUSR) != 0 ||
      listen(listener.Get(), static_cast<int>(kMostSenders)) != 0) {
    throw Error(Tr("cannot listen at %1: %2",
                   {path.string(), address ? std::generic_category().message(errno)
                                           : Tr("the path is too long")}));
  }
  return listener;
}

}  // namespace

struct FileReceiver::Listening {
  struct Sender {
    explicit Sender(Descriptor connected)
        : fd(std::move(connected)), notifier(fd.Get(), QSocketNotifier::Read) {}
    Descriptor fd;
    QSocketNotifier notifier;
  };

  Listening(const fs::path& at, Take take_files)
      : socket(at), fd(Listen(at)), take(std::move(take_files)) {
    QObject::connect(&notifier, &QSocketNotifier::activated, [this] { Accept(); });
  }

  void Accept() {
    Descriptor connected(accept4(fd.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (connected.Get() < 0 || !IsOurUser(connected.Get())) {
      return;
    }
    if (senders.size() == kMostSenders) {
      senders.pop_front();  // it has not sent anything for the longest time
    }
    Sender* const sender =
        senders.emplace_back(std::make_unique<Sender>(std::move(connected))).get();
    QObject::connect(&sender->notifier, &QSocketNotifier::activated,
                     [this, sender] { Receive(*sender); });
  }

  // The notifier that has called this is deleted after the event.
  void Receive(Sender& sender) {
    std::string packet(kMostHandedBytes, '\0');
    const ssize_t length =
        recv(sender.fd.Get(), packet.data(), packet.size(), MSG_TRUNC);  // the true length
    if (length < 0 && errno == EAGAIN) {
      return;
    }
    const bool fits = length > 0 && static_cast<std::size_t>(length) <= packet.size();
    packet.resize(fits ? static_cast<std::size_t>(length) : 0);
    std::vector<fs::path> paths = PathsIn(packet);
    SendPacket(sender.fd.Get(), paths.empty() ? kRefused : kTaken);
    sender.notifier.setEnabled(false);
    done.clear();
    const auto ended =
        std::ranges::find_if(senders, [&](const auto& other) { return other.get() == &sender; });
    done.push_back(std::move(*ended));
    senders.erase(ended);
    if (!paths.empty()) {
      take(std::move(paths));
    }
  }

  fs::path socket;
  Descriptor fd;
  QSocketNotifier notifier{fd.Get(), QSocketNotifier::Read};
  Take take;
  std::deque<std::unique_ptr<Sender>> senders;
  std::vector<std::unique_ptr<Sender>> done;  // its notifier may still be on the stack
};

FileReceiver::FileReceiver(const fs::path& socket, Take take)
    : listening_(std::make_unique<Listening>(socket, std::move(take))) {}

FileReceiver::~FileReceiver() { RemoveSocket(listening_->socket); }

namespace {

// Returns a socket without a descriptor if nobody listens.
Descriptor ConnectTo(const sockaddr_un& address) {
  Descriptor connected = NewSocket();
  if (connected.Get() >= 0 && connect(connected.Get(), Generic(address), sizeof address) == 0 &&
      IsOurUser(connected.Get())) {
    return connected;
  }
  return Descriptor(-1);
}

// Nothing while there is no answer; empty at the end of the connection.
std::optional<std::string> ReadAnswer(int fd) {
  std::array<char, 16> answer{};
  const ssize_t length = recv(fd, answer.data(), answer.size(), 0);
  if (length < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) {
    return std::nullopt;
  }
  return std::string(answer.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
}

}  // namespace

bool HandOverFiles(const fs::path& socket, const std::vector<fs::path>& paths, EventPump& pump,
                   Milliseconds limit) {
  const std::optional<sockaddr_un> address = AddressOf(socket);
  const std::string packet = PacketOf(paths);
  if (!address || packet.size() > kMostHandedBytes) {
    return false;
  }
  Descriptor connected(-1);
  for (const Milliseconds end = pump.Now() + limit; pump.Now() < end && !pump.Closing();
       pump.Pump(kRetry)) {
    if (connected.Get() < 0) {
      connected = ConnectTo(*address);
      if (connected.Get() < 0) {
        continue;
      }
      if (!SendPacket(connected.Get(), packet)) {
        return false;
      }
    }
    if (const std::optional<std::string> answer = ReadAnswer(connected.Get())) {
      return *answer == kTaken;
    }
  }
  return false;
}

}  // namespace vrx
