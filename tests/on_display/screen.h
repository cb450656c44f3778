#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "on_display/windows.h"

namespace vrx::testing {

// A part of a widget: an entry of a menu, a tab, a caption of a header, a choice of a combo box.
struct Item {
  std::string text;
  bool enabled = false;
  bool checked = false;
  Rect place;
};

struct Cell {
  int row = 0;
  int column = 0;
  std::string text;
  bool current = false;
  Rect place;
};

struct Widget {
  std::string name;    // objectName
  std::string kind;    // the name of its class
  std::string text;    // of a label, a button, a field, a combo box
  std::string window;  // the title of its window
  bool behind_dialog = false;
  bool enabled = false;
  bool focus = false;
  bool checked = false;
  Rect place;
  std::vector<Item> items;
  std::vector<Cell> cells;  // the visible ones
  int menu_depth = -1;      // 0: a menu bar, 1: a menu, 2: a menu of a menu; -1: anything else
  int rows = 0;
  int columns = 0;

  // Captions are compared without their "&".
  const Item* FindItem(const std::string& caption) const;
  const Cell* FindCell(int row, int column) const;
};

// The visible widgets of the program at one moment, as the plugin `probe/` describes them.
class Screen {
 public:
  // Asks the program through the socket. A program that has ended or does not answer within the
  // limit has an empty screen.
  static Screen Of(const std::filesystem::path& socket,
                   std::chrono::milliseconds limit = std::chrono::seconds{10});

  bool Empty() const { return widgets_.empty(); }
  const std::vector<Widget>& Widgets() const { return widgets_; }

  // The visible widget of that name; null when there is none.
  const Widget* Find(const std::string& name) const;
  const Widget* Focus() const;

  // The visible item with that caption in any widget.
  const Item* FindItem(const std::string& caption) const;

  // The entry of an open menu: 0 is the menu bar, 1 the menu below it, 2 a menu of that.
  const Item* FindItemOfMenu(const std::string& caption, int depth = 1) const;

  // The visible button with that caption.
  const Widget* FindButton(const std::string& caption) const;

  // The text of the message box in front; empty when there is none.
  std::string BoxText() const;

 private:
  std::vector<Widget> widgets_;
};

}  // namespace vrx::testing
