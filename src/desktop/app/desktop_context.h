#pragma once

#include <functional>
#include <memory>

#include "adapters/qt_event_pump.h"
#include "desktop/app/application_state.h"
#include "desktop/app/main_form_interface.h"
#include "desktop/app/qt_services.h"
#include "platform/calendar.h"
#include "platform/file_chooser.h"
#include "platform/operating_system.h"
#include "platform/serial_control.h"
#include "platform/system_info.h"
#include "platform/user_settings.h"

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

// What the main window and the forms below it work with. Everything outlives them.
struct DesktopContext {
  ApplicationState& application;
  QtOperator& op;
  FileChooser& files;
  UserSettings& user_settings;
  const Calendar& calendar;
  const SystemInfo& system;
  OperatingSystem& os;
  QtEventPump& pump;
  SerialControl& serial;
  ExitRoads& exit;
};

// Makes `VRXMAIN` and does its Load.
using MakeMainForm = std::function<std::unique_ptr<MainForm>(const DesktopContext&)>;

}  // namespace vrx
