#pragma once

#include <string>
#include <string_view>

#include "platform/operating_system.h"
#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

// The system's own directory, of up to 249 bytes; empty for none or a longer one.
std::string GetTheWindowsDirectory(const SystemInfo& system);

// The name of the operating system. Tells the operator when the registry does not let go of a key,
// and gives the name all the same.
std::string GetOSVersion(OperatingSystem& os, Operator& op);

struct KeyValueResult {
  bool read = false;    // `text` holds the value; else it is untouched
  bool closed = false;  // the key was let go of, or never opened
};

// One value of the registry as a text. A text value is cut at its first NUL; a binary one becomes
// "&h" and its bytes in hexadecimal, the last one first, as numbers are stored.
KeyValueResult GetKeyValue(OperatingSystem& os, RegistryRoot root, std::string_view key_path,
                           std::string_view value_name, std::string& text);

// `cmdSysInfo`: starts the system information tool, or tells the operator that it cannot.
void StartSysInfo(const SystemInfo& system, OperatingSystem& os, Operator& op);

}  // namespace vrx
