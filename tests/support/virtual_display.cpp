#include "support/virtual_display.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vrx::testing {
namespace {

using Clock = std::chrono::steady_clock;
using Ms = std::chrono::milliseconds;

constexpr Ms kPatience{30'000};
constexpr std::uint32_t kLongestTitle = 64;  // in units of four bytes

// Waits until the descriptor can be read; false when the end came first.
bool Readable(int descriptor, Clock::time_point end) {
  pollfd wanted{.fd = descriptor, .events = POLLIN, .revents = 0};
  for (;;) {
    const auto left = std::chrono::duration_cast<Ms>(end - Clock::now());
    const int ready = left > Ms{0} ? poll(&wanted, 1, static_cast<int>(left.count())) : 0;
    if (ready >= 0 || errno != EINTR) {
      return ready > 0;
    }
  }
}

// The server writes the number of its display and a line end once it accepts connections.
std::string ReadNumber(int descriptor) {
  std::string number;
  const Clock::time_point end = Clock::now() + kPatience;
  for (char digit = 0; Readable(descriptor, end) && read(descriptor, &digit, 1) == 1;) {
    if (digit == '\n') {
      return number;
    }
    number += digit;
  }
  throw std::runtime_error("Xvfb does not start; is it installed?");
}

// In a fresh child process: becomes the server, which writes its number to `out`. SIGTERM lets it
// remove its socket.
[[noreturn]] void BecomeServer(int out, const std::string& screen) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  std::vector<std::string> words = {"Xvfb", "-displayfd", "1",         "-screen",
                                    "0",    screen,       "-nolisten", "tcp"};
  std::vector<char*> arguments;
  for (std::string& word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  const int quiet = open("/dev/null", O_RDWR);  // NOLINT(cppcoreguidelines-pro-type-vararg)
  dup2(quiet, STDIN_FILENO);
  dup2(quiet, STDERR_FILENO);
  dup2(out, STDOUT_FILENO);
  execvp(arguments.front(), arguments.data());
  _exit(127);
}

}  // namespace

XcbConnection ConnectToDisplay(const char* name) {
  XcbConnection connection(xcb_connect(name, nullptr));
  if (xcb_connection_has_error(connection.get()) != 0) {
    throw std::runtime_error(std::string("no connection to the display ") + name);
  }
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection.get(), ScreenOf(*connection).root, XCB_CW_EVENT_MASK,
                               &events);
  xcb_flush(connection.get());
  return connection;
}

VirtualDisplay::VirtualDisplay(int width, int height) {
  const std::string screen = std::to_string(width) + 'x' + std::to_string(height) + "x24";
  std::array<int, 2> said{};
  if (pipe2(said.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe can be made");
  }
  server_ = fork();
  if (server_ == 0) {
    BecomeServer(said[1], screen);
  }
  close(said[1]);
  try {
    name_ = ":" + ReadNumber(said[0]);
    connection_ = ConnectToDisplay(name_.c_str());
  } catch (...) {
    close(said[0]);
    End();
    throw;
  }
  close(said[0]);
}

VirtualDisplay::~VirtualDisplay() { End(); }

void VirtualDisplay::End() {
  connection_.reset();
  if (server_ > 0) {
    kill(server_, SIGTERM);
    waitpid(server_, nullptr, 0);
  }
}

void VirtualDisplay::WaitForWindow(const std::string& title) {
  const Clock::time_point end = Clock::now() + kPatience;
  do {
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
      const bool mapped = (event->response_type & 0x7F) == XCB_MAP_NOTIFY;
      if (mapped &&
          TitleOf(reinterpret_cast<const xcb_map_notify_event_t&>(*event).window) == title) {
        return;
      }
    }
  } while (Readable(xcb_get_file_descriptor(connection_.get()), end));
  throw std::runtime_error("the window \"" + title + "\" does not appear");
}

std::string VirtualDisplay::TitleOf(xcb_window_t window) const {
  const xcb_get_property_cookie_t asked = xcb_get_property(
      connection_.get(), 0, window, XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestTitle);
  const XcbReply<xcb_get_property_reply_t> reply{
      xcb_get_property_reply(connection_.get(), asked, nullptr)};
  if (!reply) {
    return {};
  }
  const auto length = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
  return {static_cast<const char*>(xcb_get_property_value(reply.get())), length};
}

}  // namespace vrx::testing
