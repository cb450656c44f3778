#pragma once

#include <array>
#include <filesystem>
#include <string>

#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

inline constexpr std::string_view kIniFileName = "VRX-2260.INI";

// Reads and writes single keys of the INI file: the classic private-profile format, section and key
// names without regard to case, values of at most 1023 characters, empty values counting as missing.
class CPrivateINI {
 public:
  // Throws Error when the system's own directory cannot be told (after the operator was told).
  CPrivateINI(std::filesystem::path ini_file_path, const SystemInfo& system, Operator& op);

  static std::string QX_RemoveNulls(std::string_view text);
  std::string IniPath() const;  // the system's directory, as WinPath: not the INI file's path
  std::string WinPath() const;

  // True if key "Title" of section "comments" has a value; the argument is not looked at.
  bool IniFileExists(std::string_view file_name) const;

  // Failures come back as told: false.
  bool ReadKey(std::string_view section, std::string_view key, std::string& value) const;
  bool WriteKey(std::string_view section, std::string_view key, std::string_view value) const;

 private:
  std::filesystem::path ini_file_path_;
  std::string win_path_;
};

// The settings in memory: read at start, changed by the program, written at exit. A YES/NO key has a
// text and a boolean, true exactly when the text is "YES"; at exit the boolean counts.
class PrivateINI {
 public:
  PrivateINI();  // every setting at its default

  // Makes sure that the file exists. False: it does not and cannot be made; the operator was told
  // and the process must end.
  bool EnsureIniFile(const CPrivateINI& ini, Operator& op);

  // A missing key takes its default and is written back; false where such a write failed.
  bool ReadIniSettings(const CPrivateINI& ini);

  // Writes all but the title; false if any key failed, the others are written still.
  bool WriteIniSettings(const CPrivateINI& ini);

  bool SettingsReadOk() const;

  // Get and let by the key's name: SerialPort() reads, SetSerialPort(text) lets; the boolean of a
  // YES/NO key bears the suffix On. SetSystemUnits upper-cases and turns all but LB and KG into "".
  // (SerialPort, KRMBaudRate, SystemUnits: text only; AutoAbbreviate, ShowImportProgress,
  // EnableBeeper, PrintCurrentRecipeOnly, EnablePrintText, BatchTargetWtIsRecTarget,
  // AutoloadRecipeDB, AutoloadTransDB, PrintGridLines: both.)
  const std::string& SerialPort() const;
  void SetSerialPort(std::string text);
  // ... the frame's developer completes the pairs here
};

}  // namespace vrx
