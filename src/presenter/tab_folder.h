#pragma once

#include "presenter/command_states.h"

namespace vrx {

// What the tab folder `tabMainFolder` asks of the window.
class TabFolderWindow {
 public:
  virtual ~TabFolderWindow() = default;

  // Brings a tab on show, also one that is off; its Click routine does not run from here.
  virtual void ShowTab(int tab) = 0;

  // The Click routine of the tab now on show; `previous` was on show before. May run events.
  virtual void PrepareTab(int tab, int previous) = 0;

  virtual PrintSources Printable() const = 0;
};

// The seven tabs as the program turns them. The window tells the operator's own clicks by Clicked.
class TabFolder {
 public:
  TabFolder(CommandStates& commands, TabFolderWindow& window)
      : commands_(commands), window_(window) {}

  // Turns the tab on, too. Throws Error for a tab that is not there.
  void SelectTab(int tab);

  // The operator has turned to the tab: its Click routine runs.
  void Clicked(int tab);

  // The tab chosen last; the window opens with tab 0.
  int TabOnShow() const { return tab_on_show_; }

  void UpdatePrintCommands(int tab) { commands_.UpdatePrintCommands(tab, window_.Printable()); }

 private:
  CommandStates& commands_;
  TabFolderWindow& window_;
  int tab_on_show_ = 0;
};

}  // namespace vrx
