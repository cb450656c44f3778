#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "platform/operating_system.h"
#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

// The system's directory; empty if there is none or it has more than 249 bytes.
std::string GetTheWindowsDirectory(const SystemInfo& system);

// The name of the operating system. Reports a registry key that cannot be closed, but still returns
// the name.
std::string GetOSVersion(OperatingSystem& os, Operator& op);

struct KeyValueResult {
  bool read = false;    // `text` holds the value; else it is untouched
  bool closed = false;  // the key was closed, or never opened
};

// One value of the registry as a text. A text value ends at its first NUL; a binary one becomes
// "&h" and its bytes in hexadecimal, last byte first, because numbers are stored little-endian.
KeyValueResult GetKeyValue(OperatingSystem& os, RegistryRoot root, std::string_view key_path,
                           std::string_view value_name, std::string& text);

// `cmdSysInfo`: starts the system information tool, or reports that it cannot.
void StartSysInfo(const SystemInfo& system, OperatingSystem& os, Operator& op);

// A document of the Help menu, in the program's directory.
struct HelpDocument {
  std::string_view file;
  std::string_view kind;       // "the Readme file"
  std::string_view no_viewer;  // message and remedy if no program opens its kind
};

extern const HelpDocument kUsersManual;  // `mnuHelpManual`
extern const HelpDocument kReadme;       // `mnuHelpReadme`

// Opens a document in the system's program for it. Reports failures.
void ShowDocument(const HelpDocument& document, const SystemInfo& system, OperatingSystem& os,
                  Operator& op);

// Opens the manual's chapter about a tab in the system's program for it, or in that of `view`,
// which gets its path, if there is none. Reports a missing chapter.
void ShowChapter(int tab, const SystemInfo& system, OperatingSystem& os, Operator& op,
                 const std::function<void(const std::filesystem::path&)>& view);

// Opens it with `view` whatever programs there are. Reports a missing chapter.
void ShowChapter(int tab, const SystemInfo& system, Operator& op,
                 const std::function<void(const std::filesystem::path&)>& view);

// Opens a file that the program has written in the system's program for it. Reports failures.
void OpenWrittenFile(const std::filesystem::path& path, OperatingSystem& os, Operator& op);

void ReportMissingDocument(std::string_view file, Operator& op);

// Shown by `ABOUT` below `lblPart`.
inline constexpr std::string_view kPartNumber = "70315-0042";

// The program's version as `ABOUT` and `SPLASH` show it: major, minor and revision with points
// between them.
std::string_view ProgramVersion();

// The kinds of documents for which a viewer is searched.
inline constexpr std::array<std::string_view, 3> kDocumentKinds = {".DOC", ".TXT", ".PDF"};

// The path of the program that opens a document of the program's directory, with `message` empty;
// or the text of the failure, with any further text in `message`.
std::string FindDocumentViewer(const SystemInfo& system, const std::string& document,
                               std::string& message);

// Whether there is a program that opens a document of any kind.
bool HasDocumentViewer(const SystemInfo& system, const std::string& document);

}  // namespace vrx
