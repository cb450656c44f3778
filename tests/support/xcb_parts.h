#pragma once

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace vrx::testing {

struct FreeXcbReply {
  void operator()(void* reply) const { std::free(reply); }  // NOLINT: it comes from malloc
};
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, FreeXcbReply>;

struct DisconnectXcb {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using XcbConnection = std::unique_ptr<xcb_connection_t, DisconnectXcb>;

// Connects and receives the events of the root and of the windows directly below it. Throws.
XcbConnection ConnectToDisplay(const char* name);

inline const xcb_screen_t& ScreenOf(xcb_connection_t& connection) {
  return *xcb_setup_roots_iterator(xcb_get_setup(&connection)).data;
}

}  // namespace vrx::testing
