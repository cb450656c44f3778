#include "presenter/tab_folder.h"

#include <utility>

namespace vrx {

void TabFolder::SelectTab(int tab) {
  commands_.TabOn(tab);  // refuses what is no tab before anything is shown
  window_.ShowTab(tab);
  commands_.TurnTab(tab, true);
  Clicked(tab);
  UpdatePrintCommands(tab);
}

void TabFolder::Clicked(int tab) {
  const int previous = std::exchange(tab_on_show_, tab);
  window_.PrepareTab(tab, previous);
}

}  // namespace vrx
