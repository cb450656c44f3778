#pragma once

#include <filesystem>
#include <string>

namespace vrx {

// The databases open in the main window. A path is empty when none of its kind is open.
struct OpenDatabases {
  std::filesystem::path recipe_db_path;
  std::filesystem::path trans_db_path;
  std::string trans_db_uom;  // "LB" or "KG"
};

}  // namespace vrx
