#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "platform/user_settings.h"

namespace vrx::testing {

// Per-user settings in memory.
class StoredUserSettings : public UserSettings {
 public:
  std::string GetSetting(std::string_view key) const override {
    const auto found = values.find(key);
    return found == values.end() ? std::string() : found->second;
  }
  void SaveSetting(std::string_view key, std::string_view value) override {
    on_save(key);
    values.insert_or_assign(std::string(key), std::string(value));
  }

  std::map<std::string, std::string, std::less<>> values;
  std::function<void(std::string_view key)> on_save = [](std::string_view /*key*/) {};  // may throw
};

}  // namespace vrx::testing
