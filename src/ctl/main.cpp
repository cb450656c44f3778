#include <QCoreApplication>
#include <iostream>
#include <string>
#include <vector>

#include <unistd.h>

#include "adapters/local_machine.h"
#include "ctl/command_line.h"
#include "ctl/machine.h"

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
  const QCoreApplication application(argc, argv);
  const vrx::LinuxSystemInfo system;
  const vrx::LocalCalendar calendar;
  return vrx::RunCommandLine(args, {.in = std::cin,
                                    .out = std::cout,
                                    .err = std::cerr,
                                    .in_is_terminal = isatty(STDIN_FILENO) != 0,
                                    .err_is_terminal = isatty(STDERR_FILENO) != 0,
                                    .system = system,
                                    .calendar = calendar,
                                    .make_serial_line = vrx::MakeSerialLine});
}
