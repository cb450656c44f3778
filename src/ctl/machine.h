#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "ctl/command_context.h"
#include "platform/calendar.h"
#include "platform/system_info.h"

namespace vrx {

// This machine as the tool's ports. Linux.

class LocalCalendar : public Calendar {
 public:
  Date Today() const override;
};

class LinuxSystemInfo : public SystemInfo {
 public:
  std::string WindowsDirectory() const override { return "/usr"; }
  std::string CommonAppDataFolder() const override;
  std::string ProgramDirectory() const override;
  // The tool opens no documents: none has a viewer here.
  int FindExecutable(const std::string& document, const std::string& directory,
                     std::string& viewer) const override;
};

// Needs a QCoreApplication for as long as the line lives.
std::unique_ptr<SerialLine> MakeSerialLine(const std::string& device,
                                           const std::filesystem::path& data_folder);

}  // namespace vrx
