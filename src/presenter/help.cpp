#include "presenter/help.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <system_error>

#include "base/files.h"
#include "base/text.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kDirectoryBufferLength = 250;
constexpr std::string_view kToolName = "MSINFO32.exe";

// A row holds for every major or minor number that it does not give.
struct NamedVersion {
  int platform;
  std::optional<int> major;
  std::optional<int> minor;
  std::string_view name;
};

// The first row that fits counts. What the product's name decides has none.
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

// On the two systems that have it with them the tool is in the system's folder; on the others it
// is expected beside the program. Nothing where there is no such folder or tool.
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

}  // namespace vrx
