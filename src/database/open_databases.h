#pragma once

#include <filesystem>
#include <string>

#include "database/lock_wait.h"

namespace vrx {

// The databases that are open in the main window. The path of a kind without open file is empty.
struct OpenDatabases {
  std::filesystem::path recipe_db_path = {};
  std::filesystem::path trans_db_path = {};
  std::string trans_db_uom = {};             // "LB", "KG", or any other text of the file
  std::string trans_db_read_only_note = {};  // why it cannot be written, else empty
  LockWait lock_wait = kBusyTimeout;         // for further connections to them
};

}  // namespace vrx
