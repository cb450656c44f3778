#pragma once

#include <vector>

#include "desktop/main_window/main_window_fixture.h"
#include "desktop/main_window/menus_and_toolbar.h"

namespace vrx::testing {

// The main window with every command enabled; a chosen one is only recorded.
class CommandsFixture : public MainWindowFixture {
 protected:
  void RecordChosen() {
    constexpr auto kFirst = static_cast<int>(MainCommand::kNewRecipeDatabase);
    constexpr auto kLast = static_cast<int>(MainCommand::kCalendar);
    for (int number = kFirst; number <= kLast; ++number) {
      const auto command = static_cast<MainCommand>(number);
      Window().SetHandler(command, [this, command] { chosen_.push_back(command); });
    }
    Window().Commands().EnableRecipeCommands();
    Window().Commands().EnableTransactionCommands();
    Window().Commands().TurnPrintCommands(true);
  }

  std::vector<MainCommand> chosen_;
};

}  // namespace vrx::testing
