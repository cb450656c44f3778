#include "presenter/setup.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>

#include "base/files.h"
#include "base/number.h"
#include "base/translation.h"
#include "presenter/help.h"

namespace vrx {

namespace {

constexpr std::string_view kTestTitle = "KRM Test";
constexpr std::string_view kClearTitle = "Clear KRM";
constexpr std::string_view kBaudTitle = "KRM Baud Setting";

constexpr std::array<SetupOption, kSetupOptionCount> kOptions{{
    {"chkShowImportProgress", "Show progress bar when importing transaction files.",
     &PrivateINI::ShowImportProgressOn, &PrivateINI::SetShowImportProgressOn},
    {"chkEnableBeeper", "Enable beeper.", &PrivateINI::EnableBeeperOn,
     &PrivateINI::SetEnableBeeperOn},
    {"chkPrtOneRcpOnly", "Always print current recipe only.", &PrivateINI::PrintCurrentRecipeOnlyOn,
     &PrivateINI::SetPrintCurrentRecipeOnlyOn},
    {"chkEnablePrintText", "Enable 'Print' (Data window) on 'Data Transfer' tab.",
     &PrivateINI::EnablePrintTextOn, &PrivateINI::SetEnablePrintTextOn},
    {"chkBatchTargetIsRecTarget",
     "Transfer 'Batch Target' weight to Model 2260 instead of 'Dry Matter'",
     &PrivateINI::BatchTargetWtIsRecTargetOn, &PrivateINI::SetBatchTargetWtIsRecTargetOn},
    {"chkAutoloadRecipeDB", "Load most recent recipe database at startup.",
     &PrivateINI::AutoloadRecipeDBOn, &PrivateINI::SetAutoloadRecipeDBOn},
    {"chkAutoloadTransDB", "Load most recent transaction database at startup.",
     &PrivateINI::AutoloadTransDBOn, &PrivateINI::SetAutoloadTransDBOn},
    {"chkPrintGridLines", "Print grid lines on reports.", &PrivateINI::PrintGridLinesOn,
     &PrivateINI::SetPrintGridLinesOn},
}};

// A shipped document of each kind. The manual is only shipped as a PDF file, so there is no DOC
// document to find a viewer for.
constexpr std::string_view kNoDocument =
    TrMark("DOC: No document of this kind ships with the program. The manual is VRX2260_U.PDF.");
constexpr std::array<std::pair<std::string_view, std::string_view>, 2> kProbes{
    {{"TXT", "Readme.TXT"}, {"PDF", "VRX2260_U.PDF"}}};

int IndexOf(std::span<const std::string_view> list, std::string_view text) {
  const auto found = std::find(list.begin(), list.end(), text);
  return found == list.end() ? kNoSelection : static_cast<int>(found - list.begin());
}

std::string_view TextAt(std::span<const std::string_view> list, int index) {
  return index == kNoSelection ? std::string_view() : list[static_cast<std::size_t>(index)];
}

int PortIndex(const std::string& port) {
  const std::optional<std::int32_t> number = ParseLong(port);
  return number && *number >= 1 && *number <= static_cast<int>(kSerialPortList.size())
             ? *number - 1
             : kNoSelection;
}

void WarnIfUnitsChange(std::string_view unit, std::string_view recipe_unit,
                       std::string_view transaction_unit, Operator& op) {
  const bool recipe = !recipe_unit.empty() && recipe_unit != unit;
  const bool transaction = !transaction_unit.empty() && transaction_unit != unit;
  if (!recipe && !transaction) {
    return;
  }
  const std::string word = recipe && transaction ? "both the current 'Recipe' and 'Transaction'"
                           : recipe              ? "the current 'Recipe'"
                                                 : "the current 'Transaction'";
  op.ShowMessage({.icon = Icon::kWarning,
                  .title = "Warning",
                  .text = "The new system units-of-measure will no longer be the same as " + word +
                          " database units. This is not advised as it will likely result in "
                          "invalid total calculations."});
}

constexpr std::string_view kProgramFile = "vrx2260";
constexpr std::size_t kMostIniFile = std::size_t{1024} * 1024;  // no larger one is read as settings

constexpr std::array<std::string_view, 8> kRecipeControls{
    " (Ingredient Grid)",           " (Recipe Grid)",
    " (Ingredient Selection Grid)", " (Pen Grid)",
    " (Ingredient ADO Control)",    " (Recipe ADO Control)",
    " (Pen ADO Control)",           " (Recipe UoM ADO Control)",
};

constexpr std::array<std::string_view, 2> kTransactionControls{
    " (Transaction Grid)",
    " (Transaction UoM ADO Control)",
};

std::string Lines(std::string_view connection, std::span<const std::string_view> labels) {
  std::string text;
  for (const std::string_view label : labels) {
    text += connection;
    text += label;
    text += "\r\n";
  }
  return text;
}

}  // namespace

// Shows the busy cursor and `lblStandby` while a command runs.
class ModuleSetup::Work {
 public:
  explicit Work(ModuleSetup& setup)
      : setup_(setup), busy_(setup.op_), running_(setup.command_.TryEnter()) {
    setup_.standby_(true);
  }
  ~Work() { setup_.standby_(false); }
  Work(const Work&) = delete;
  Work& operator=(const Work&) = delete;

 private:
  ModuleSetup& setup_;
  BusyCursor busy_;
  OperationLock::Scope running_;
};

ModuleSetup::ModuleSetup(KRMCOMM& krm, PrivateINI& settings, Operator& op,
                         std::function<void(bool)> standby)
    : krm_(krm), settings_(settings), op_(op), standby_(std::move(standby)) {}

void ModuleSetup::ShowResult(Icon icon, std::string_view title, std::string_view text,
                             bool with_cause) {
  if (!abandoned_) {
    op_.ShowMessage({.icon = icon,
                     .title = std::string(title),
                     .text = std::string(text),
                     .cause = with_cause ? krm_.KRM_FailureCause() : std::string(),
                     .port_help = with_cause ? PortHelp::kCause : PortHelp::kNone});
  }
}

void ModuleSetup::TestKRM(std::string_view port, std::string_view baud) {
  const LineGuard::Claim line = krm_.Guard().TakeForCommand();
  if (!line) {
    return;
  }
  bool detected = false;
  {
    const Work work(*this);
    settings_.SetSerialPort(port);
    settings_.SetKRMBaudRate(baud);
    detected = krm_.KRM_OnlineCheck();
  }
  if (detected) {
    ShowResult(Icon::kInformation, kTestTitle, "KRM Successfully Detected.");
  } else {
    ShowResult(Icon::kWarning, kTestTitle,
               "KRM Not Detected.  (Communication Error)\r\n"
               "Please check KRM module connection, cable and serial port selection.",
               true);
  }
}

void ModuleSetup::ClearKRM(std::string_view port, std::string_view baud) {
  const LineGuard::Claim line = krm_.Guard().TakeForCommand();
  if (!line) {
    return;
  }
  settings_.SetSerialPort(port);
  settings_.SetKRMBaudRate(baud);
  if (op_.ShowMessage({.icon = Icon::kQuestion,
                       .buttons = Buttons::kYesNo,
                       .title = std::string(kClearTitle),
                       .text = "Are you sure you want to clear all data in the KRM?"}) !=
      Answer::kYes) {
    return;
  }
  const Work work(*this);
  if (!krm_.KRM_OnlineCheck()) {
    ShowResult(Icon::kWarning, kClearTitle,
               "The 'Clear' operation failed. (Could not connect to the KRM)", true);
  } else if (abandoned_) {
    return;
  } else if (!krm_.KRM_Clear()) {
    ShowResult(Icon::kWarning, kClearTitle, "The 'Clear' operation failed.", true);
  } else {
    ShowResult(Icon::kInformation, kClearTitle, "The 'Clear' operation was successful.");
  }
}

void ModuleSetup::SetBaud(std::string_view baud) {
  const LineGuard::Claim line = krm_.Guard().TakeForCommand();
  if (!line) {
    return;
  }
  settings_.SetKRMBaudRate(baud);
  if (baud.empty()) {
    ShowResult(Icon::kNone, kBaudTitle, "Please select a baudrate setting.");
    return;
  }
  const Work work(*this);
  krm_.KRM_Close();
  if (abandoned_) {
    return;
  }
  if (krm_.KRM_SetBaud(TextToInt(baud))) {
    ShowResult(
        Icon::kInformation, kBaudTitle,
        "Successfully set the KRM baudrate.\r\n\r\n"
        "This new baudrate setting will only be in effect when the KRM module is connected to an "
        "K-2260 or some other indicator.");
  } else {
    ShowResult(Icon::kWarning, kBaudTitle,
               "Failed to set the KRM baudrate.\r\n\r\n"
               "Please check KRM module connection, cable and serial port selection.",
               true);
  }
}

void ModuleSetup::Abandon() {
  abandoned_ = true;
  if (command_.Running()) {
    krm_.KRM_ImmediateClose();
    krm_.GB_KRM_DelayComplete(true);
  }
}

const std::array<SetupOption, kSetupOptionCount>& SetupOptions() { return kOptions; }

std::string_view SetupControls::SystemUnits() const {
  return TextAt(kSystemUnitsList, system_units);
}
std::string_view SetupControls::SerialPort() const { return TextAt(kSerialPortList, serial_port); }
std::string_view SetupControls::BaudRate() const { return TextAt(kBaudRateList, baud_rate); }

SetupControls LoadSetupControls(const PrivateINI& settings) {
  SetupControls controls;
  controls.system_units = IndexOf(kSystemUnitsList, settings.SystemUnits());
  controls.serial_port = PortIndex(settings.SerialPort());
  controls.baud_rate = IndexOf(kBaudRateList, settings.KRMBaudRate());
  if (controls.baud_rate == kNoSelection) {
    controls.baud_rate = static_cast<int>(kBaudRateList.size()) - 1;
  }
  for (std::size_t i = 0; i < kOptions.size(); ++i) {
    controls.options.at(i) = (settings.*kOptions.at(i).on)();
  }
  controls.tolerance = settings.DifferenceToleranceText();
  for (std::size_t i = 0; i < controls.limits.size(); ++i) {
    controls.limits.at(i) = settings.LimitText(static_cast<PrivateINI::InsightLimit>(i));
  }
  return controls;
}

bool IsToleranceUsable(std::string_view tolerance, Operator& op) {
  if (PrivateINI::IsTolerance(tolerance)) {
    return true;
  }
  op.ShowMessage({.icon = Icon::kWarning,
                  .title = Tr("Setup"),
                  .text = Tr("The tolerance of the differences must be a number from 0 to 100 "
                             "percent.")});
  return false;
}

SetupLimits UsualLimits() {
  SetupLimits limits;
  for (std::size_t i = 0; i < limits.size(); ++i) {
    limits.at(i) = PrivateINI::UsualText(static_cast<PrivateINI::InsightLimit>(i));
  }
  return limits;
}

std::optional<std::size_t> UnusableLimit(const SetupLimits& limits, Operator& op) {
  for (std::size_t i = 0; i < limits.size(); ++i) {
    const auto limit = static_cast<PrivateINI::InsightLimit>(i);
    if (PrivateINI::IsInsightLimit(limit, limits.at(i))) {
      continue;
    }
    const bool is_percent = limit == PrivateINI::InsightLimit::kPercent ||
                            limit == PrivateINI::InsightLimit::kBalancePercent;
    op.ShowMessage({.icon = Icon::kWarning,
                    .title = Tr("Setup"),
                    .text = is_percent ? Tr("This limit must be a number from 0 to 100 percent.")
                                       : Tr("This limit must be a weight from 0 to 99999.")});
    return i;
  }
  return std::nullopt;
}

std::string AssociationsText(const SystemInfo& system) {
  std::string text = Tr(kNoDocument) + "\r\n";
  for (const auto& [kind, document] : kProbes) {
    std::string message;
    const std::string viewer = FindDocumentViewer(system, std::string(document), message);
    text.append(kind).append(": ").append(viewer).append("\r\n").append(message);
    if (!message.empty()) {
      text += "\r\n";
    }
  }
  return text;
}

void ApplySetupControls(const SetupControls& controls, std::string_view recipe_unit,
                        std::string_view transaction_unit, PrivateINI& settings, Operator& op) {
  settings.SetSystemUnits(controls.SystemUnits());
  WarnIfUnitsChange(settings.SystemUnits(), recipe_unit, transaction_unit, op);
  settings.SetSerialPort(controls.SerialPort());
  settings.SetKRMBaudRate(controls.BaudRate());
  for (std::size_t i = 0; i < kOptions.size(); ++i) {
    (settings.*kOptions.at(i).let)(controls.options.at(i));
  }
  settings.SetDifferenceTolerance(controls.tolerance);
  for (std::size_t i = 0; i < controls.limits.size(); ++i) {
    settings.SetLimit(static_cast<PrivateINI::InsightLimit>(i), controls.limits.at(i));
  }
}

std::string ApplicationPath(const SystemInfo& system) {
  return (std::filesystem::path(system.ProgramDirectory()) / kProgramFile).string();
}

std::string IniFileText(const std::filesystem::path& ini_file) {
  const std::string bytes = ReadFileBytes(ini_file, kMostIniFile);
  std::string text;
  std::size_t start = 0;
  while (start < bytes.size()) {
    const std::size_t end = std::min(bytes.find('\n', start), bytes.size());
    std::string_view line = std::string_view(bytes).substr(start, end - start);
    if (line.ends_with('\r')) {
      line.remove_suffix(1);
    }
    text.append(line).append("\r\n");
    start = end + 1;
  }
  return text;
}

std::string TransactionFileText(std::string_view text) {
  std::string shown;
  for (std::size_t comma = text.find(','); comma != std::string_view::npos;
       comma = text.find(',')) {
    shown.append(text.substr(0, comma + 1)).append("\r\n");
    text.remove_prefix(comma + 1);
  }
  return shown;
}

ConnectionTexts BuildConnectionTexts(std::string_view recipe_connection,
                                     std::string_view transaction_connection) {
  return {Lines(recipe_connection, kRecipeControls),
          Lines(transaction_connection, kTransactionControls)};
}

std::string ConnectionString(std::string_view database_path) {
  return "Data Source=" + std::string(database_path);
}

}  // namespace vrx
