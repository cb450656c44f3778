#include "simulator/pty_line.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <termios.h>

namespace vrx::simulator {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kPtyFolder = "/dev/pts/";
constexpr std::size_t kReadSize = 4096;

[[noreturn]] void Fail(int error, const std::string& what) {
  throw std::system_error(error, std::generic_category(), what);
}

Descriptor Checked(int fd, const std::string& what) {
  if (fd < 0) {
    Fail(errno, what);
  }
  return Descriptor(fd);
}

Descriptor OpenMaster() {
  Descriptor master = Checked(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK),
                              "cannot make a pseudo-terminal");
  if (::grantpt(master.Get()) != 0 || ::unlockpt(master.Get()) != 0) {
    Fail(errno, "cannot make a pseudo-terminal");
  }
  return master;
}

std::string NameOf(const Descriptor& master) {
  std::array<char, 64> name{};
  if (const int error = ::ptsname_r(master.Get(), name.data(), name.size()); error != 0) {
    Fail(error, "cannot name the pseudo-terminal");
  }
  return name.data();
}

void MakeRaw(const Descriptor& terminal) {
  termios settings{};
  if (::tcgetattr(terminal.Get(), &settings) != 0) {
    Fail(errno, "cannot read the settings of the pseudo-terminal");
  }
  ::cfmakeraw(&settings);
  if (::tcsetattr(terminal.Get(), TCSANOW, &settings) != 0) {
    Fail(errno, "cannot set the pseudo-terminal to raw mode");
  }
}

// Called after the line has opened its own end, which must not be treated as a client.
Descriptor Watch(const std::string& name) {
  Descriptor watch =
      Checked(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC), "cannot watch the pseudo-terminal");
  if (::inotify_add_watch(watch.Get(), name.c_str(), IN_OPEN | IN_CLOSE) < 0) {
    Fail(errno, "cannot watch the pseudo-terminal");
  }
  return watch;
}

// Whether a link to `target` was left by a killed simulator: its pseudo-terminal no longer exists,
// or its number was reused for this one. A number reused by another program looks like a running
// simulator and is not treated as stale.
bool IsStale(const std::string& target, const std::string& own_name) {
  if (target == own_name) {
    return true;
  }
  const std::string_view number = std::string_view(target).substr(
      std::min(target.size(), target.starts_with(kPtyFolder) ? kPtyFolder.size() : target.size()));
  const bool is_pty = !number.empty() && std::all_of(number.begin(), number.end(), [](char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
  });
  return is_pty && ::access(target.c_str(), F_OK) != 0 && errno == ENOENT;
}

void MakeLink(const fs::path& link, const std::string& name) {
  if (::symlink(name.c_str(), link.c_str()) == 0) {
    return;
  }
  const std::string what = "cannot make the link " + link.string();
  if (errno != EEXIST) {
    Fail(errno, what);
  }
  std::error_code none;
  const fs::path target = fs::read_symlink(link, none);
  if (none) {
    Fail(EEXIST, what + ": another file is there and is left unchanged");
  }
  if (!IsStale(target.string(), name)) {
    Fail(EEXIST, what + ": a link to " + target.string() + " is there and is left unchanged");
  }
  if (::unlink(link.c_str()) != 0 || ::symlink(name.c_str(), link.c_str()) != 0) {
    Fail(errno, what);
  }
}

}  // namespace

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

Signals::Request Signals::Take() {
  signalfd_siginfo info{};
  if (::read(descriptor_.Get(), &info, sizeof info) != sizeof info) {
    return Request::kNone;
  }
  return info.ssi_signo == SIGUSR1 ? Request::kSave : Request::kStop;
}

PtyLine::PtyLine(fs::path link) : link_(std::move(link)), master_(OpenMaster()) {
  name_ = NameOf(master_);
  kept_ = Checked(::open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC), "cannot open " + name_);
  MakeRaw(kept_);
  watch_ = Watch(name_);
  MakeLink(link_, name_);
}

PtyLine::~PtyLine() {
  std::error_code gone;
  if (fs::read_symlink(link_, gone) == name_ && !gone) {
    fs::remove(link_, gone);
  }
}

std::string PtyLine::Read() {
  std::string bytes(kReadSize, '\0');
  const ssize_t count = ::read(master_.Get(), bytes.data(), bytes.size());
  if (count < 0 && errno != EAGAIN && errno != EINTR) {
    Fail(errno, "cannot read from the line");
  }
  bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return bytes;
}

std::size_t PtyLine::Write(std::string_view bytes) {
  const ssize_t count = ::write(master_.Get(), bytes.data(), bytes.size());
  if (count < 0 && errno != EAGAIN && errno != EINTR) {
    Fail(errno, "cannot write to the line");
  }
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

PtyLine::Clients PtyLine::TakeClients() {
  Clients clients;
  inotify_event event{};  // a watch on a file, so the event has no name after it
  while (::read(watch_.Get(), &event, sizeof event) == sizeof event) {
    clients.came = clients.came || (event.mask & IN_OPEN) != 0;
    clients.went = clients.went || (event.mask & IN_CLOSE) != 0;
  }
  if (clients.went && ::ioctl(kept_.Get(), TIOCNXCL) != 0) {
    Fail(errno, "cannot open the line to everybody");
  }
  return clients;
}

std::size_t PtyLine::Untaken() const {
  int count = 0;
  if (::ioctl(kept_.Get(), FIONREAD, &count) != 0) {
    Fail(errno, "cannot count the bytes on the line");
  }
  return static_cast<std::size_t>(std::max(count, 0));
}

void PtyLine::DiscardUntaken() {
  // Bytes that have left the master, and bytes at the client's end.
  if (::tcflush(master_.Get(), TCOFLUSH) != 0 || ::tcflush(kept_.Get(), TCIFLUSH) != 0) {
    Fail(errno, "cannot discard the bytes on the line");
  }
}

}  // namespace vrx::simulator
