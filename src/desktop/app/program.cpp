#include "desktop/app/program.h"

#include <QApplication>
#include <QSessionManager>
#include <QStandardPaths>
#include <QThread>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "adapters/file_handover.h"
#include "adapters/serial_ports.h"
#include "adapters/signals.h"
#include "base/application.h"
#include "base/error.h"
#include "base/files.h"
#include "base/translation.h"
#include "database/identity.h"
#include "presenter/command_states.h"

namespace vrx {
namespace {

constexpr std::chrono::milliseconds kExitPoll{10};

void ReportAlreadyRunning(Operator& op) {
  op.Beep();
  op.ShowMessage({.icon = Icon::kInformation,
                  .title = {},
                  .text = "The " + std::string(kApplicationTitle) +
                          " application is already running."
                          "It might be minimized or hidden by another window."});
}

void ReportNotHandedOver(Operator& op, const std::vector<std::filesystem::path>& files) {
  std::string text =
      Tr("The program is already running and does not answer. This was not opened:") + "\r\n";
  for (const std::filesystem::path& file : files) {
    text += "\r\n" + file.string();
  }
  op.ShowMessage({.icon = Icon::kWarning, .title = Tr("Open File Error"), .text = text});
}

// For failures without a specified text.
void ReportStartFailure(Operator& op, const std::string& cause) {
  op.ShowMessage({.icon = Icon::kCritical, .title = {}, .text = "Error: " + cause});
}

// The very first start of a user may have to make the common folder.
void MakeCommonFolder(const SystemInfo& system) {
  const std::string common = system.CommonAppDataFolder();
  std::error_code ignored;  // reported when the next level is made
  if (!common.empty()) {
    std::filesystem::create_directories(common, ignored);
  }
}

// The steps that prepare the application return false if the process must end, after reporting why.

bool MakeFolders(const Services& services, Folder& folder) {
  try {
    MakeCommonFolder(services.system);
    return folder.CheckAppDefaultDir();
  } catch (const Error& failure) {
    ReportStartFailure(services.op, failure.what());
    return false;
  }
}

bool OpenIniFile(const Services& services, const Folder& folder, std::optional<CPrivateINI>& ini) {
  try {
    ini.emplace(folder.IniFilePath(), services.system, services.op);
  } catch (const Error&) {
    return false;  // reported where it was thrown
  }
  return PrivateINI::EnsureIniFile(*ini, services.op);
}

void SaveRecent(DatabaseKind kind, bool keep, const ProgramForm& form, UserSettings& store) {
  const KindTexts& texts = TextsOf(kind);
  const RecentFile recent = keep ? form.Recent(kind) : RecentFile{};
  store.SaveSetting(texts.recent_path_key, recent.path);
  store.SaveSetting(texts.recent_name_key, recent.name);
}

void SaveWindowPlace(const ProgramForm& form, UserSettings& store) {
  const std::optional<WindowPlace> place = form.Place();
  if (!place) {
    return;
  }
  store.SaveSetting("MainLeft", std::to_string(place->left));
  store.SaveSetting("MainTop", std::to_string(place->top));
  store.SaveSetting("MainWidth", std::to_string(place->width));
  store.SaveSetting("MainHeight", std::to_string(place->height));
}

// Returns the reason for a failure, else an empty text. A store that cannot be written must not
// keep the databases open or the INI file unwritten.
std::string SaveUserSettings(const ProgramForm& form, const PrivateINI& settings,
                             UserSettings& store) {
  try {
    SaveWindowPlace(form, store);
    SaveRecent(DatabaseKind::kRecipe, settings.AutoloadRecipeDBOn(), form, store);
    SaveRecent(DatabaseKind::kTransaction, settings.AutoloadTransDBOn(), form, store);
    return {};
  } catch (const std::exception& failure) {
    return failure.what();
  }
}

void WriteSettings(PrivateINI& settings, const CPrivateINI& ini, Operator& op) {
  if (settings.WriteIniSettings(ini)) {
    return;
  }
  op.ShowMessage({.icon = Icon::kWarning,
                  .title = "INI File Error",
                  .text = "Unable to save some or all of the application settings to the "
                          "applications INI file. Please check all settings next time you run the "
                          "program.",
                  .cause = settings.FailureCause()});
}

void SaveAndClose(ProgramForm& form, const Services& services, UserSettings& user_settings,
                  const CPrivateINI& ini) {
  const std::string not_saved = SaveUserSettings(form, services.settings, user_settings);
  form.CloseDatabase(DatabaseKind::kRecipe);
  form.CloseDatabase(DatabaseKind::kTransaction);
  form.ReleaseDataControls();
  WriteSettings(services.settings, ini, services.op);
  if (!not_saved.empty()) {
    services.op.ShowMessage(
        {.icon = Icon::kWarning,
         .title = Tr("User Settings Error"),
         .text = Tr("Unable to save the place of the window and the names of the open "
                    "databases. The next start does not open them by itself."),
         .cause = not_saved});
  }
  form.UnloadOpenForms();
}

// Returns false after showing a failure in the status line.
bool RunExitSteps(Operator& op, const std::function<void()>& steps) {
  try {
    steps();
    return true;
  } catch (const std::exception& failure) {
    op.Beep();
    op.SetStatusColor(StatusColor::kRed);
    op.SetStatusLine("Error: " + std::string(failure.what()));
    return false;
  }
}

// The current event belongs to the main loop, not to the loop of a dialog.
bool OnMainLoop() { return QThread::currentThread()->loopLevel() <= 1; }

}  // namespace

LockFile::LockFile()
    : LockFile(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation)) {}

LockFile::LockFile(QString folder) : folder_(std::move(folder)) {}

bool LockFile::Claim() {
  if (folder_.isEmpty()) {
    throw Error(Tr("there is no folder for the locks of running programs"));
  }
  const QString path = folder_ + QStringLiteral("/vrx2260.lock");
  lock_.emplace(path);
  lock_->setStaleLockTime(std::chrono::milliseconds{0});  // however long the program has run
  if (lock_->tryLock(std::chrono::milliseconds{0})) {
    return true;
  }
  if (lock_->error() != QLockFile::LockFailedError) {
    throw Error(Tr("cannot lock %1", {path.toStdString()}));
  }
  return false;
}

std::filesystem::path LockFile::Socket() const {
  return std::filesystem::path(folder_.toStdString()) / "vrx2260.socket";
}

StartOutcome ClaimInstance(LockFile& lock, const Services& services,
                           const std::vector<std::filesystem::path>& files) {
  try {
    if (lock.Claim()) {
      return StartOutcome::kStarted;
    }
  } catch (const Error& failure) {
    ReportStartFailure(services.op, failure.what());
    return StartOutcome::kRefused;
  }
  if (files.empty()) {
    ReportAlreadyRunning(services.op);
    return StartOutcome::kRefused;
  }
  if (HandOverFiles(lock.Socket(), files, services.pump, kLongestHandover)) {
    return StartOutcome::kHandedOver;
  }
  if (!services.pump.Closing()) {
    ReportNotHandedOver(services.op, files);
  }
  return StartOutcome::kRefused;
}

std::unique_ptr<ProgramForm> StartProgram(Splash& splash, const Services& services, Folder& folder,
                                          std::optional<CPrivateINI>& ini,
                                          const MakeForm& make_form) {
  if (!MakeFolders(services, folder) || !CheckSupportFiles(services.system, services.op) ||
      !OpenIniFile(services, folder, ini)) {
    return nullptr;
  }
  services.settings.ReadIniSettings(*ini);
  splash.Show();
  std::unique_ptr<ProgramForm> form = make_form();
  GeneralDelay(services.pump).Wait(kSplashTime);
  splash.Unload();
  return form;
}

bool EndProgram(ExitReason reason, ProgramForm& form, const Services& services,
                UserSettings& user_settings, const CPrivateINI& ini) {
  if (reason != ExitReason::kSessionEnd) {
    form.CloseSerialPort();
    form.UnloadSetup();
  }
  const auto save_and_close = [&] { SaveAndClose(form, services, user_settings, ini); };
  if (reason == ExitReason::kCloseBox) {
    return RunExitSteps(services.op, [&] {
      save_and_close();
      form.Unload();
    });
  }
  RunExitSteps(services.op, save_and_close);
  form.Unload();
  return true;
}

Program::Program(const SystemInfo& system, std::vector<std::filesystem::path> files)
    : system_(system),
      files_to_open_(std::move(files)),
      folder_(system),
      files_([this] { return folder_.DefaultAppPath().string(); }),
      serial_([this](int number) { return LinuxPortDevice(folder_.DefaultAppPath(), number); }),
      identity_(op_, calendar_, settings_, lock_waits_),
      services_{.op = op_,
                .files = files_,
                .pump = pump_,
                .programs = programs_,
                .calendar = calendar_,
                .system = system_,
                .settings = settings_,
                .folder = folder_,
                .identity = identity_} {
  exit_poll_.setSingleShot(true);
  QObject::connect(&exit_poll_, &QTimer::timeout, [this] { ExitWhenIdle(); });
}

Program::~Program() = default;

int Program::Run() {
  const SignalHandler signals([this] { Leave(ExitReason::kSessionEnd); });
  const QObject session;
  QObject::connect(qApp, &QGuiApplication::commitDataRequest, &session,
                   [this](QSessionManager& manager) { CommitSession(manager); });
  try {
    if (const StartOutcome outcome = Start(); outcome != StartOutcome::kStarted) {
      const bool failed = outcome == StartOutcome::kRefused && !pump_.Closing();
      return failed ? EXIT_FAILURE : EXIT_SUCCESS;
    }
  } catch (const std::exception& failure) {
    ReportStartFailure(op_, failure.what());
    return EXIT_FAILURE;
  }
  const int code = QApplication::exec();
  main_form_.reset();
  return code;
}

StartOutcome Program::Start() {
  const StartOutcome claimed = ClaimInstance(lock_, services_, files_to_open_);
  if (claimed != StartOutcome::kStarted) {
    return claimed;
  }
  Receive();
  std::unique_ptr<ProgramForm> form =
      StartProgram(splash_, services_, folder_, ini_, [this] { return MakeMainForm(); });
  if (!form) {
    return StartOutcome::kRefused;
  }
  if (pump_.Closing()) {  // closed during the splash
    End(ExitReason::kSessionEnd, *form);
    pump_.Close();
    return StartOutcome::kRefused;
  }
  form->Show();
  main_form_ = std::move(form);
  if (!files_to_open_.empty()) {
    main_form_->OpenFilesLater(std::exchange(files_to_open_, {}));
  }
  return StartOutcome::kStarted;
}

// Without a socket the program works alone: a start with files then reports that it does not
// answer.
void Program::Receive() {
  const auto take = [this](const std::vector<std::filesystem::path>& files) {
    if (main_form_) {
      main_form_->OpenFilesLater(files);
    } else {
      files_to_open_.insert(files_to_open_.end(), files.begin(), files.end());
    }
  };
  try {
    receiver_.emplace(lock_.Socket(), take);
  } catch (const Error&) {
    receiver_.reset();
  }
}

std::unique_ptr<ProgramForm> Program::MakeMainForm() {
  auto form = std::make_unique<MainForm>(services_, lock_waits_, user_settings_, serial_, *ini_,
                                         [this](ExitReason reason) { Leave(reason); });
  form->Serve(op_);
  SetHelpHandlers(form->Window(), system_, os_, op_);
  return form;
}

// The session manager may allow the program to ask the operator, and to cancel the end of the
// session.
void Program::CommitSession(QSessionManager& manager) {
  if (main_form_ && manager.allowsInteraction()) {
    const bool left = main_form_->LeaveEdits();
    manager.release();
    if (!left) {
      manager.cancel();
      return;
    }
  }
  Leave(ExitReason::kSessionEnd);
}

void Program::Leave(ExitReason reason) {
  if (!exit_) {
    exit_ = reason;
    pump_.Close();
    ExitWhenIdle();
  } else if (reason == ExitReason::kSessionEnd) {
    CloseInFront();
  }
}

// The list of a tool button runs its own event loop, as a dialog does.
void Program::CloseInFront() {
  if (QWidget* const list = QApplication::activePopupWidget(); list != nullptr) {
    list->close();
  }
  if (QWidget* const dialog = QApplication::activeModalWidget(); dialog != nullptr) {
    dialog->close();
  }
}

// A running wait or dialog is below this event on the stack and must return first. During the start
// only dialogs are closed here: Start itself checks the pump.
void Program::ExitWhenIdle() {
  CloseInFront();
  if (pump_.Pumping() || !OnMainLoop() || !main_form_) {
    exit_poll_.start(kExitPoll);
    return;
  }
  if (End(*exit_, *main_form_)) {
    pump_.Close();
    QApplication::exit();
  } else {
    exit_.reset();
  }
}

// The exit itself may wait, so the pump is open for it.
bool Program::End(ExitReason reason, ProgramForm& form) {
  pump_.Reopen();
  return EndProgram(reason, form, services_, user_settings_, *ini_);
}

}  // namespace vrx
