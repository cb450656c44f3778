#pragma once

#include <QAction>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/main_window/main_command.h"

namespace vrx {

// What stands in menus and toolbar for the commands of the main window, each under its name there.
// A command that nothing was set for yet cannot be chosen, whatever its state.
class CommandActions {
 public:
  using Handler = std::function<void()>;

  // The action outlives this.
  void Add(std::string_view name, MainCommand command, QAction& action);

  void SetHandler(MainCommand command, Handler handler);

  // On to begin with. A name that was not added is of no consequence.
  void Turn(std::string_view name, bool on);
  // The same for all of a command, wherever it stands.
  void Turn(MainCommand command, bool on);

  // Shows a command that is a setting as set or not, wherever it stands.
  void Tick(MainCommand command, bool on) const;

 private:
  struct Entry {
    std::string name;
    MainCommand command;
    QAction* action;
    bool on;
  };

  void Show(const Entry& entry) const;
  void Run(MainCommand command) const;

  std::vector<Entry> entries_;
  std::map<MainCommand, Handler> handlers_;
};

}  // namespace vrx
