#include "settings/settings.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "base/files.h"
#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "settings/ini_file.h"

namespace vrx {
namespace {

constexpr std::string_view kYes = "YES";
constexpr std::string_view kNo = "NO";
constexpr std::string_view kCentralSection = "Central";

enum class Kind { kText, kUnit, kYesNo, kTolerance, kWeight };

struct KeyRow {
  std::string_view section;
  std::string_view key;
  std::string_view default_text;
  Kind kind;
};

// Identifies the file; only its presence is checked, never its text.
constexpr KeyRow kTitle = {"Comments", "Title", "VRX-2260 Initialization File", Kind::kText};

// In the order of the file and of PrivateINI::Key.
constexpr std::array<KeyRow, PrivateINI::kSettingCount> kRows = {{
    {"Communications", "SerialPort", "2", Kind::kText},
    {"Communications", "KRMBaudRate", "19200", Kind::kText},
    {"Configuration", "SystemUnits", "LB", Kind::kUnit},
    {"Configuration", "AutoAbbreviate", kYes, Kind::kYesNo},
    {"Options", "ShowImportProgress", kYes, Kind::kYesNo},
    {"Options", "EnableBeeper", kYes, Kind::kYesNo},
    {"Options", "PrintCurrentRecipeOnly", kYes, Kind::kYesNo},
    {"Options", "EnablePrintText", kNo, Kind::kYesNo},
    {"Options", "BatchTargetWtIsRecTarget", kYes, Kind::kYesNo},
    {"Options", "AutoloadRecipeDB", kNo, Kind::kYesNo},
    {"Options", "AutoloadTransDB", kNo, Kind::kYesNo},
    {"Options", "PrintGridLines", kYes, Kind::kYesNo},
    {"Options", "DifferenceTolerance", "2", Kind::kTolerance},
    {"Insight", "WithinPercent", "2", Kind::kTolerance},
    {"Insight", "WithinWeight", "5", Kind::kWeight},
    {"Insight", "BeyondWeight", "62.5", Kind::kWeight},
    {"Insight", "ScaleDivision", "0", Kind::kWeight},
    {"Insight", "BalancePercent", "2", Kind::kTolerance},
    {"Insight", "BalanceWeight", "50", Kind::kWeight},
}};

std::optional<std::size_t> FindRow(std::string_view key) {
  const auto* const found = std::find_if(kRows.begin(), kRows.end(), [key](const KeyRow& row) {
    return EqualsIgnoringCase(row.key, key);
  });
  if (found == kRows.end()) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(found - kRows.begin());
}

constexpr double kMostWeight = 99999;

// Of a key with a number.
bool IsNumber(Kind kind, std::string_view text) {
  const std::optional<double> number = ParseNumber(text);
  return number && *number >= 0 && *number <= (kind == Kind::kWeight ? kMostWeight : 100);
}

bool HasNumber(Kind kind) { return kind == Kind::kTolerance || kind == Kind::kWeight; }

bool IsUnit(std::string_view text) { return text == "LB" || text == "KG"; }

bool Write(const CPrivateINI& ini, const KeyRow& row, std::string_view text, std::string& cause) {
  std::string failure;
  if (ini.WriteKey(row.section, row.key, text, &failure)) {
    return true;
  }
  if (cause.empty()) {
    cause = std::move(failure);
  }
  return false;
}

}  // namespace

CPrivateINI::CPrivateINI(std::filesystem::path ini_file_path, const SystemInfo& system,
                         Operator& op)
    : ini_file_path_(std::move(ini_file_path)) {
  const std::string directory = system.WindowsDirectory();
  if (directory.empty()) {
    op.ShowMessage({.icon = Icon::kCritical,
                    .title = "Fatal Error",
                    .text = "Could not determine path to Windows directory.\r\n"
                            "This program will now terminate."});
    throw Error(Tr("the operating system's directory is unknown"));
  }
  win_path_ = QX_RemoveNulls(directory);
}

std::string CPrivateINI::QX_RemoveNulls(std::string_view text) { return TrimNulls(text); }

std::string CPrivateINI::IniPath() const { return WinPath(); }

std::string CPrivateINI::WinPath() const { return win_path_; }

bool CPrivateINI::IniFileExists(std::string_view /*file_name*/) const {
  return !ReadProfileText(ini_file_path_, "comments", kTitle.key).empty();
}

bool CPrivateINI::ReadKey(std::string_view section, std::string_view key,
                          std::string& value) const {
  const std::string text = ReadProfileText(ini_file_path_, section, key);
  if (text.empty()) {
    return false;
  }
  value = QX_RemoveNulls(text);
  return true;
}

bool CPrivateINI::WriteKey(std::string_view section, std::string_view key, std::string_view value,
                           std::string* cause) const {
  try {
    WriteProfileText(ini_file_path_, section, key, value);
    return true;
  } catch (const FileError& failure) {
    if (cause != nullptr) {
      *cause = failure.what();
    }
    return false;
  }
}

PrivateINI::PrivateINI() {
  for (std::size_t key = 0; key < kRows.size(); ++key) {
    values_.at(key) = {std::string(kRows.at(key).default_text), kRows.at(key).default_text == kYes};
  }
}

bool PrivateINI::EnsureIniFile(const CPrivateINI& ini, Operator& op) {
  if (ini.IniFileExists(kIniFileName)) {
    return true;
  }
  std::string cause;
  bool written = Write(ini, kTitle, kTitle.default_text, cause);
  for (const KeyRow& row : kRows) {
    written = Write(ini, row, row.default_text, cause) && written;
  }
  if (!written) {
    op.ShowMessage({.icon = Icon::kCritical,
                    .title = "Configuration File Error",
                    .text = "The applications configuration file could not be found and a default "
                            "file could not be created.\r\n"
                            "This application will now terminate.",
                    .cause = cause});
    return false;
  }
  op.ShowMessage({.icon = Icon::kInformation,
                  .title = "No Configuration File",
                  .text = "The applications configuration file could not be found. \r\n\r\n"
                          "A default file called VRX-2260.INI has been created and placed in the "
                          "system configuration directory.\r\n\r\n"
                          "You may need to set serial communications and other configuration "
                          "parameters in the setup menu for proper operation."});
  return true;
}

bool PrivateINI::ReadIniSettings(const CPrivateINI& ini) {
  failure_cause_.clear();
  refused_unit_.clear();
  settings_read_ok_ = true;
  for (std::size_t key = 0; key < kRows.size(); ++key) {
    const KeyRow& row = kRows.at(key);
    std::string text;
    if (ini.ReadKey(row.section, row.key, text)) {
      if (row.kind == Kind::kUnit && !IsUnit(UpperCase(text))) {
        refused_unit_ = text;
      }
      Let(key, text);
    } else {
      Let(key, row.default_text);
      settings_read_ok_ = WriteValue(ini, key) && settings_read_ok_;
    }
    values_.at(key).on = values_.at(key).text == kYes;
  }
  return settings_read_ok_;
}

bool PrivateINI::WriteIniSettings(const CPrivateINI& ini) {
  failure_cause_.clear();
  bool written = true;
  for (std::size_t key = 0; key < kRows.size(); ++key) {
    Value& value = values_.at(key);
    if (kRows.at(key).kind == Kind::kYesNo) {
      value.text = value.on ? kYes : kNo;
    }
    written = WriteValue(ini, key) && written;
  }
  return written;
}

void PrivateINI::ReportRefusedUnit(Operator& op) const {
  if (refused_unit_.empty()) {
    return;
  }
  op.ShowMessage({.icon = Icon::kWarning,
                  .title = "INI File Error",
                  .text = "The setting SystemUnits of the applications INI file is " +
                          refused_unit_ +
                          "; expected LB or KG. The system works in LB. Choose the weight units in "
                          "the setup menu."});
}

std::array<std::string_view, PrivateINI::kSettingCount> PrivateINI::Keys() {
  std::array<std::string_view, kSettingCount> keys;
  std::transform(kRows.begin(), kRows.end(), keys.begin(),
                 [](const KeyRow& row) { return row.key; });
  return keys;
}

std::optional<std::string> PrivateINI::TextByKey(std::string_view key) const {
  const std::optional<std::size_t> row = FindRow(key);
  if (!row) {
    return std::nullopt;
  }
  const Value& value = values_.at(*row);
  return kRows.at(*row).kind == Kind::kYesNo ? std::string(value.on ? kYes : kNo) : value.text;
}

bool PrivateINI::LetByKey(std::string_view key, std::string_view text) {
  const std::optional<std::size_t> found = FindRow(key);
  if (!found) {
    return false;
  }
  const Kind kind = kRows.at(*found).kind;
  if (kind == Kind::kText) {
    Let(*found, text);
    return true;
  }
  if (HasNumber(kind)) {
    if (!IsNumber(kind, text)) {
      return false;
    }
    Let(*found, text);
    return true;
  }
  const std::string upper = UpperCase(text);
  if (kind == Kind::kUnit ? !IsUnit(upper) : upper != kYes && upper != kNo) {
    return false;
  }
  values_.at(*found) = {upper, upper == kYes};
  return true;
}

void PrivateINI::Let(std::size_t key, std::string_view text) {
  std::string& value = values_.at(key).text;
  const Kind kind = kRows.at(key).kind;
  if (HasNumber(kind)) {
    value = IsNumber(kind, text) ? TrimBlanks(text) : kRows.at(key).default_text;
    return;
  }
  if (kind != Kind::kUnit) {
    value = text;
    return;
  }
  const std::string upper = UpperCase(text);
  value = IsUnit(upper) ? upper : std::string(kRows.at(key).default_text);
}

double PrivateINI::DifferenceTolerance() const {
  return ParseNumber(Text(kDifferenceTolerance)).value();
}

bool PrivateINI::IsTolerance(std::string_view text) { return IsNumber(Kind::kTolerance, text); }

double PrivateINI::Limit(InsightLimit limit) const { return ParseNumber(LimitText(limit)).value(); }

bool PrivateINI::IsInsightLimit(InsightLimit limit, std::string_view text) {
  return IsNumber(kRows.at(KeyOf(limit)).kind, text);
}

std::string_view PrivateINI::UsualText(InsightLimit limit) {
  return kRows.at(KeyOf(limit)).default_text;
}

bool PrivateINI::WriteValue(const CPrivateINI& ini, std::size_t key) {
  return Write(ini, kRows.at(key), values_.at(key).text, failure_cause_);
}

void BeepIfEnabled(Operator& op, const PrivateINI& settings) {
  if (settings.EnableBeeperOn()) {
    op.Beep();
  }
}

CentralSettings ReadCentralSettings(const CPrivateINI& ini) {
  CentralSettings settings;
  std::string automatic;
  // A key that is not there leaves its text empty.
  static_cast<void>(ini.ReadKey(kCentralSection, "Connection", settings.connection));
  static_cast<void>(ini.ReadKey(kCentralSection, "Yard", settings.yard));
  static_cast<void>(ini.ReadKey(kCentralSection, "Automatic", automatic));
  settings.automatic = automatic == kYes;
  return settings;
}

bool WriteCentralSettings(const CPrivateINI& ini, const CentralSettings& before,
                          const CentralSettings& settings, std::string& cause) {
  const auto write = [&](std::string_view key, const std::string& old, const std::string& text) {
    return old == text || ini.WriteKey(kCentralSection, key, text, &cause);
  };
  const auto yes_or_no = [](bool on) { return std::string(on ? kYes : kNo); };
  return write("Connection", before.connection, settings.connection) &&
         write("Yard", before.yard, settings.yard) &&
         write("Automatic", yes_or_no(before.automatic), yes_or_no(settings.automatic));
}

}  // namespace vrx
