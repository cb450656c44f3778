#pragma once

#include <filesystem>
#include <ostream>

namespace vrx::simulator {

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
