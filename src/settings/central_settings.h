#pragma once

#include <string>

#include "settings/settings.h"

namespace vrx {

// Section [Central] of the INI file: where the central database is. Without a connection nothing of
// it starts. A missing key stays missing.
struct CentralSettings {
  std::string connection;  // libpq's connection string, never with a password
  std::string yard;        // name of this yard
};

[[nodiscard]] CentralSettings ReadCentralSettings(const CPrivateINI& ini);

}  // namespace vrx
