#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/xcb_parts.h"

namespace vrx::testing {

struct Point {
  int x = 0;
  int y = 0;
};

struct Rect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  Point Center() const { return {x + width / 2, y + height / 2}; }
};

// The windows of a display as its window manager knows them. Places are pixels of the display.
class Windows {
 public:
  explicit Windows(const std::string& display);

  // Whether a window manager is running; until then there are no windows.
  bool Managed() const;

  // In the order in which they appeared. Menus and tool tips are not managed and not among them.
  std::vector<xcb_window_t> All() const;
  std::vector<std::string> Titles() const;
  std::optional<xcb_window_t> Find(const std::string& title) const;

  // Whether a window's title is that one. The names of open databases after " - " do not count.
  static bool IsTitle(const std::string& actual, const std::string& title);

  // The window that has the keyboard, and its title; empty when none has.
  xcb_window_t Active() const;
  std::string ActiveTitle() const;

  std::string TitleOf(xcb_window_t window) const;

  // The window with its frame, and the middle of its close box.
  Rect FrameOf(xcb_window_t window) const;
  Point CloseBoxOf(xcb_window_t window) const;

  // Whether the program answers a ping of the window manager's protocol for this window within the
  // limit. It answers on the thread of its windows, after all input that came before.
  bool Answers(xcb_window_t window, std::chrono::milliseconds limit);

 private:
  xcb_atom_t Atom(const std::string& name) const;
  std::vector<std::uint32_t> Numbers(xcb_window_t window, const std::string& property) const;

  XcbConnection connection_;
  xcb_window_t root_;
  mutable std::map<std::string, xcb_atom_t> atoms_;
  std::uint32_t pings_ = 0;
};

}  // namespace vrx::testing
