#pragma once

#include <functional>
#include <stdexcept>
#include <string_view>

#include "presenter/services.h"
#include "support/fixed_calendar.h"
#include "support/fixed_system_info.h"
#include "support/manual_pump.h"
#include "support/recording_operator.h"
#include "support/scripted_file_chooser.h"

namespace vrx::testing {

// For tests in which no other program is started.
class NoPrograms : public ProgramRunner {
 public:
  ProgramOutcome Run(const LimitedProgram& program,
                     const std::function<bool(std::string_view)>& /*take*/) override {
    throw std::logic_error("unexpected program: " + program.path.string());
  }
};

// The services of a presenter, each in its recording, scripted or fixed form.
struct TestServices {
  explicit TestServices(LockWait wait = kBusyTimeout) : identity(op, calendar, settings, wait) {}
  TestServices(const TestServices&) = delete;
  TestServices& operator=(const TestServices&) = delete;

  RecordingOperator op;
  ScriptedFileChooser files;
  ManualPump pump;
  NoPrograms programs;
  FixedCalendar calendar;
  FixedSystemInfo system;
  PrivateINI settings;
  Folder folder{system};
  DatabaseIdentity identity;
  Services services{.op = op,
                    .files = files,
                    .pump = pump,
                    .programs = programs,
                    .calendar = calendar,
                    .system = system,
                    .settings = settings,
                    .folder = folder,
                    .identity = identity};
};

}  // namespace vrx::testing
