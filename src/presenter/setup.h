#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "link/krmcomm.h"
#include "platform/operator.h"
#include "platform/system_info.h"
#include "presenter/operation.h"
#include "settings/settings.h"

namespace vrx {

// The module's commands of `SETUP`. Each copies the selected port and baud rate to the settings,
// runs events in the meantime, and reports its outcome. While the line is in use it does nothing.
// All references must outlive the object.
class ModuleSetup {
 public:
  // `standby` shows or hides `lblStandby`.
  ModuleSetup(KRMCOMM& krm, PrivateINI& settings, Operator& op,
              std::function<void(bool shown)> standby);

  void TestKRM(std::string_view port, std::string_view baud);
  void ClearKRM(std::string_view port, std::string_view baud);
  void SetBaud(std::string_view baud);  // "" for none chosen

  // `lstBaudRate` and `lstSerialPort` were clicked.
  void ChooseBaud(std::string_view baud) { settings_.SetKRMBaudRate(baud); }
  void ResetLink() { krm_.KRM_Close(); }

  // Locks the line.
  LineGuard& Guard() { return krm_.Guard(); }

  // The form is closed: a running command ends within a second without a message. A clear that has
  // not begun does not start.
  void Abandon();

 private:
  class Work;

  void ShowResult(Icon icon, std::string_view title, std::string_view text,
                  bool with_cause = false);

  KRMCOMM& krm_;
  PrivateINI& settings_;
  Operator& op_;
  std::function<void(bool)> standby_;
  OperationLock command_;
  bool abandoned_ = false;
};

// The lists of `SETUP`, by index.
inline constexpr std::array<std::string_view, 2> kSystemUnitsList{"LB", "KG"};
inline constexpr std::array<std::string_view, 9> kSerialPortList{"1", "2", "3", "4", "5",
                                                                 "6", "7", "8", "9"};
inline constexpr std::array<std::string_view, 4> kBaudRateList{"1200", "2400", "9600", "19200"};

inline constexpr int kNoSelection = -1;

// A check box of the tab "Options" and its setting.
struct SetupOption {
  std::string_view control;
  std::string_view caption;
  bool (PrivateINI::*on)() const;
  void (PrivateINI::*let)(bool);
};
inline constexpr std::size_t kSetupOptionCount = 8;
const std::array<SetupOption, kSetupOptionCount>& SetupOptions();

// The limits of the tab Insight as typed, by PrivateINI::InsightLimit.
using SetupLimits = std::array<std::string, PrivateINI::kInsightLimits>;
[[nodiscard]] SetupLimits UsualLimits();

// The operator's choices in `SETUP`.
struct SetupControls {
  int system_units = kNoSelection;  // of kSystemUnitsList
  int serial_port = kNoSelection;   // of kSerialPortList
  int baud_rate = kNoSelection;     // of kBaudRateList
  std::array<bool, kSetupOptionCount> options{};
  std::string tolerance = {};  // of differences, in percent, as typed
  SetupLimits limits = UsualLimits();

  [[nodiscard]] std::string_view SystemUnits() const;  // the chosen text; "" without a selection
  [[nodiscard]] std::string_view SerialPort() const;
  [[nodiscard]] std::string_view BaudRate() const;
};

// The settings as the form shows them. A baud rate that is not in the list is shown as 19200.
SetupControls LoadSetupControls(const PrivateINI& settings);

// Whether the typed tolerance can be used; otherwise reports why not.
bool IsToleranceUsable(std::string_view tolerance, Operator& op);

// The first limit that cannot be used; reports why not. Nothing if all can be used.
std::optional<std::size_t> UnusableLimit(const SetupLimits& limits, Operator& op);

// `txtAssociations`: the viewers of the shipped documents, by kind.
std::string AssociationsText(const SystemInfo& system);

// `cmdOK`: copies the choices to the settings, with a usable tolerance; the file is written at the
// exit. Warns if an open database then has another unit, before it handles the port; pass "" for
// the unit of a closed one.
void ApplySetupControls(const SetupControls& controls, std::string_view recipe_unit,
                        std::string_view transaction_unit, PrivateINI& settings, Operator& op);

// Read-only texts of `SETUP`. Lines end in CR LF.

// `txtAppPath`: the program's own file.
std::string ApplicationPath(const SystemInfo& system);

// `txtIniFileData`: the lines of the file on disk. Throws FileError.
std::string IniFileText(const std::filesystem::path& ini_file);

// `txtQxtFileData`: a transaction file with a line break after each comma, without the text after
// the last comma.
std::string TransactionFileText(std::string_view text);

// The lists in `SETUP` of the controls that are bound to a database: a line for each, ending in
// CR LF.
struct ConnectionTexts {
  std::string recipe_controls;       // RecipeControlsText
  std::string transaction_controls;  // TransactionControlsText
};

// Made from the connection strings of each database's controls.
ConnectionTexts BuildConnectionTexts(std::string_view recipe_connection,
                                     std::string_view transaction_connection);

// "Data Source=" and the path.
std::string ConnectionString(std::string_view database_path);

}  // namespace vrx
