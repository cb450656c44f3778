#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <ostream>
#include <vector>

#include "simulator/indicator.h"
#include "simulator/transmitter.h"

namespace vrx::simulator {

// vrx2260sim module
struct ModuleOptions {
  std::filesystem::path link;
  std::vector<std::filesystem::path> load;  // in this order in memory
  std::optional<std::filesystem::path> save;
  std::uint32_t baud = kLineBaud;  // 0 does not pace
  Faults faults;
  std::optional<WorkOptions> work;
};

// vrx2260sim indicator
struct IndicatorOptions {
  std::filesystem::path link;
  std::filesystem::path script;
};

// Simulates the data module until a signal stops it or a fault hangs up. Writes "ready PATH" to
// `out` when the link exists, and messages to `err`. Throws std::system_error with a text for the
// user.
void RunModule(const ModuleOptions& options, std::ostream& out, std::ostream& err);

// Simulates the indicator of the direct connection until its script ends or a signal stops it.
// Writes "ready PATH" to `out` when the link exists, and a message to `err` if it was stopped.
// Throws ScriptError, Mismatch or std::system_error with a text for the user.
void RunIndicator(const IndicatorOptions& options, std::ostream& out, std::ostream& err);

}  // namespace vrx::simulator
