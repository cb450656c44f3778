#pragma once

#include <string>
#include <string_view>

namespace vrx {

// The platform's per-user store of small texts: the section "Settings" under the application's
// title. Texts are UTF-8.
class UserSettings {
 public:
  virtual ~UserSettings() = default;

  // "" for a key that is not there, and for one that cannot be read.
  virtual std::string GetSetting(std::string_view key) const = 0;

  // Throws Error when the store cannot be written.
  virtual void SaveSetting(std::string_view key, std::string_view value) = 0;
};

}  // namespace vrx
