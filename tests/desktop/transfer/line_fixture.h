#pragma once

#include <QTimer>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "adapters/qt_event_pump.h"
#include "adapters/qt_serial_control.h"
#include "adapters/serial_ports.h"
#include "desktop/answered_boxes.h"
#include "desktop/app/qt_services.h"
#include "desktop/transfer/transfer_fixture.h"
#include "support/program.h"

namespace vrx::testing {

inline constexpr QColor kStatusBlue{0, 0, 192};
inline constexpr QColor kStatusRed{220, 0, 0};  // red and green as far as they are readable
inline constexpr QColor kStatusGreen{0, 126, 0};

// A text and color that the label of the status line has shown.
struct StatusLook {
  std::string text;
  QColor color;
  bool operator==(const StatusLook&) const = default;
};

inline void PrintTo(const StatusLook& look, std::ostream* out) {
  *out << '"' << look.text << "\" in " << look.color.name().toStdString();
}

// The main window with the Data Transfer tab shown, in real time: real message boxes, the real
// status label, and serial port 2, the port of the settings, linked to a simulator.
class LineFixture : public TransferFixture {
 protected:
  using Ms = std::chrono::milliseconds;

  LineFixture() {
    std::filesystem::create_directories(ports_);
    main_ = std::make_unique<MainForm>(on_screen_, lock_waits_, user_settings_, line_, *ini_,
                                       RecordExit());
    MainWindow& window = main_->Window();
    QObject::connect(&screen_, &QtOperator::StatusLineChanged, &window,
                     [this](const QString& text) {
                       Window().SetStatusLine(text);
                       shown_.push_back(Status());
                     });
    QObject::connect(&screen_, &QtOperator::StatusColorChanged, &window,
                     &MainWindow::SetStatusColor);
    ShowTab();
  }
  // The window is destroyed before the objects it refers to.
  ~LineFixture() override { main_.reset(); }

  // Not paced like the real line, unless the arguments specify it.
  std::unique_ptr<Program> Simulate(std::vector<std::string> args) const {
    std::filesystem::remove(link_);
    args.insert(args.begin() + 1, {"--link", link_.string()});
    auto simulator =
        std::make_unique<Program>(VRX_BIN_DIR "/vrx2260sim", args, folder_.Path().string());
    EXPECT_TRUE(simulator->WaitForOutput("ready ")) << simulator->Err();
    return simulator;
  }
  std::unique_ptr<Program> Module(const std::string& memory,
                                  const std::vector<std::string>& more = {"--baud", "0"}) const {
    std::vector<std::string> args = {"module", "--load", folder_.Write("memory", memory).string()};
    args.insert(args.end(), more.begin(), more.end());
    return Simulate(args);
  }
  std::unique_ptr<Program> FaultyModule(const std::string& memory, const std::string& fault) const {
    return Module(memory, {"--baud", "0", "--fault", fault});
  }
  // A module whose final memory MemoryOf returns.
  std::unique_ptr<Program> KeptModule(const std::string& memory) const {
    return Module(memory, {"--baud", "0", "--save", kept_.string()});
  }
  std::string MemoryOf(Program& module) const {
    module.Signal(SIGTERM);
    module.Wait();
    return ReadAll(kept_);
  }
  std::unique_ptr<Program> Indicator(const std::string& script) const {
    return Simulate({"indicator", "--script", folder_.Write("script", script).string()});
  }

  static void Later(Ms delay, std::function<void()> act) {
    QTimer::singleShot(delay, qApp, std::move(act));
  }
  // Acts as soon as the condition holds, during the lifetime of the result.
  static std::unique_ptr<QTimer> Once(std::function<bool()> holds, std::function<void()> act) {
    auto poll = std::make_unique<QTimer>();
    QObject::connect(poll.get(), &QTimer::timeout, poll.get(),
                     [timer = poll.get(), holds = std::move(holds), act = std::move(act)] {
                       if (holds()) {
                         timer->stop();
                         act();
                       }
                     });
    poll->start(Ms{20});
    return poll;
  }

  StatusLook Status() {
    const auto& label = Find<QLabel>(u"lblStatusWindow"_qs);
    return {label.text().toStdString(), QColor(label.palette().color(QPalette::WindowText).rgb())};
  }
  bool WasShown(const StatusLook& status) const {
    return std::find(shown_.begin(), shown_.end(), status) != shown_.end();
  }
  static bool Busy() {
    return QApplication::overrideCursor() != nullptr &&
           QApplication::overrideCursor()->shape() == Qt::WaitCursor;
  }
  void Upload() { Click(u"cmdUploadDataFromKRM"_qs); }
  // Selects the indicator; returns when the connection has ended.
  void ConnectDirectly() { Click(u"optConnection(1)"_qs); }
  void ConnectModule() { Click(u"optConnection(0)"_qs); }
  // Even while the window is not active, as behind a message box.
  bool HasFocus(const QString& control) {
    return Window().focusWidget() == &Find<QWidget>(control);
  }
  bool Direct() { return Find<QRadioButton>(u"optConnection(1)"_qs).isChecked(); }

  // Checks that the next upload, from a working module, is complete.
  void TheNextUploadWorks() {
    const auto module = Module("{BAT/FED},L\r\n");
    Upload();
    EXPECT_EQ(Status(), (StatusLook{"Upload complete!  (16 bytes, 1 file)", kStatusGreen}));
    EXPECT_EQ(Rows(), std::vector<std::string>{"Transaction file 1: not readable"});
    EXPECT_FALSE(Busy());
  }

  std::filesystem::path ports_ = app_folder_->DefaultAppPath() / "Ports";
  std::filesystem::path link_ = ports_ / "COM2";
  std::filesystem::path kept_ = folder_ / "kept";
  QtOperator screen_;
  AnsweredBoxes boxes_;
  std::vector<StatusLook> shown_;
  QtEventPump events_;
  QtSerialControl line_{
      [this](int number) { return LinuxPortDevice(app_folder_->DefaultAppPath(), number); }};
  DatabaseIdentity screen_identity_{screen_, calendar_, settings_, lock_waits_};
  Services on_screen_{.op = screen_,
                      .files = chooser_,
                      .pump = events_,
                      .programs = programs_,
                      .calendar = calendar_,
                      .system = system_,
                      .settings = settings_,
                      .folder = *app_folder_,
                      .identity = screen_identity_};
};

}  // namespace vrx::testing
