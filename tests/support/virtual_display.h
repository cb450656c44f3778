#pragma once

#include <string>

#include <sys/types.h>

#include "support/xcb_parts.h"

namespace vrx::testing {

// An X display of its own without a monitor, by Xvfb. No window manager runs on it. Any number of
// them can run at once. The server ends with the object, and with the process. Throws when no
// display can be had.
class VirtualDisplay {
 public:
  explicit VirtualDisplay(int width = 1280, int height = 1024);
  ~VirtualDisplay();
  VirtualDisplay(const VirtualDisplay&) = delete;
  VirtualDisplay& operator=(const VirtualDisplay&) = delete;

  // The value for the variable DISPLAY.
  const std::string& Name() const { return name_; }

  // Returns as soon as a window with that title is mapped; throws when none is for long. Only looks
  // at windows that were mapped since the last call.
  void WaitForWindow(const std::string& title);

 private:
  std::string TitleOf(xcb_window_t window) const;
  void End();

  pid_t server_ = -1;
  std::string name_;
  XcbConnection connection_;
};

}  // namespace vrx::testing
