#pragma once

#include "platform/calendar.h"
#include "platform/event_pump.h"
#include "platform/file_chooser.h"
#include "platform/operator.h"
#include "platform/program_runner.h"
#include "platform/system_info.h"
#include "presenter/database_identity.h"
#include "settings/data_folder.h"
#include "settings/settings.h"

namespace vrx {

// What the presenters and the pages above them work with. Each program makes one and passes it by
// reference. Everything here outlives the holders of the reference.
struct Services {
  Operator& op;
  FileChooser& files;
  EventPump& pump;
  ProgramRunner& programs;
  const Calendar& calendar;
  const SystemInfo& system;
  PrivateINI& settings;
  const Folder& folder;
  DatabaseIdentity& identity;
};

// The same with another operator.
inline Services WithOperator(const Services& services, Operator& op) {
  return {.op = op,
          .files = services.files,
          .pump = services.pump,
          .programs = services.programs,
          .calendar = services.calendar,
          .system = services.system,
          .settings = services.settings,
          .folder = services.folder,
          .identity = services.identity};
}

}  // namespace vrx
