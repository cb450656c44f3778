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

// Reads and writes single keys of the INI file (ini_file.h). An empty value is treated as missing.
class CPrivateINI {
 public:
  // Shows a message and throws Error if the system's own directory is unknown.
  CPrivateINI(std::filesystem::path ini_file_path, const SystemInfo& system, Operator& op);

  [[nodiscard]] static std::string QX_RemoveNulls(std::string_view text);
  [[nodiscard]] std::string IniPath() const;  // the same as WinPath, not the path of the INI file
  [[nodiscard]] std::string WinPath() const;  // the system's own directory

  // True if key "Title" of section "comments" has a value. The argument is ignored.
  [[nodiscard]] bool IniFileExists(std::string_view file_name) const;

  // Returns false and leaves `value` unchanged if the key is missing or empty.
  [[nodiscard]] bool ReadKey(std::string_view section, std::string_view key,
                             std::string& value) const;

  // Creates file, section and key if missing and keeps all other lines. On failure returns false,
  // leaves the file unchanged and sets `cause` if given.
  [[nodiscard]] bool WriteKey(std::string_view section, std::string_view key,
                              std::string_view value, std::string* cause = nullptr) const;

 private:
  std::filesystem::path ini_file_path_;
  std::string win_path_;
};

// The settings in memory: read at start, changed by the program, written at exit. A YES/NO key has
// a text and a boolean. Reading sets the boolean to whether the text is exactly "YES"; the program
// then uses the boolean only, and writing derives the text from it.
class PrivateINI {
 public:
  PrivateINI();  // every setting at its default

  // Creates the file with its defaults if it is missing, and shows a message about either result.
  // Returns false if it cannot be created; the program must end then.
  [[nodiscard]] static bool EnsureIniFile(const CPrivateINI& ini, Operator& op);

  // A missing key gets its default, which is written back. Returns false if such a write failed.
  bool ReadIniSettings(const CPrivateINI& ini);

  // Writes all keys but the title. Returns false if any key failed; the others are still written.
  [[nodiscard]] bool WriteIniSettings(const CPrivateINI& ini);

  // The result of the last ReadIniSettings.
  [[nodiscard]] bool SettingsReadOk() const { return settings_read_ok_; }

  // Cause of the first failure of the last ReadIniSettings or WriteIniSettings; empty if none.
  [[nodiscard]] const std::string& FailureCause() const { return failure_cause_; }

  // Shows a warning if the last ReadIniSettings found a SystemUnits that is neither "LB" nor "KG".
  // The file keeps that text until the settings are written.
  void ReportRefusedUnit(Operator& op) const;

  [[nodiscard]] const std::string& SerialPort() const { return Text(kSerialPort); }
  void SetSerialPort(std::string_view text) { Let(kSerialPort, text); }
  [[nodiscard]] const std::string& KRMBaudRate() const { return Text(kKRMBaudRate); }
  void SetKRMBaudRate(std::string_view text) { Let(kKRMBaudRate, text); }
  // "LB" or "KG". Setting ignores case and treats any other text as "LB".
  [[nodiscard]] const std::string& SystemUnits() const { return Text(kSystemUnits); }
  void SetSystemUnits(std::string_view text) { Let(kSystemUnits, text); }

  [[nodiscard]] const std::string& AutoAbbreviate() const { return Text(kAutoAbbreviate); }
  void SetAutoAbbreviate(std::string_view text) { Let(kAutoAbbreviate, text); }
  [[nodiscard]] bool AutoAbbreviateOn() const { return On(kAutoAbbreviate); }
  void SetAutoAbbreviateOn(bool on) { LetOn(kAutoAbbreviate, on); }

  [[nodiscard]] const std::string& ShowImportProgress() const { return Text(kShowImportProgress); }
  void SetShowImportProgress(std::string_view text) { Let(kShowImportProgress, text); }
  [[nodiscard]] bool ShowImportProgressOn() const { return On(kShowImportProgress); }
  void SetShowImportProgressOn(bool on) { LetOn(kShowImportProgress, on); }

  [[nodiscard]] const std::string& EnableBeeper() const { return Text(kEnableBeeper); }
  void SetEnableBeeper(std::string_view text) { Let(kEnableBeeper, text); }
  [[nodiscard]] bool EnableBeeperOn() const { return On(kEnableBeeper); }
  void SetEnableBeeperOn(bool on) { LetOn(kEnableBeeper, on); }

  [[nodiscard]] const std::string& PrintCurrentRecipeOnly() const {
    return Text(kPrintCurrentRecipeOnly);
  }
  void SetPrintCurrentRecipeOnly(std::string_view text) { Let(kPrintCurrentRecipeOnly, text); }
  [[nodiscard]] bool PrintCurrentRecipeOnlyOn() const { return On(kPrintCurrentRecipeOnly); }
  void SetPrintCurrentRecipeOnlyOn(bool on) { LetOn(kPrintCurrentRecipeOnly, on); }

  [[nodiscard]] const std::string& EnablePrintText() const { return Text(kEnablePrintText); }
  void SetEnablePrintText(std::string_view text) { Let(kEnablePrintText, text); }
  [[nodiscard]] bool EnablePrintTextOn() const { return On(kEnablePrintText); }
  void SetEnablePrintTextOn(bool on) { LetOn(kEnablePrintText, on); }

  [[nodiscard]] const std::string& BatchTargetWtIsRecTarget() const {
    return Text(kBatchTargetWtIsRecTarget);
  }
  void SetBatchTargetWtIsRecTarget(std::string_view text) { Let(kBatchTargetWtIsRecTarget, text); }
  [[nodiscard]] bool BatchTargetWtIsRecTargetOn() const { return On(kBatchTargetWtIsRecTarget); }
  void SetBatchTargetWtIsRecTargetOn(bool on) { LetOn(kBatchTargetWtIsRecTarget, on); }

  [[nodiscard]] const std::string& AutoloadRecipeDB() const { return Text(kAutoloadRecipeDB); }
  void SetAutoloadRecipeDB(std::string_view text) { Let(kAutoloadRecipeDB, text); }
  [[nodiscard]] bool AutoloadRecipeDBOn() const { return On(kAutoloadRecipeDB); }
  void SetAutoloadRecipeDBOn(bool on) { LetOn(kAutoloadRecipeDB, on); }

  [[nodiscard]] const std::string& AutoloadTransDB() const { return Text(kAutoloadTransDB); }
  void SetAutoloadTransDB(std::string_view text) { Let(kAutoloadTransDB, text); }
  [[nodiscard]] bool AutoloadTransDBOn() const { return On(kAutoloadTransDB); }
  void SetAutoloadTransDBOn(bool on) { LetOn(kAutoloadTransDB, on); }

  [[nodiscard]] const std::string& PrintGridLines() const { return Text(kPrintGridLines); }
  void SetPrintGridLines(std::string_view text) { Let(kPrintGridLines, text); }
  [[nodiscard]] bool PrintGridLinesOn() const { return On(kPrintGridLines); }
  void SetPrintGridLinesOn(bool on) { LetOn(kPrintGridLines, on); }

  // The percentage of a target beyond which a difference is marked. Setting any text but a number
  // from 0 to 100 sets the default.
  [[nodiscard]] double DifferenceTolerance() const;
  [[nodiscard]] const std::string& DifferenceToleranceText() const {
    return Text(kDifferenceTolerance);
  }
  void SetDifferenceTolerance(std::string_view text) { Let(kDifferenceTolerance, text); }
  [[nodiscard]] static bool IsTolerance(std::string_view text);

  // The limits of the answers on the tab Insight: percentages of a target and of a load, weights in
  // kg, and the division of the scale in the database's unit. Setting any text that IsInsightLimit
  // refuses sets the default.
  enum class InsightLimit {
    kPercent,
    kWeight,
    kBeyond,
    kDivision,
    kBalancePercent,
    kBalanceWeight
  };
  static constexpr std::size_t kInsightLimits = 6;
  [[nodiscard]] double Limit(InsightLimit limit) const;
  [[nodiscard]] const std::string& LimitText(InsightLimit limit) const {
    return values_.at(KeyOf(limit)).text;
  }
  void SetLimit(InsightLimit limit, std::string_view text) { Let(KeyOf(limit), text); }
  [[nodiscard]] static bool IsInsightLimit(InsightLimit limit, std::string_view text);
  [[nodiscard]] static std::string_view UsualText(InsightLimit limit);

  // Access by key name, which is not case-sensitive. Keys are in the order of the file; TextByKey
  // returns nothing for an unknown key.
  static constexpr std::size_t kSettingCount = 19;
  [[nodiscard]] static std::array<std::string_view, kSettingCount> Keys();
  [[nodiscard]] std::optional<std::string> TextByKey(std::string_view key) const;

  // Sets the text and, for a YES/NO key, the boolean. Returns false and changes nothing for an
  // unknown key and for an invalid value of a unit, percentage, weight or YES/NO key; units and
  // YES/NO values are upper-cased.
  [[nodiscard]] bool LetByKey(std::string_view key, std::string_view text);

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
    kDifferenceTolerance,
    kFirstInsightLimit,
  };
  struct Value {
    std::string text;
    bool on = false;
  };

  static constexpr std::size_t KeyOf(InsightLimit limit) {
    return kFirstInsightLimit + static_cast<std::size_t>(limit);
  }

  [[nodiscard]] const std::string& Text(Key key) const { return values_.at(key).text; }
  void Let(std::size_t key, std::string_view text);
  [[nodiscard]] bool On(Key key) const { return values_.at(key).on; }
  void LetOn(Key key, bool on) { values_.at(key).on = on; }
  bool WriteValue(const CPrivateINI& ini, std::size_t key);

  std::array<Value, kSettingCount> values_;
  bool settings_read_ok_ = false;
  std::string failure_cause_;
  std::string refused_unit_;  // the invalid text that was read; empty for a valid unit
};

// Beeps unless the operator turned the beeper off in the Setup dialog.
void BeepIfEnabled(Operator& op, const PrivateINI& settings);

// Section [Central] of the INI file: where the central database is. Without a connection nothing of
// it starts. A missing key stays missing.
struct CentralSettings {
  std::string connection = {};  // libpq's connection string, never with a password
  std::string yard = {};        // name of this yard
  bool automatic = false;       // a push after each store

  bool operator==(const CentralSettings&) const = default;
};

[[nodiscard]] CentralSettings ReadCentralSettings(const CPrivateINI& ini);

// Writes the keys that differ from `before`. Returns false, sets `cause` and may have written some
// of them on failure.
[[nodiscard]] bool WriteCentralSettings(const CPrivateINI& ini, const CentralSettings& before,
                                        const CentralSettings& settings, std::string& cause);

}  // namespace vrx
