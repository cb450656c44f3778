#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <ostream>
#include <vector>

#include "simulator/indicator.h"
#include "simulator/transmitter.h"

namespace vrx::simulator {

inline constexpr std::uint32_t kLineBaud = 19200;

// vrx2260sim module
struct ModuleOptions {
  std::filesystem::path link;
  std::vector<std::filesystem::path> load;  // one behind the other in memory
  std::optional<std::filesystem::path> save;
  std::uint32_t baud = kLineBaud;  // 0 does not pace
  Faults faults;
  std::optional<WorkOptions> work;
};

// Plays the data module until a signal stops it or a fault hangs it up. Says "ready PATH" on `out`
// once the link stands, messages on `err`. Throws std::system_error with a text for the user.
void RunModule(const ModuleOptions& options, std::ostream& out, std::ostream& err);

// vrx2260sim indicator
struct IndicatorOptions {
  std::filesystem::path link;
  std::filesystem::path script;
};

// Plays the indicator of the direct connection until its script ends or a signal stops it. Says
// "ready PATH" on `out` once the link stands, on `err` that it was stopped. Throws ScriptError or
// std::system_error before the link stands, later Mismatch or std::system_error; their texts are
// for the user.
void RunIndicator(const IndicatorOptions& options, std::ostream& out, std::ostream& err);

}  // namespace vrx::simulator
