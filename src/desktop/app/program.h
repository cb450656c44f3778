#pragma once

#include <QLockFile>
#include <QString>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "adapters/linux_machine.h"
#include "adapters/program_runner.h"
#include "adapters/qt_event_pump.h"
#include "adapters/qt_serial_control.h"
#include "desktop/app/main_form.h"
#include "desktop/app/qt_services.h"
#include "desktop/dialogs/about_and_splash.h"
#include "presenter/services.h"

class QSessionManager;

namespace vrx {

// Allows one running instance for each user of the machine, by a lock file in the user's folder of
// running programs. The lock ends with the process, so a crash does not block the next start.
class LockFile {
 public:
  LockFile();  // in the user's folder
  explicit LockFile(QString folder);

  // Returns false if another instance runs. After true, holds the lock until the object or the
  // process ends. Throws Error if the lock can be neither taken nor tested.
  bool Claim();

 private:
  QString folder_;
  std::optional<QLockFile> lock_;
};

// How long the splash remains after the main form is loaded.
inline constexpr Milliseconds kSplashTime{2000};

using MakeForm = std::function<std::unique_ptr<ProgramForm>()>;

// The start, up to the loaded main form: the only instance, the data folder, the templates, the
// settings; then the form is made while the splash is shown. `folder`, `ini` and the settings of
// the services are valid once the form is made. Returns nullptr after reporting why the program
// cannot start. The caller shows the form, unless the program was closed meanwhile.
std::unique_ptr<ProgramForm> StartProgram(LockFile& lock, Splash& splash, const Services& services,
                                          Folder& folder, std::optional<CPrivateINI>& ini,
                                          const MakeForm& make_form);

// The exit. Asks the operator nothing: every change is in the database files already. A failure
// beeps, is shown in the status line and skips the remaining steps; what was done remains done.
// Settings that cannot be written only cause a message after everything else. Returns whether the
// process ends: only the close box leaves it running, after a failure.
bool EndProgram(ExitReason reason, ProgramForm& form, const Services& services,
                UserSettings& user_settings, const CPrivateINI& ini);

// The program: the services of this machine, start, event loop and exit. Needs a QApplication.
class Program {
 public:
  explicit Program(const SystemInfo& system);
  virtual ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Returns the exit code of the process: 0 after an exit, 1 if the start was refused.
  int Run();

  // Ends the program once every wait and dialog has returned; not before this call returns. A
  // second call only closes the message that the exit may be showing, if it is the end of the
  // session.
  void Leave(ExitReason reason);

 protected:
  // Makes the main form; virtual for tests.
  virtual std::unique_ptr<ProgramForm> MakeMainForm();

  Services& GetServices() { return services_; }

 private:
  bool Start();
  void CommitSession(QSessionManager& manager);
  static void CloseInFront();
  void ExitWhenIdle();
  bool End(ExitReason reason, ProgramForm& form);

  const SystemInfo& system_;
  Folder folder_;
  std::optional<CPrivateINI> ini_;  // once the data folder is known
  PrivateINI settings_;
  LockFile lock_;
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
  std::unique_ptr<ProgramForm> main_form_;
  std::optional<ExitReason> exit_;  // while the program is ending
  QTimer exit_poll_;
};

}  // namespace vrx
