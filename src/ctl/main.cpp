#include <QGuiApplication>
#include <QLoggingCategory>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "adapters/linux_machine.h"
#include "adapters/qt_event_pump.h"
#include "adapters/qt_serial_control.h"
#include "adapters/serial_ports.h"
#include "adapters/signals.h"
#include "ctl/command.h"
#include "ctl/command_line.h"

namespace {

// A line of this machine. A QCoreApplication must exist during its lifetime.
class QtSerialLine : public vrx::SerialLine {
 public:
  QtSerialLine(const std::string& device, const std::filesystem::path& data_folder)
      : control_([device, data_folder](int number) {
          return device.empty() ? vrx::LinuxPortDevice(data_folder, number) : device;
        }) {}

  vrx::SerialControl& Control() override { return control_; }
  vrx::EventPump& Pump() override { return pump_; }
  void Close() override { pump_.Close(); }
  void CloseOnSignals() override {
    OnSignals([this] { pump_.Close(); });
  }
  void OnSignals(std::function<void()> handle) override {
    signals_.reset();
    if (handle) {
      signals_.emplace(std::move(handle));
    }
  }

 private:
  vrx::QtEventPump pump_;
  std::optional<vrx::SignalHandler> signals_;
  vrx::QtSerialControl control_;
};

// Creates the kind of application that a command needs, when it is needed.
template <typename Application>
void Need(std::unique_ptr<QCoreApplication>& application, int& argc, char** argv) {
  if (!application) {
    application = std::make_unique<Application>(argc, argv);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
  std::unique_ptr<QCoreApplication> application;
  const vrx::LinuxSystemInfo system;
  const vrx::LocalCalendar calendar;
  return vrx::RunCommandLine(
      args, {.in = std::cin,
             .out = std::cout,
             .err = std::cerr,
             .in_is_terminal = vrx::InputIsTerminal(),
             .err_is_terminal = vrx::ErrorIsTerminal(),
             .system = system,
             .calendar = calendar,
             .make_serial_line =
                 [&](const auto& device, const auto& data_folder) {
                   Need<QCoreApplication>(application, argc, argv);
                   return std::make_unique<QtSerialLine>(device, data_folder);
                 },
             .start_drawing =
                 [&] {
                   qputenv("QT_QPA_PLATFORM", "offscreen");
                   // Without a desktop Qt prints warnings that mean nothing to the user.
                   QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
                   Need<QGuiApplication>(application, argc, argv);
                 }});
}
