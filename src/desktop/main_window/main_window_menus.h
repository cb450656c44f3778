#pragma once

#include <QMenuBar>
#include <span>
#include <string_view>

#include "desktop/main_window/command_actions.h"
#include "desktop/main_window/main_command.h"

namespace vrx {

// A row of the menus: a menu, an item, or a separator, which is what the caption "-" makes it.
struct MenuRow {
  std::string_view name;                     // of the control
  std::string_view caption_id;               // in the caption table
  std::string_view parent = {};              // the menu it stands in; empty in the menu bar
  MainCommand command = MainCommand::kNone;  // none for a menu with items of its own
  std::string_view shortcut = {};
};

// In the order in which they stand; a menu ahead of its items.
std::span<const MenuRow> MenuRows();

// Fills the menu bar and adds every item, and every menu that stands in another, to the actions.
// The texts are the ids until the caption pass of the form.
void BuildMenus(QMenuBar& menu_bar, CommandActions& actions);

}  // namespace vrx
