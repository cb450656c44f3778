#pragma once

#include <string_view>

#include "platform/operating_system.h"
#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

// A document of the Help menu, in the program's directory.
struct HelpDocument {
  std::string_view file;
  std::string_view kind;       // "the Readme file"
  std::string_view no_viewer;  // what to say, and to do, where no program reads its kind
};

extern const HelpDocument kUsersManual;  // `mnuHelpManual`
extern const HelpDocument kReadme;       // `mnuHelpReadme`

// Opens a document in the program that the system has for it. What stands in the way is told.
void ShowDocument(const HelpDocument& document, const SystemInfo& system, OperatingSystem& os,
                  Operator& op);

void ReportMissingDocument(std::string_view file, Operator& op);

}  // namespace vrx
