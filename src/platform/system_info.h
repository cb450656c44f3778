#pragma once

#include <string>

namespace vrx {

// Directories and file associations of the operating system.
class SystemInfo {
 public:
  virtual ~SystemInfo() = default;

  // The operating system's own directory; empty if unknown.
  [[nodiscard]] virtual std::string WindowsDirectory() const = 0;

  // The data folder common to all programs and users; empty on failure.
  [[nodiscard]] virtual std::string CommonAppDataFolder() const = 0;

  // The folder of the program's executable, which also holds the support files.
  [[nodiscard]] virtual std::string ProgramDirectory() const = 0;

  // Finds the program that opens `document` (a file name) in `directory`. Returns a value above 32
  // and sets `viewer` to the program's path, or returns an error code: 0 out of memory, 2 file not
  // found, 3 path not found, 11 bad executable, 31 no association.
  [[nodiscard]] virtual int FindExecutable(const std::string& document,
                                           const std::string& directory,
                                           std::string& viewer) const = 0;
};

}  // namespace vrx
