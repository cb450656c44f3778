#pragma once

#include <QLockFile>
#include <QString>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "adapters/file_handover.h"
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

  // Where the instance that holds the lock receives files.
  [[nodiscard]] std::filesystem::path Socket() const;

 private:
  QString folder_;
  std::optional<QLockFile> lock_;
};

// How long the splash remains after the main form is loaded.
inline constexpr Milliseconds kSplashTime{2000};

using MakeForm = std::function<std::unique_ptr<ProgramForm>()>;

// How long a start waits for a running instance to take its files. That one may be starting too.
inline constexpr Milliseconds kLongestHandover{15000};

enum class StartOutcome {
  kRefused,     // the reason was reported
  kHandedOver,  // a running instance has taken the files
  kStarted,
};

// The first step: the only instance takes the lock. A further one passes its files on and ends, or
// reports the first one.
StartOutcome ClaimInstance(LockFile& lock, const Services& services,
                           const std::vector<std::filesystem::path>& files);

// The rest of the start, up to the loaded main form: the data folder, the templates, the settings;
// then the form is made while the splash is shown. `folder`, `ini` and the settings of the services
// are valid once the form is made. Returns nullptr after reporting why the program cannot start.
// The caller shows the form, unless the program was closed meanwhile.
std::unique_ptr<ProgramForm> StartProgram(Splash& splash, const Services& services, Folder& folder,
                                          std::optional<CPrivateINI>& ini,
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
  // Opens the files, given by absolute paths, after the start, or hands them to a running instance.
  explicit Program(const SystemInfo& system, std::vector<std::filesystem::path> files = {});
  virtual ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Returns the exit code of the process: 0 after an exit or a handover, 1 if the start was
  // refused.
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
  StartOutcome Start();
  void Receive();
  void CommitSession(QSessionManager& manager);
  static void CloseInFront();
  void ExitWhenIdle();
  bool End(ExitReason reason, ProgramForm& form);

  const SystemInfo& system_;
  std::vector<std::filesystem::path> files_to_open_;  // until the main form takes them
  Folder folder_;
  std::optional<CPrivateINI> ini_;  // once the data folder is known
  PrivateINI settings_;
  LockFile lock_;
  std::optional<FileReceiver> receiver_;
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
