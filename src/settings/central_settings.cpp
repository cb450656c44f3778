#include "settings/central_settings.h"

namespace vrx {

CentralSettings ReadCentralSettings(const CPrivateINI& ini) {
  constexpr std::string_view kSection = "Central";
  CentralSettings settings;
  // A key that is not there leaves its text empty.
  static_cast<void>(ini.ReadKey(kSection, "Connection", settings.connection));
  static_cast<void>(ini.ReadKey(kSection, "Yard", settings.yard));
  return settings;
}

}  // namespace vrx
