#include "presenter/help.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "base/files.h"
#include "base/text.h"
#include "base/translation.h"
#include "presenter/command_states.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kDirectoryBufferLength = 250;
constexpr std::string_view kToolName = "MSINFO32.exe";

// A row without a major or minor number matches any.
struct NamedVersion {
  int platform;
  std::optional<int> major;
  std::optional<int> minor;
  std::string_view name;
};

// The first matching row is used. A version that depends on the product's name has no name here.
constexpr std::string_view kByProductName;
constexpr std::array kVersions = std::to_array<NamedVersion>({
    {0, {}, {}, "Win 3.1"},
    {1, {}, 0, "Win95"},
    {1, {}, 10, "Win98"},
    {1, {}, 90, "WinME"},
    {1, {}, {}, "Unknown Win32"},
    {2, 3, {}, "NT 3.51"},
    {2, 4, {}, "NT 4.0"},
    {2, 5, 0, "Win2000"},
    {2, 5, 1, "WinXP"},
    {2, 5, 2, "Win2003"},
    {2, 6, {}, kByProductName},
    {2, {}, {}, "Unknown Win32NT"},
    {3, {}, {}, "Win CE"},
    {4, {}, {}, "Unix"},
});

struct NamedProduct {
  std::string_view part;  // of the product's name, in upper case
  std::string_view name;
};

constexpr std::string_view kVista = "Vista";
constexpr std::string_view kWindows7 = "Windows 7";
constexpr std::array kProducts = std::to_array<NamedProduct>({
    {"VISTA", kVista},
    {"SERVER", "Win2008"},
    {"WINDOWS 7", kWindows7},
});

std::string_view NameOfProduct(std::string_view product) {
  const std::string upper = UpperCase(product);
  const auto* const found =
      std::find_if(kProducts.begin(), kProducts.end(),
                   [&](const NamedProduct& row) { return upper.find(row.part) != upper.npos; });
  return found == kProducts.end() ? "Unknown Win32NT6" : found->name;
}

std::string ProductName(OperatingSystem& os, Operator& op) {
  std::string product;
  const KeyValueResult result =
      GetKeyValue(os, RegistryRoot::kLocalMachine,
                  R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)", "ProductName", product);
  if (!result.closed) {
    op.ShowMessage({.title = "wmFunctions.GetOSVersion", .text = "Error closing key."});
  }
  return product;
}

std::string AsText(const RegistryValue& value) {
  if (!value.binary) {
    return value.bytes.substr(0, value.bytes.find('\0'));
  }
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text = "&h";
  const std::string backwards(value.bytes.rbegin(), value.bytes.rend());
  for (const char byte : backwards) {
    const auto code = static_cast<unsigned char>(byte);
    text += kDigits[code / kDigits.size()];
    text += kDigits[code % kDigits.size()];
  }
  return text;
}

// Two systems include the tool in the system's folder; on the others it is expected in the
// program's folder. Empty if the folder or the tool does not exist.
std::optional<fs::path> ToolPath(const SystemInfo& system, std::string_view os_name) {
  if (os_name != kWindows7 && os_name != kVista) {
    return fs::path(system.ProgramDirectory()) / kToolName;
  }
  std::error_code ignored;
  const fs::path folder = fs::path(GetTheWindowsDirectory(system)) / "System32";
  if (!fs::is_directory(folder, ignored) || !FileExists(folder / kToolName)) {
    return std::nullopt;
  }
  return folder / kToolName;
}

constexpr int kLargestFailure = 32;

// By the tabs of the main window.
constexpr std::array<std::string_view, kTabCount> kChapters = {
    "03-ingredients", "04-recipes", "05-pens",   "06-data-transfer",
    "09-history",     "08-import",  "11-export", "16-insight"};

std::string FileOfChapter(int tab) {
  return "manual/" + std::string(kChapters.at(static_cast<std::size_t>(tab))) + ".html";
}

std::string ViewerFailure(int code, const std::string& document) {
  switch (code) {
    case 0:
      return "Error, system out of memory or resources.";
    case 2:
      return "Error, '" + document + "' file not \r\n     found in the application directory.";
    case 3:
      return "Error, path does not exist.";
    case 11:
      return "Error, associated executable is incorrect for this file-type.";
    case 31:
      return "Error, no association exists.";
    default:
      return "Error, " + std::to_string(code);
  }
}

std::string_view SecondMessage(int code) {
  switch (code) {
    case 2:
      return "\r\n     You should run the install program again to \r\n     load the document.";
    case 31:
      return "\r\n     You should establish an 'association' for the files with extensions that "
             "will define the application that you want to use open this type of file. This is "
             "done through Windows. ";
    default:
      return {};
  }
}

}  // namespace

std::string GetTheWindowsDirectory(const SystemInfo& system) {
  std::string directory = system.WindowsDirectory();
  return directory.size() < kDirectoryBufferLength ? directory : std::string();
}

std::string GetOSVersion(OperatingSystem& os, Operator& op) {
  const OsVersion version = os.Version();
  const auto* const row =
      std::find_if(kVersions.begin(), kVersions.end(), [&](const NamedVersion& candidate) {
        return candidate.platform == version.platform &&
               candidate.major.value_or(version.major) == version.major &&
               candidate.minor.value_or(version.minor) == version.minor;
      });
  if (row == kVersions.end()) {
    return "Unknown";
  }
  return std::string(row->name == kByProductName ? NameOfProduct(ProductName(os, op)) : row->name);
}

KeyValueResult GetKeyValue(OperatingSystem& os, RegistryRoot root, std::string_view key_path,
                           std::string_view value_name, std::string& text) {
  const std::optional<OperatingSystem::RegistryKey> key = os.OpenKey(root, key_path);
  if (!key) {
    return {.read = false, .closed = true};
  }
  const std::optional<RegistryValue> value = os.QueryValue(*key, value_name);
  if (value) {
    text = AsText(*value);
  }
  return {.read = value.has_value(), .closed = os.CloseKey(*key)};
}

void StartSysInfo(const SystemInfo& system, OperatingSystem& os, Operator& op) {
  const std::optional<fs::path> tool = ToolPath(system, GetOSVersion(os, op));
  if (!tool || !os.StartProgram(*tool)) {
    op.ShowMessage({.title = {}, .text = "System Information Is Unavailable At This Time"});
  }
}

namespace {

void OpenInViewer(const std::filesystem::path& path, OperatingSystem& os, Operator& op) {
  if (os.OpenDocument(path) <= kLargestFailure) {
    op.ShowMessage({.icon = Icon::kWarning,
                    .title = "Error: File viewer",
                    .text = "Document viewer associated with this file failed.\r\n"
                            "Check the Windows association setting and that the viewer application "
                            "file actually exists."});
  }
}

}  // namespace

constexpr HelpDocument kUsersManual = {
    .file = "VRX2260_U.PDF",
    .kind = "the User's Manual",
    .no_viewer =
        "There is no Adobe Acrobat reader on the system for reading .PDF files.\r\n\r\n"
        "You can download a reader (free of charge) from the manufacturers web site at: "
        "https://okular.kde.org"};

constexpr HelpDocument kReadme = {
    .file = "Readme.TXT",
    .kind = "the Readme file",
    .no_viewer = "There is no associated application on the system for reading .TXT files."};

void ShowDocument(const HelpDocument& document, const SystemInfo& system, OperatingSystem& os,
                  Operator& op) {
  const std::string file(document.file);
  const std::filesystem::path path = std::filesystem::path(system.ProgramDirectory()) / file;
  if (!FileExists(path)) {
    ReportMissingDocument(file, op);
    return;
  }
  if (!HasDocumentViewer(system, file)) {
    op.ShowMessage({.icon = Icon::kWarning,
                    .title = "Error: No file viewer",
                    .text = "Cannot display " + std::string(document.kind) + ": " + file + "\r\n" +
                            std::string(document.no_viewer)});
    return;
  }
  OpenInViewer(path, os, op);
}

void ShowChapter(int tab, const SystemInfo& system, Operator& op,
                 const std::function<void(const std::filesystem::path&)>& view) {
  const std::string file = FileOfChapter(tab);
  const fs::path path = fs::path(system.ProgramDirectory()) / file;
  if (FileExists(path)) {
    view(path);
  } else {
    ReportMissingDocument(file, op);
  }
}

void ShowChapter(int tab, const SystemInfo& system, OperatingSystem& os, Operator& op,
                 const std::function<void(const std::filesystem::path&)>& view) {
  ShowChapter(tab, system, op, [&](const fs::path& path) {
    if (!HasDocumentViewer(system, FileOfChapter(tab)) ||
        os.OpenDocument(path) <= kLargestFailure) {
      view(path);
    }
  });
}

void OpenWrittenFile(const std::filesystem::path& path, OperatingSystem& os, Operator& op) {
  if (FileExists(path)) {
    OpenInViewer(path, os, op);
    return;
  }
  op.ShowMessage({.icon = Icon::kWarning,
                  .title = "Error: File not found",
                  .text = Tr("%1 was moved or deleted.", {path.string()})});
}

void ReportMissingDocument(std::string_view file, Operator& op) {
  op.ShowMessage({.icon = Icon::kWarning,
                  .title = "Error: File not found",
                  .text = std::string(file) +
                          " could not be found.\r\n"
                          "It must be located in the VRX-2260 application directory for automatic "
                          "viewing. You should run the install program again to load the "
                          "document."});
}

std::string_view ProgramVersion() { return VRX_VERSION; }

std::string FindDocumentViewer(const SystemInfo& system, const std::string& document,
                               std::string& message) {
  std::string viewer;
  const int code = system.FindExecutable(document, system.ProgramDirectory(), viewer);
  if (code > kLargestFailure) {
    message.clear();
    return TrimNulls(viewer);
  }
  message = SecondMessage(code);
  return ViewerFailure(code, document);
}

bool HasDocumentViewer(const SystemInfo& system, const std::string& document) {
  std::string viewer;
  return system.FindExecutable(document, system.ProgramDirectory(), viewer) > kLargestFailure;
}

}  // namespace vrx
