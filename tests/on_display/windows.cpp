#include "on_display/windows.h"

#include <algorithm>
#include <array>

#include <poll.h>

namespace vrx::testing {
namespace {

using Clock = std::chrono::steady_clock;
using Ms = std::chrono::milliseconds;

constexpr std::uint32_t kLongestProperty = 1024;  // in units of four bytes
constexpr int kFromCloseBoxToEdge = 10;           // of the theme that openbox.xml names

}  // namespace

Windows::Windows(const std::string& display)
    : connection_(ConnectToDisplay(display.c_str())), root_(ScreenOf(*connection_).root) {}

bool Windows::Managed() const { return !Numbers(root_, "_NET_SUPPORTING_WM_CHECK").empty(); }

std::vector<xcb_window_t> Windows::All() const { return Numbers(root_, "_NET_CLIENT_LIST"); }

std::vector<std::string> Windows::Titles() const {
  std::vector<std::string> titles;
  for (const xcb_window_t window : All()) {
    titles.push_back(TitleOf(window));
  }
  return titles;
}

std::optional<xcb_window_t> Windows::Find(const std::string& title) const {
  for (const xcb_window_t window : All()) {
    if (IsTitle(TitleOf(window), title)) {
      return window;
    }
  }
  return std::nullopt;
}

xcb_window_t Windows::Active() const {
  const std::vector<std::uint32_t> active = Numbers(root_, "_NET_ACTIVE_WINDOW");
  return active.empty() ? XCB_NONE : active.front();
}

bool Windows::IsTitle(const std::string& actual, const std::string& title) {
  return actual == title || actual.starts_with(title + " - ");
}

std::string Windows::ActiveTitle() const {
  const xcb_window_t active = Active();
  return active == XCB_NONE ? "" : TitleOf(active);
}

std::string Windows::TitleOf(xcb_window_t window) const {
  const xcb_get_property_cookie_t asked =
      xcb_get_property(connection_.get(), 0, window, Atom("_NET_WM_NAME"),
                       XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestProperty);
  const XcbReply<xcb_get_property_reply_t> reply{
      xcb_get_property_reply(connection_.get(), asked, nullptr)};
  if (!reply) {
    return {};
  }
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

Rect Windows::FrameOf(xcb_window_t window) const {
  const XcbReply<xcb_get_geometry_reply_t> size{xcb_get_geometry_reply(
      connection_.get(), xcb_get_geometry(connection_.get(), window), nullptr)};
  const XcbReply<xcb_translate_coordinates_reply_t> place{xcb_translate_coordinates_reply(
      connection_.get(), xcb_translate_coordinates(connection_.get(), window, root_, 0, 0),
      nullptr)};
  const std::vector<std::uint32_t> frame = Numbers(window, "_NET_FRAME_EXTENTS");
  if (!size || !place || frame.size() < 4) {
    return {};
  }
  const auto left = static_cast<int>(frame[0]);
  const auto right = static_cast<int>(frame[1]);
  const auto top = static_cast<int>(frame[2]);
  const auto bottom = static_cast<int>(frame[3]);
  return {.x = place->dst_x - left,
          .y = place->dst_y - top,
          .width = size->width + left + right,
          .height = size->height + top + bottom};
}

Point Windows::CloseBoxOf(xcb_window_t window) const {
  const Rect frame = FrameOf(window);
  const std::vector<std::uint32_t> extents = Numbers(window, "_NET_FRAME_EXTENTS");
  const int title = extents.size() < 4 ? 0 : static_cast<int>(extents[2]);
  return {.x = frame.x + frame.width - kFromCloseBoxToEdge, .y = frame.y + title / 2};
}

bool Windows::Answers(xcb_window_t window, Ms limit) {
  const Clock::time_point end = Clock::now() + limit;
  xcb_client_message_event_t ping{};
  ping.response_type = XCB_CLIENT_MESSAGE;
  ping.format = 32;
  ping.window = window;
  ping.type = Atom("WM_PROTOCOLS");
  ping.data.data32[0] = Atom("_NET_WM_PING");
  ping.data.data32[1] = ++pings_;
  ping.data.data32[2] = window;
  xcb_send_event(connection_.get(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                 reinterpret_cast<const char*>(&ping));  // NOLINT: the protocol's own type
  xcb_flush(connection_.get());
  for (;;) {
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
      const auto& answer = reinterpret_cast<const xcb_client_message_event_t&>(*event);  // NOLINT
      if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE &&
          answer.data.data32[0] == ping.data.data32[0] && answer.data.data32[1] == pings_) {
        return true;
      }
    }
    const auto left = std::chrono::duration_cast<Ms>(end - Clock::now());
    if (left <= Ms{0} || xcb_connection_has_error(connection_.get()) != 0) {
      return false;
    }
    pollfd wanted{.fd = xcb_get_file_descriptor(connection_.get()), .events = POLLIN, .revents = 0};
    poll(&wanted, 1, static_cast<int>(left.count()));
  }
}

xcb_atom_t Windows::Atom(const std::string& name) const {
  const auto known = atoms_.find(name);
  if (known != atoms_.end()) {
    return known->second;
  }
  const xcb_intern_atom_cookie_t asked =
      xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
  const XcbReply<xcb_intern_atom_reply_t> reply{
      xcb_intern_atom_reply(connection_.get(), asked, nullptr)};
  const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  atoms_.emplace(name, atom);
  return atom;
}

std::vector<std::uint32_t> Windows::Numbers(xcb_window_t window,
                                            const std::string& property) const {
  const xcb_get_property_cookie_t asked = xcb_get_property(
      connection_.get(), 0, window, Atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestProperty);
  const XcbReply<xcb_get_property_reply_t> reply{
      xcb_get_property_reply(connection_.get(), asked, nullptr)};
  if (!reply || reply->format != 32) {
    return {};
  }
  const auto* const first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  const int bytes = xcb_get_property_value_length(reply.get());
  return {first, first + bytes / 4};
}

}  // namespace vrx::testing
