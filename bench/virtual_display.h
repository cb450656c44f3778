#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <sys/types.h>
#include <xcb/xcb.h>

namespace vrx::bench {

// A display of its own without a screen to look at, by Xvfb, and who watches the windows on it. No
// window manager runs, so a window stands as soon as its program shows it. Throws when there is
// none to be had.
class VirtualDisplay {
 public:
  VirtualDisplay();
  ~VirtualDisplay();
  VirtualDisplay(const VirtualDisplay&) = delete;
  VirtualDisplay& operator=(const VirtualDisplay&) = delete;

  // As the variable DISPLAY names it.
  const std::string& Name() const { return name_; }

  // Returns as soon as a window with that title comes to stand; throws when none does for long.
  // Windows that stood before are not seen, those that came since the last call are.
  void WaitForWindow(const std::string& title);

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };

  void Connect();
  std::string TitleOf(xcb_window_t window) const;

  pid_t server_ = -1;
  std::string name_;
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
};

}  // namespace vrx::bench
