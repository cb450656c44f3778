#include "simulator/indicator_command.h"

#include <string>

#include "simulator/indicator.h"
#include "simulator/indicator_script.h"
#include "simulator/memory_file.h"
#include "simulator/pty_line.h"
#include "simulator/signals.h"

namespace vrx::simulator {

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
