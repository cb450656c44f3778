#pragma once

#include <optional>

#include "settings/data_folder.h"
#include "settings/settings.h"

namespace vrx {

// What the program holds from its start to its end. Start fills it in the order of the members.
struct ApplicationState {
  Folder app_folder;               // AppFolder
  std::optional<CPrivateINI> ini;  // at AppFolder's IniFilePath
  PrivateINI settings;
};

}  // namespace vrx
