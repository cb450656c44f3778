#pragma once

#include <string>
#include <vector>

#include "on_display/windows.h"

namespace vrx::testing {

// The keyboard and the mouse of the display in the variable DISPLAY. For the program they look like
// real ones. Throws if there is no display.
class Input {
 public:
  // Keys as the X server names them, one after the other: "alt+f", "Return", "shift+Tab".
  void Keys(const std::vector<std::string>& keys) const;

  void Type(const std::string& text) const;

  // Moves the pointer to the place on the display and presses the left button, `times` in a row.
  void Click(Point place, int times = 1) const;

  void MoveTo(Point place) const;

 private:
  static void Run(const std::vector<std::string>& words);
};

}  // namespace vrx::testing
