#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

// What the system says it is. `platform` is 1 or 2 for the desktop kinds of the classic system, 4
// for one of the Unix kind.
struct OsVersion {
  int platform = 0;
  int major = 0;
  int minor = 0;
};

enum class RegistryRoot { kLocalMachine, kCurrentUser };

struct RegistryValue {
  bool binary = false;
  std::string bytes;  // a text may have NULs behind it
};

// What the logic asks of the operating system beyond files: what it is called, and to start other
// programs. A system without a registry has no keys.
class OperatingSystem {
 public:
  using RegistryKey = int;  // a handle, until it is closed

  virtual ~OperatingSystem() = default;

  virtual OsVersion Version() const = 0;

  virtual std::optional<RegistryKey> OpenKey(RegistryRoot root, std::string_view path) = 0;
  virtual std::optional<RegistryValue> QueryValue(RegistryKey key, std::string_view name) = 0;
  virtual bool CloseKey(RegistryKey key) = 0;

  // Starts a program in a normal window, and does not wait for it. False where it cannot be
  // started. A system of another kind may have a program of its own for the one that is named.
  virtual bool StartProgram(const std::filesystem::path& program) = 0;

  // Opens a document in the program that goes with it, started in the root folder. Above 32: done;
  // else one of the codes of SystemInfo::FindExecutable.
  virtual int OpenDocument(const std::filesystem::path& document) = 0;
};

}  // namespace vrx
