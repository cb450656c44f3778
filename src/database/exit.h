#pragma once

#include <cstdint>
#include <optional>

#include "database/lifecycle.h"
#include "database/recent_databases.h"
#include "frame/private_ini.h"
#include "platform/operator.h"
#include "platform/user_settings.h"

namespace vrx {

// Place and size of the main window in twips, 1440 to the inch.
struct WindowPlace {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
};

struct ExitPorts {
  Operator& op;
  UserSettings& store;
  const CPrivateINI& ini;
  PrivateINI& settings;
  RecentDatabases& recent;
  DatabaseLifecycle& databases;
};

// Ends the work of the program, whichever road out was taken: keeps the window's place, which is
// nothing for a minimised window, and the names of the databases, closes these, lets their
// connections go and writes the settings. Asks nothing; settings that cannot be written are told.
//
// False: a failure on the way; it has beeped, and the program stays up with what was done by then.
bool ExitSaveAndClose(const ExitPorts& ports, const std::optional<WindowPlace>& place);

}  // namespace vrx
