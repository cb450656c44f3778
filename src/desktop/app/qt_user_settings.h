#pragma once

#include <string>
#include <string_view>

#include "platform/user_settings.h"

namespace vrx {

// The platform's own store: on Linux an INI file below $XDG_CONFIG_HOME, on Windows the registry of
// the user.
class QtUserSettings : public UserSettings {
 public:
  std::string GetSetting(std::string_view key) const override;
  void SaveSetting(std::string_view key, std::string_view value) override;
};

}  // namespace vrx
