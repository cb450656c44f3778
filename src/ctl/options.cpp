#include "ctl/options.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "base/number.h"
#include "base/text.h"
#include "ctl/session.h"

namespace vrx {
namespace {

bool IsNumber(const std::string& port) {
  return !port.empty() && std::all_of(port.begin(), port.end(), IsDigitChar);
}

std::string ValidPort(const std::string& port) {
  if (port.empty()) {
    return "a port is a number or the path of a device";
  }
  if (!IsNumber(port) || ParseLong(port).value_or(0) > 0) {
    return "";
  }
  return "there is no port " + port;
}

}  // namespace

CLI::Option* PortOption::AddTo(CLI::App& command) {
  return command.add_option("--port", port_, "Port number or device path")
      ->required()
      ->type_name("DEV")
      ->check(ValidPort);
}

std::unique_ptr<SerialLine> PortOption::MakeLine(Session& session) const {
  return session.Context().make_serial_line(IsNumber(port_) ? "" : port_, session.DataFolder());
}

PrivateINI PortOption::Settings(Session& session) const {
  PrivateINI settings = session.Settings();
  if (IsNumber(port_)) {
    settings.SetSerialPort(port_);
  }
  return settings;
}

}  // namespace vrx
