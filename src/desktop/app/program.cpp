#include "desktop/app/program.h"

#include <QApplication>
#include <QSessionManager>
#include <QThread>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <string>
#include <utility>

#include "adapters/serial_ports.h"
#include "adapters/signals.h"

namespace vrx {
namespace {

constexpr std::chrono::milliseconds kUnwindingPoll{10};

// An event of the main loop itself asks, rather than one handled inside a dialog.
bool OnMainLoop() { return QThread::currentThread()->loopLevel() <= 1; }

}  // namespace

DesktopProgram::DesktopProgram(const SystemInfo& system, MakeMainForm make_main_form)
    : system_(system),
      application_{.app_folder = Folder(system_), .ini = {}, .settings = {}},
      files_([this] { return application_.app_folder.DefaultAppPath().string(); }),
      serial_([this](int number) {
        return LinuxPortDevice(application_.app_folder.DefaultAppPath(), number);
      }),
      identity_(op_, calendar_, application_.settings, lock_waits_),
      services_{.op = op_,
                .files = files_,
                .pump = pump_,
                .programs = programs_,
                .calendar = calendar_,
                .system = system_,
                .settings = application_.settings,
                .folder = application_.app_folder,
                .identity = identity_},
      make_main_form_(std::move(make_main_form)) {
  unwinding_.setSingleShot(true);
  QObject::connect(&unwinding_, &QTimer::timeout, [this] { Walk(); });
}

DesktopProgram::~DesktopProgram() = default;

int DesktopProgram::Run() {
  const SignalHandler signals([this] { SessionEnd(); });
  const QObject session;
  QObject::connect(qApp, &QGuiApplication::commitDataRequest, &session,
                   [this](QSessionManager& manager) { CommitSession(manager); });
  const DesktopContext context{.services = services_,
                               .lock_waits = lock_waits_,
                               .application = application_,
                               .op = op_,
                               .user_settings = user_settings_,
                               .os = os_,
                               .serial = serial_,
                               .exit = *this};
  try {
    main_form_ = Main(
        instance_, splash_, services_, application_,
        [this, &context] { return make_main_form_(context); },
        [this](MainForm& form) { EndEarly(form); });
  } catch (const std::exception& failure) {
    op_.ShowMessage(
        {.icon = Icon::kCritical, .title = {}, .text = "Error: " + std::string(failure.what())});
    return EXIT_FAILURE;
  }
  if (!main_form_) {
    return pump_.Closing() ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  const int code = QApplication::exec();
  main_form_.reset();
  return code;
}

void DesktopProgram::EndEarly(MainForm& form) {
  pump_.Reopen();
  ProgramExit(form, application_, user_settings_, op_).SessionEnd();
  pump_.Close();
}

// A session may let the operator be asked, and may be held by that.
void DesktopProgram::CommitSession(QSessionManager& manager) {
  if (main_form_ && manager.allowsInteraction()) {
    const bool left = main_form_->LeaveEdits();
    manager.release();
    if (!left) {
      manager.cancel();
      return;
    }
  }
  SessionEnd();
}

void DesktopProgram::Leave(Road road) {
  if (road_ == nullptr) {
    road_ = road;
    pump_.Close();
    Walk();
  }
}

// A second signal, while the exit shows a message, answers it.
void DesktopProgram::SessionEnd() {
  if (road_ != nullptr) {
    CloseInFront();
  }
  Leave(&ProgramExit::SessionEnd);
}

// The list of a tool button runs an event loop of its own like a dialog.
void DesktopProgram::CloseInFront() {
  if (QWidget* const list = QApplication::activePopupWidget(); list != nullptr) {
    list->close();
  }
  if (QWidget* const dialog = QApplication::activeModalWidget(); dialog != nullptr) {
    dialog->close();
  }
}

// A wait or a dialog that is under way ends first: it stands below this event on the stack. While
// the program is still starting Main looks at the pump, and only dialogs are closed here.
void DesktopProgram::Walk() {
  CloseInFront();
  if (pump_.Pumping() || !OnMainLoop() || !main_form_) {
    unwinding_.start(kUnwindingPoll);
    return;
  }
  pump_.Reopen();
  if ((ProgramExit(*main_form_, application_, user_settings_, op_).*road_)()) {
    pump_.Close();
    QApplication::exit();
  } else {
    road_ = nullptr;
  }
}

}  // namespace vrx
