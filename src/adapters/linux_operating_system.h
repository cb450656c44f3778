#pragma once

#include "platform/operating_system.h"

namespace vrx {

// Linux as the OperatingSystem: of the Unix kind, without a registry.
class LinuxOperatingSystem : public OperatingSystem {
 public:
  OsVersion Version() const override;  // of the kernel

  std::optional<RegistryKey> OpenKey(RegistryRoot /*root*/, std::string_view /*path*/) override {
    return std::nullopt;
  }
  std::optional<RegistryValue> QueryValue(RegistryKey /*key*/, std::string_view /*name*/) override {
    return std::nullopt;
  }
  bool CloseKey(RegistryKey /*key*/) override { return false; }

  // For the classic system information tool, "MSINFO32.exe", it starts the one that the
  // distribution has, wherever that is.
  bool StartProgram(const std::filesystem::path& program) override;

  int OpenDocument(const std::filesystem::path& document) override;
};

}  // namespace vrx
