#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

inline constexpr std::string_view kIniFileName = "VRX-2260.INI";

// Reads and writes single keys of the INI file: the classic private-profile format, section and key
// names without regard to case, values of at most 1023 characters, empty values counting as
// missing.
class CPrivateINI {
 public:
  // Throws Error when the system's own directory cannot be told (after the operator was told).
  CPrivateINI(std::filesystem::path ini_file_path, const SystemInfo& system, Operator& op);

  static std::string QX_RemoveNulls(std::string_view text);
  std::string IniPath() const;  // the system's directory, as WinPath: not the INI file's path
  std::string WinPath() const;

  // True if key "Title" of section "comments" has a value; the argument is not looked at.
  bool IniFileExists(std::string_view file_name) const;

  // False for a missing or empty key; `value` is then untouched.
  bool ReadKey(std::string_view section, std::string_view key, std::string& value) const;

  // Makes file, section and key as needed; all else in the file stays as it was. On failure false,
  // the file as it was, and `cause` (when given) says what lies behind.
  bool WriteKey(std::string_view section, std::string_view key, std::string_view value,
                std::string* cause = nullptr) const;

 private:
  std::filesystem::path ini_file_path_;
  std::string win_path_;
};

// The settings in memory: read at start, changed by the program, written at exit. A YES/NO key has
// a text and a boolean. Reading sets the boolean, true exactly when the text is "YES"; from then on
// the program changes and asks the boolean alone, and writing makes the text follow it.
class PrivateINI {
 public:
  PrivateINI();  // every setting at its default

  // Makes sure that the file exists. False: it does not and cannot be made; the operator was told
  // and the process must end.
  static bool EnsureIniFile(const CPrivateINI& ini, Operator& op);

  // A missing key takes its default and is written back; false where such a write failed.
  bool ReadIniSettings(const CPrivateINI& ini);

  // Writes all but the title; false if any key failed, the others are written still.
  bool WriteIniSettings(const CPrivateINI& ini);

  // The result of the last ReadIniSettings.
  bool SettingsReadOk() const { return settings_read_ok_; }

  // What lay behind the first failure of the last ReadIniSettings or WriteIniSettings; else empty.
  const std::string& FailureCause() const { return failure_cause_; }

  // Warns when the last ReadIniSettings found a SystemUnits that is neither "LB" nor "KG". The file
  // keeps that text until the settings are written.
  void ReportRefusedUnit(Operator& op) const;

  const std::string& SerialPort() const { return Text(kSerialPort); }
  void SetSerialPort(std::string_view text) { Let(kSerialPort, text); }
  const std::string& KRMBaudRate() const { return Text(kKRMBaudRate); }
  void SetKRMBaudRate(std::string_view text) { Let(kKRMBaudRate, text); }
  // "LB" or "KG"; anything else that is let, whatever its case, counts as "LB".
  const std::string& SystemUnits() const { return Text(kSystemUnits); }
  void SetSystemUnits(std::string_view text) { Let(kSystemUnits, text); }

  const std::string& AutoAbbreviate() const { return Text(kAutoAbbreviate); }
  void SetAutoAbbreviate(std::string_view text) { Let(kAutoAbbreviate, text); }
  bool AutoAbbreviateOn() const { return On(kAutoAbbreviate); }
  void SetAutoAbbreviateOn(bool on) { LetOn(kAutoAbbreviate, on); }

  const std::string& ShowImportProgress() const { return Text(kShowImportProgress); }
  void SetShowImportProgress(std::string_view text) { Let(kShowImportProgress, text); }
  bool ShowImportProgressOn() const { return On(kShowImportProgress); }
  void SetShowImportProgressOn(bool on) { LetOn(kShowImportProgress, on); }

  const std::string& EnableBeeper() const { return Text(kEnableBeeper); }
  void SetEnableBeeper(std::string_view text) { Let(kEnableBeeper, text); }
  bool EnableBeeperOn() const { return On(kEnableBeeper); }
  void SetEnableBeeperOn(bool on) { LetOn(kEnableBeeper, on); }

  const std::string& PrintCurrentRecipeOnly() const { return Text(kPrintCurrentRecipeOnly); }
  void SetPrintCurrentRecipeOnly(std::string_view text) { Let(kPrintCurrentRecipeOnly, text); }
  bool PrintCurrentRecipeOnlyOn() const { return On(kPrintCurrentRecipeOnly); }
  void SetPrintCurrentRecipeOnlyOn(bool on) { LetOn(kPrintCurrentRecipeOnly, on); }

  const std::string& EnablePrintText() const { return Text(kEnablePrintText); }
  void SetEnablePrintText(std::string_view text) { Let(kEnablePrintText, text); }
  bool EnablePrintTextOn() const { return On(kEnablePrintText); }
  void SetEnablePrintTextOn(bool on) { LetOn(kEnablePrintText, on); }

  const std::string& BatchTargetWtIsRecTarget() const { return Text(kBatchTargetWtIsRecTarget); }
  void SetBatchTargetWtIsRecTarget(std::string_view text) { Let(kBatchTargetWtIsRecTarget, text); }
  bool BatchTargetWtIsRecTargetOn() const { return On(kBatchTargetWtIsRecTarget); }
  void SetBatchTargetWtIsRecTargetOn(bool on) { LetOn(kBatchTargetWtIsRecTarget, on); }

  const std::string& AutoloadRecipeDB() const { return Text(kAutoloadRecipeDB); }
  void SetAutoloadRecipeDB(std::string_view text) { Let(kAutoloadRecipeDB, text); }
  bool AutoloadRecipeDBOn() const { return On(kAutoloadRecipeDB); }
  void SetAutoloadRecipeDBOn(bool on) { LetOn(kAutoloadRecipeDB, on); }

  const std::string& AutoloadTransDB() const { return Text(kAutoloadTransDB); }
  void SetAutoloadTransDB(std::string_view text) { Let(kAutoloadTransDB, text); }
  bool AutoloadTransDBOn() const { return On(kAutoloadTransDB); }
  void SetAutoloadTransDBOn(bool on) { LetOn(kAutoloadTransDB, on); }

  const std::string& PrintGridLines() const { return Text(kPrintGridLines); }
  void SetPrintGridLines(std::string_view text) { Let(kPrintGridLines, text); }
  bool PrintGridLinesOn() const { return On(kPrintGridLines); }
  void SetPrintGridLinesOn(bool on) { LetOn(kPrintGridLines, on); }

  // The settings by name, for whoever lists or scripts them. Names mind no case.
  static constexpr std::size_t kSettingCount = 12;
  static std::array<std::string_view, kSettingCount> Keys();         // in the order of the file
  std::optional<std::string> TextByKey(std::string_view key) const;  // nothing for an unknown key

  // Lets a setting, the boolean of a YES/NO key with its text. False, with nothing changed, for an
  // unknown key, and for a value that a unit or YES/NO key does not have (their case is mended).
  bool LetByKey(std::string_view key, std::string_view text);

 private:
  enum Key : std::size_t {
    kSerialPort,
    kKRMBaudRate,
    kSystemUnits,
    kAutoAbbreviate,
    kShowImportProgress,
    kEnableBeeper,
    kPrintCurrentRecipeOnly,
    kEnablePrintText,
    kBatchTargetWtIsRecTarget,
    kAutoloadRecipeDB,
    kAutoloadTransDB,
    kPrintGridLines,
  };
  struct Value {
    std::string text;
    bool on = false;
  };

  const std::string& Text(Key key) const { return values_.at(key).text; }
  void Let(std::size_t key, std::string_view text);
  bool On(Key key) const { return values_.at(key).on; }
  void LetOn(Key key, bool on) { values_.at(key).on = on; }
  bool WriteValue(const CPrivateINI& ini, std::size_t key);

  std::array<Value, kSettingCount> values_;
  bool settings_read_ok_ = false;
  std::string failure_cause_;
  std::string refused_unit_;  // as it was read; empty for a unit
};

// The beep that the operator can turn off in the Setup form.
void BeepIfEnabled(Operator& op, const PrivateINI& settings);

}  // namespace vrx
