#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "link/krmcomm.h"
#include "platform/operator.h"
#include "settings/settings.h"

namespace vrx {

// The module's commands of `SETUP`. Each takes the port and the baud rate as they are chosen into
// the settings, runs with events handled meanwhile, and tells how it went. While the line is in use
// it does nothing. References must outlive the object.
class ModuleSetup {
 public:
  // `standby` shows `lblStandby`, or hides it.
  ModuleSetup(KRMCOMM& krm, PrivateINI& settings, Operator& op,
              std::function<void(bool shown)> standby);

  void TestKRM(std::string_view port, std::string_view baud);
  void ClearKRM(std::string_view port, std::string_view baud);
  void SetBaud(std::string_view baud);  // "" for none chosen

  // `lstBaudRate` and `lstSerialPort` were clicked.
  void ChooseBaud(std::string_view baud) { settings_.SetKRMBaudRate(baud); }
  void ResetLink() { krm_.KRM_Close(); }

  // Who uses the line.
  LineGuard& Guard() { return krm_.Guard(); }

  // The form is closed: what runs ends within a second and tells nothing; a clear that has not
  // begun does not.
  void Abandon();

 private:
  class Work;

  void Tell(Icon icon, std::string_view title, std::string_view text, bool with_cause = false);

  KRMCOMM& krm_;
  PrivateINI& settings_;
  Operator& op_;
  std::function<void(bool)> standby_;
  bool running_ = false;
  bool abandoned_ = false;
};

}  // namespace vrx
