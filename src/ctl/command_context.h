#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

#include "database/connection.h"
#include "platform/calendar.h"
#include "platform/event_pump.h"
#include "platform/serial_control.h"
#include "platform/system_info.h"

namespace vrx {

// A serial control and the pump it was made with.
class SerialLine {
 public:
  virtual ~SerialLine() = default;
  virtual SerialControl& Control() = 0;
  virtual EventPump& Pump() = 0;

  // The pump's Closing from now on: every wait ends.
  virtual void Close() = 0;
  // SIGINT, SIGTERM and SIGHUP close from now on, rather than end the program.
  virtual void CloseOnSignals() = 0;
};

// Where the tool's world ends: streams and ports of one run. Everything it refers to outlives it.
struct CommandContext {
  std::istream& in;
  std::ostream& out;  // data
  std::ostream& err;  // messages, questions, progress
  bool in_is_terminal = false;
  bool err_is_terminal = false;
  const SystemInfo& system;
  const Calendar& calendar;

  // How long the commands on records wait for a database that another program holds.
  std::chrono::milliseconds busy_timeout = kBusyTimeout;

  // A closed line. An empty device leaves it to the port number, mapped with the data folder.
  std::function<std::unique_ptr<SerialLine>(const std::string& device,
                                            const std::filesystem::path& data_folder)>
      make_serial_line;

  // Makes drawing possible, from now to the end of the run; no display is needed.
  std::function<void()> start_drawing = [] {};
};

}  // namespace vrx
