#include <QGuiApplication>
#include <QLoggingCategory>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "adapters/linux_machine.h"
#include "ctl/command_line.h"
#include "ctl/machine.h"

namespace {

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
                   return vrx::MakeSerialLine(device, data_folder);
                 },
             .start_drawing =
                 [&] {
                   qputenv("QT_QPA_PLATFORM", "offscreen");
                   // Without a desktop Qt prints warnings that mean nothing to the user.
                   QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
                   Need<QGuiApplication>(application, argc, argv);
                 }});
}
