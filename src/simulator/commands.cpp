#include "simulator/commands.h"

#include <string>
#include <system_error>

#include "simulator/data_module.h"
#include "simulator/indicator.h"
#include "simulator/indicator_script.h"
#include "simulator/line_loop.h"
#include "simulator/pty_line.h"
#include "simulator/transmitter.h"

namespace vrx::simulator {

namespace {

void Play(const ModuleOptions& options, DataModule& module, Signals& signals, std::ostream& out,
          std::ostream& err) {
  PtyLine line(options.link);
  out << "ready " << options.link.string() << std::endl;

  Transmitter transmitter(options.baud);
  LineLoop loop(line, transmitter, module, signals);
  if (options.faults.hang_up) {
    loop.HangUpAfter(*options.faults.hang_up);
  }
  if (options.faults.xoff) {
    loop.SendXoffAfter(*options.faults.xoff);
  }
  if (options.faults.deaf) {
    loop.StopReadingAfter(*options.faults.deaf);
  }
  loop.Run([&] {
    if (!options.save) {
      return;
    }
    try {
      WriteFile(*options.save, module.Memory());
    } catch (const std::system_error& error) {
      err << "vrx2260sim: " << error.what() << std::endl;
    }
  });
}

}  // namespace

void RunModule(const ModuleOptions& options, std::ostream& out, std::ostream& err) {
  Signals signals;
  const auto log = [&err](const std::string& message) {
    err << "vrx2260sim: " << message << std::endl;
  };
  DataModule module(options.faults, log);
  std::optional<WorkingIndicator> indicator;
  if (options.work) {
    indicator.emplace(*options.work, log);
    module.CarryBy([&](const std::string& memory) { return indicator->Visit(memory); });
  }
  for (const auto& path : options.load) {
    module.Load(ReadFile(path));
  }
  Play(options, module, signals, out, err);
  module.ReportDropped();
  if (options.save) {
    WriteFile(*options.save, module.Memory());
  }
}

void RunIndicator(const IndicatorOptions& options, std::ostream& out, std::ostream& err) {
  const std::vector<Step> steps = ParseScript(ReadFile(options.script));
  Signals signals;
  PtyLine line(options.link);
  out << "ready " << options.link.string() << std::endl;
  if (!Indicator(line, signals).Play(steps)) {
    err << "vrx2260sim: stopped before the end of the script" << std::endl;
  }
}

}  // namespace vrx::simulator
