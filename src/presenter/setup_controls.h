#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/operator.h"
#include "platform/system_info.h"
#include "settings/settings.h"

namespace vrx {

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

// What the operator chooses in `SETUP`.
struct SetupControls {
  int system_units = kNoSelection;  // of kSystemUnitsList
  int serial_port = kNoSelection;   // of kSerialPortList
  int baud_rate = kNoSelection;     // of kBaudRateList
  std::array<bool, kSetupOptionCount> options{};

  std::string_view SystemUnits() const;  // the chosen text; "" without a selection
  std::string_view SerialPort() const;
  std::string_view BaudRate() const;
};

// The settings as the form shows them. A baud rate that the list does not have shows as 19200.
SetupControls LoadSetupControls(const PrivateINI& settings);

// `txtAssociations`: the viewers of the documents that ship, by their kind.
std::string AssociationsText(const SystemInfo& system);

// `cmdOK`: the settings become what is chosen; the file is written at the exit. Warns ahead of the
// port when an open database has another unit then; "" for the unit of one that is not open.
void TakeSetupControls(const SetupControls& controls, std::string_view recipe_unit,
                       std::string_view transaction_unit, PrivateINI& settings, Operator& op);

}  // namespace vrx
