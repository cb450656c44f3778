#pragma once

#include <QTimer>
#include <memory>

#include "adapters/linux_machine.h"
#include "adapters/program_runner.h"
#include "adapters/qt_event_pump.h"
#include "adapters/qt_serial_control.h"
#include "desktop/app/desktop_context.h"
#include "desktop/app/lock_file.h"
#include "desktop/app/program_exit.h"
#include "desktop/app/qt_file_chooser.h"
#include "desktop/app/qt_services.h"
#include "desktop/dialogs/about_and_splash.h"

class QSessionManager;

namespace vrx {

// The program: the services of this machine, the application's state, start, event loop and exit.
// Needs a QApplication.
class DesktopProgram : private ExitRoads {
 public:
  DesktopProgram(const SystemInfo& system, MakeMainForm make_main_form);
  ~DesktopProgram() override;
  DesktopProgram(const DesktopProgram&) = delete;
  DesktopProgram& operator=(const DesktopProgram&) = delete;

  // The process's exit code: 0 after an exit, 1 when the start was refused.
  int Run();

 private:
  using Road = bool (ProgramExit::*)();

  void CloseBox() override { Leave(&ProgramExit::CloseBox); }
  void FileExit() override { Leave(&ProgramExit::FileExit); }
  void SessionEnd() override;
  void CommitSession(QSessionManager& manager);
  void EndEarly(MainForm& form);
  static void CloseInFront();
  void Leave(Road road);
  void Walk();

  const SystemInfo& system_;
  ApplicationState application_;
  LockFile instance_;
  QtOperator op_;
  QtFileChooser files_;
  QtUserSettings user_settings_;
  LocalCalendar calendar_;
  LinuxOperatingSystem os_;
  QtEventPump pump_;
  QtSerialControl serial_;
  ChildProcessRunner programs_;
  WaitBudget lock_waits_{kLongestLockWait};
  DatabaseIdentity identity_;
  Services services_;
  Splash splash_;
  MakeMainForm make_main_form_;
  std::unique_ptr<MainForm> main_form_;
  Road road_ = nullptr;  // out of the program, once it is being left
  QTimer unwinding_;
};

}  // namespace vrx
