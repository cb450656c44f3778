#pragma once

#include <string>

#include "platform/calendar.h"
#include "platform/local_time.h"
#include "platform/operating_system.h"
#include "platform/system_info.h"

namespace vrx {

// This Linux machine, as the interfaces of platform/ describe one.

[[nodiscard]] LocalTime LocalNow();

class LocalCalendar : public Calendar {
 public:
  [[nodiscard]] LocalTime Now() const override;
};

class LinuxSystemInfo : public SystemInfo {
 public:
  [[nodiscard]] std::string WindowsDirectory() const override { return "/usr"; }
  [[nodiscard]] std::string CommonAppDataFolder() const override;
  [[nodiscard]] std::string ProgramDirectory() const override;
  [[nodiscard]] int FindExecutable(const std::string& document, const std::string& directory,
                                   std::string& viewer) const override;
};

// Of the Unix kind, without a registry.
class LinuxOperatingSystem : public OperatingSystem {
 public:
  [[nodiscard]] OsVersion Version() const override;  // of the kernel

  [[nodiscard]] std::optional<RegistryKey> OpenKey(RegistryRoot /*root*/,
                                                   std::string_view /*path*/) override {
    return std::nullopt;
  }
  [[nodiscard]] std::optional<RegistryValue> QueryValue(RegistryKey /*key*/,
                                                        std::string_view /*name*/) override {
    return std::nullopt;
  }
  bool CloseKey(RegistryKey /*key*/) override { return false; }

  // The classic system information tool, "MSINFO32.exe", is replaced by the one of the
  // distribution, wherever that is.
  [[nodiscard]] bool StartProgram(const std::filesystem::path& program) override;

  [[nodiscard]] int OpenDocument(const std::filesystem::path& document) override;
};

// Tells this computer from others: a fingerprint of the system's own ID, which is not to be shown
// to others. Empty if the system has none.
[[nodiscard]] std::string MachineId();

// Whether a person uses the standard stream, rather than a file or another program.
[[nodiscard]] bool InputIsTerminal();
[[nodiscard]] bool ErrorIsTerminal();

}  // namespace vrx
