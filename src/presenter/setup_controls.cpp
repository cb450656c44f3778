#include "presenter/setup_controls.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>

#include "base/number.h"
#include "presenter/document_viewer.h"

namespace vrx {
namespace {

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

// A document of each kind that ships with the program. The manual ships as a PDF file only, so
// there is none of the kind DOC to look a viewer up for.
constexpr std::string_view kNoDocument =
    "DOC: No document of this kind ships with the program. The manual is VRX2260_U.PDF.\r\n";
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

}  // namespace

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
  return controls;
}

std::string AssociationsText(const SystemInfo& system) {
  std::string text(kNoDocument);
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

void TakeSetupControls(const SetupControls& controls, std::string_view recipe_unit,
                       std::string_view transaction_unit, PrivateINI& settings, Operator& op) {
  settings.SetSystemUnits(controls.SystemUnits());
  WarnIfUnitsChange(settings.SystemUnits(), recipe_unit, transaction_unit, op);
  settings.SetSerialPort(controls.SerialPort());
  settings.SetKRMBaudRate(controls.BaudRate());
  for (std::size_t i = 0; i < kOptions.size(); ++i) {
    (settings.*kOptions.at(i).let)(controls.options.at(i));
  }
}

}  // namespace vrx
