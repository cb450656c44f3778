#pragma once

#include <string>
#include <string_view>

namespace vrx {

// The platform's per-user settings: section "Settings" under the application's title. Texts are
// UTF-8.
class UserSettings {
 public:
  virtual ~UserSettings() = default;

  // "" if the key is missing or cannot be read.
  [[nodiscard]] virtual std::string GetSetting(std::string_view key) const = 0;

  // Throws Error if the settings cannot be written.
  virtual void SaveSetting(std::string_view key, std::string_view value) = 0;
};

}  // namespace vrx
