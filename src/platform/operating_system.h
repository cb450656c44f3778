#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

struct OsVersion {
  int platform = 0;  // 1 or 2: the classic desktop systems; 4: Unix
  int major = 0;
  int minor = 0;
};

enum class RegistryRoot { kLocalMachine, kCurrentUser };

struct RegistryValue {
  bool binary = false;
  std::string bytes;  // a text may have trailing NULs
};

// Services of the operating system besides files: its version, the registry, starting programs. A
// system without a registry has no keys.
class OperatingSystem {
 public:
  using RegistryKey = int;  // a handle, valid until CloseKey

  virtual ~OperatingSystem() = default;

  [[nodiscard]] virtual OsVersion Version() const = 0;

  [[nodiscard]] virtual std::optional<RegistryKey> OpenKey(RegistryRoot root,
                                                           std::string_view path) = 0;
  [[nodiscard]] virtual std::optional<RegistryValue> QueryValue(RegistryKey key,
                                                                std::string_view name) = 0;
  virtual bool CloseKey(RegistryKey key) = 0;

  // Starts a program in a normal window without waiting for it. Returns false if it cannot be
  // started. Another kind of system may start its own equivalent of the named program.
  [[nodiscard]] virtual bool StartProgram(const std::filesystem::path& program) = 0;

  // Opens a document in its associated program, which is started in the root folder. Returns a
  // value above 32 on success, else a code of SystemInfo::FindExecutable.
  [[nodiscard]] virtual int OpenDocument(const std::filesystem::path& document) = 0;
};

}  // namespace vrx
