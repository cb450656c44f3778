#include "virtual_display.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vrx::bench {
namespace {

using Clock = std::chrono::steady_clock;
using Ms = std::chrono::milliseconds;

constexpr Ms kPatience{20'000};
constexpr std::uint32_t kLongestTitle = 64;  // in units of four bytes

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }  // NOLINT: it comes from malloc
};
template <typename Reply>
using ReplyOf = std::unique_ptr<Reply, FreeReply>;

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

// The server writes the number of its display, and a line end, once it is there.
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

}  // namespace

VirtualDisplay::VirtualDisplay() {
  std::array<int, 2> said{};
  if (pipe(said.data()) != 0) {
    throw std::runtime_error("no pipe can be made");
  }
  std::array<std::string, 8> words = {"Xvfb", "-displayfd",   "1",         "-screen",
                                      "0",    "1280x1024x24", "-nolisten", "tcp"};
  std::array<char*, words.size() + 1> arguments{};
  for (std::size_t i = 0; i < words.size(); ++i) {
    arguments.at(i) = words.at(i).data();
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, said[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, said[0]);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  const int failed =
      posix_spawnp(&server_, arguments.front(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(said[1]);
  if (failed != 0) {
    server_ = -1;
  }
  try {
    name_ = ":" + ReadNumber(said[0]);
    Connect();
  } catch (...) {
    close(said[0]);
    throw;
  }
  close(said[0]);
}

VirtualDisplay::~VirtualDisplay() {
  connection_.reset();
  if (server_ > 0) {
    kill(server_, SIGTERM);
    waitpid(server_, nullptr, 0);
  }
}

void VirtualDisplay::Connect() {
  connection_.reset(xcb_connect(name_.c_str(), nullptr));
  if (xcb_connection_has_error(connection_.get()) != 0) {
    throw std::runtime_error("no connection to the display " + name_);
  }
  const xcb_screen_t* const screen =
      xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
  const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection_.get(), screen->root, XCB_CW_EVENT_MASK, &events);
  xcb_flush(connection_.get());
}

void VirtualDisplay::WaitForWindow(const std::string& title) {
  const Clock::time_point end = Clock::now() + kPatience;
  do {
    while (const ReplyOf<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
      const bool mapped = (event->response_type & 0x7F) == XCB_MAP_NOTIFY;
      if (mapped &&
          TitleOf(reinterpret_cast<const xcb_map_notify_event_t&>(*event).window) == title) {
        return;
      }
    }
  } while (Readable(xcb_get_file_descriptor(connection_.get()), end));
  throw std::runtime_error("the window \"" + title + "\" does not come");
}

std::string VirtualDisplay::TitleOf(xcb_window_t window) const {
  const xcb_get_property_cookie_t asked = xcb_get_property(
      connection_.get(), 0, window, XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestTitle);
  const ReplyOf<xcb_get_property_reply_t> reply{
      xcb_get_property_reply(connection_.get(), asked, nullptr)};
  if (!reply) {
    return {};
  }
  const auto length = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
  return {static_cast<const char*>(xcb_get_property_value(reply.get())), length};
}

}  // namespace vrx::bench
