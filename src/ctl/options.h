#pragma once

#include <memory>
#include <string>

#include "ctl/command_context.h"
#include "settings/settings.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the library names it so
class App;
class Option;
}  // namespace CLI

namespace vrx {

class Session;

// --port of the commands that talk over a line: a port number or the path of a device.
class PortOption {
 public:
  // May be called for several commands, of which one is chosen. The option keeps a reference.
  CLI::Option* AddTo(CLI::App& command);

  std::unique_ptr<SerialLine> MakeLine(Session& session) const;

  // The settings with the port of this run; they are not saved.
  PrivateINI Settings(Session& session) const;

 private:
  std::string port_;
};

}  // namespace vrx
