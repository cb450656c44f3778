#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/operating_system.h"

namespace vrx::testing {

// Says it is whatever the test says; keeps what was started and opened.
class FakeOperatingSystem : public OperatingSystem {
 public:
  OsVersion Version() const override { return version; }

  std::optional<RegistryKey> OpenKey(RegistryRoot root, std::string_view path) override {
    opened_root = root;
    opened_path = path;
    open_keys += value ? 1 : 0;
    return value ? std::optional(kKey) : std::nullopt;
  }
  std::optional<RegistryValue> QueryValue(RegistryKey key, std::string_view name) override {
    return key == kKey && name == value_name ? value : std::nullopt;
  }
  bool CloseKey(RegistryKey key) override {
    open_keys -= key == kKey ? 1 : 0;
    return closes;
  }

  bool StartProgram(const std::filesystem::path& program) override {
    started.push_back(program);
    return starts;
  }
  int OpenDocument(const std::filesystem::path& document) override {
    opened_documents.push_back(document);
    return open_code;
  }

  OsVersion version{4, 0, 0};
  std::string value_name = "ProductName";
  std::optional<RegistryValue> value;  // of the only key; without it there is no key
  bool closes = true;
  bool starts = true;
  int open_code = 33;

  RegistryRoot opened_root = RegistryRoot::kCurrentUser;
  std::string opened_path;
  int open_keys = 0;
  std::vector<std::filesystem::path> started;
  std::vector<std::filesystem::path> opened_documents;

 private:
  static constexpr RegistryKey kKey = 7;
};

}  // namespace vrx::testing
