#pragma once

#include <string>

namespace vrx {

// What the logic asks of the operating system about itself.
class SystemInfo {
 public:
  virtual ~SystemInfo() = default;

  // The operating system's own directory; empty when it cannot be told.
  virtual std::string WindowsDirectory() const = 0;

  // The platform's generic data location, common ground of all programs; empty on failure.
  virtual std::string CommonAppDataFolder() const = 0;

  // The folder the program was started from: support files lie there.
  virtual std::string ProgramDirectory() const = 0;

  // Looks up the program that opens `document` (a file name) of `directory`. Returns a code above
  // 32 and the program's path in `viewer`, or one of the told codes: 0 out of memory, 2 no such
  // file, 3 no such path, 11 bad executable, 31 no association.
  virtual int FindExecutable(const std::string& document, const std::string& directory,
                             std::string& viewer) const = 0;
};

}  // namespace vrx
