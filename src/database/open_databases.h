#pragma once

#include <filesystem>
#include <string>

#include "database/lock_wait.h"

namespace vrx {

// The databases open in the main window. A path is empty when none of its kind is open.
struct OpenDatabases {
  std::filesystem::path recipe_db_path = {};
  std::filesystem::path trans_db_path = {};
  std::string trans_db_uom = {};             // "LB", "KG", or what else the file holds
  std::string trans_db_read_only_note = {};  // why it may not be written, else empty
  LockWait lock_wait = kBusyTimeout;         // of the connections that are opened to them
};

}  // namespace vrx
