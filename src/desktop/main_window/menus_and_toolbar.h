#pragma once

#include <QToolBar>
#include <array>
#include <span>
#include <string_view>

#include "desktop/main_window/command_actions.h"
#include "desktop/main_window/main_command.h"

namespace vrx {

// An item of a button's list.
struct ToolItem {
  std::string_view text;
  MainCommand command = MainCommand::kNone;
};

struct ToolButton {
  std::string_view key;
  std::string_view tool_tip_id;  // in the caption table
  std::string_view label;        // below the icon
  std::string_view icon;
  MainCommand command = MainCommand::kNone;  // none for a drop-down: a click on it does nothing
  std::array<ToolItem, 2> items = {};        // of a drop-down
  bool begins_group = false;
};

std::span<const ToolButton> ToolButtons();

// The toolbar `tbToolBar`, with what it tells of the transfer at its right end: `lblXfr`,
// `lblTransfer` and `lblSystemUoM`. None of its buttons takes the focus.
class MainToolBar : public QToolBar {
  Q_OBJECT

 public:
  // Adds its buttons and their items to the actions.
  explicit MainToolBar(CommandActions& actions);

  // Gives the buttons the names that a screen reader tells; their tooltips, once the caption pass
  // has set them.
  void NameButtons();

  QWidget& Button(std::string_view key) const;

 private:
  void AddButton(const ToolButton& button, CommandActions& actions);
  void AddTransferOption();
};

}  // namespace vrx
