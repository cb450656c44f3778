#pragma once

#include <string>

#include "platform/calendar.h"
#include "platform/local_time.h"
#include "platform/system_info.h"

namespace vrx {

// This machine as the programs' ports. Linux.

LocalTime LocalNow();

class LocalCalendar : public Calendar {
 public:
  Date Today() const override;
};

class LinuxSystemInfo : public SystemInfo {
 public:
  std::string WindowsDirectory() const override { return "/usr"; }
  std::string CommonAppDataFolder() const override;
  std::string ProgramDirectory() const override;
  int FindExecutable(const std::string& document, const std::string& directory,
                     std::string& viewer) const override;
};

}  // namespace vrx
