#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "database/lock_wait.h"
#include "desktop/app/application_state.h"
#include "desktop/app/main_form_interface.h"
#include "desktop/app/qt_services.h"
#include "platform/operating_system.h"
#include "platform/serial_control.h"
#include "platform/user_settings.h"
#include "presenter/services.h"

namespace vrx {

// The three roads out of the program. Each ends the program once every wait has unwound, or leaves
// it up, as the road says; none ends it before the call returns.
class ExitRoads {
 public:
  virtual ~ExitRoads() = default;
  virtual void CloseBox() = 0;
  virtual void FileExit() = 0;
  virtual void SessionEnd() = 0;
};

// What one action of the operator may wait for other programs' locks, in all. The window stands
// still meanwhile; with what else the action does that stays below 2 s.
inline constexpr std::chrono::milliseconds kLongestLockWait{1500};

// What the main window and the forms below it work with. Everything outlives them.
struct DesktopContext {
  Services& services;
  WaitBudget& lock_waits;
  ApplicationState& application;
  QtOperator& op;  // that of the services
  UserSettings& user_settings;
  OperatingSystem& os;
  SerialControl& serial;
  ExitRoads& exit;
};

// Makes `VRXMAIN` and does its Load.
using MakeMainForm = std::function<std::unique_ptr<MainForm>(const DesktopContext&)>;

}  // namespace vrx
