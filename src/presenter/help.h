#pragma once

#include <array>
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

// What `ABOUT` shows under `lblPart`.
inline constexpr std::string_view kPartNumber = "70315-0042";

// The program's version as `ABOUT` and `SPLASH` show it: major, minor and revision with points
// between them.
std::string_view ProgramVersion();

// The kinds of document that a viewer is looked up for.
inline constexpr std::array<std::string_view, 3> kDocumentKinds = {".DOC", ".TXT", ".PDF"};

// The path of the program that opens a document of the program's directory, with `message` empty;
// or else the text of the failure, with a second text in `message` where there is more to say.
std::string FindDocumentViewer(const SystemInfo& system, const std::string& document,
                               std::string& message);

// The same look-up for a document of any kind: true if there is a program for it.
bool HasDocumentViewer(const SystemInfo& system, const std::string& document);

}  // namespace vrx
