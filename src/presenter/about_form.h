#pragma once

#include <string_view>

namespace vrx {

// What `ABOUT` shows under `lblPart`.
inline constexpr std::string_view kPartNumber = "70315-0042";

// The program's version as `ABOUT` and `SPLASH` show it: major, minor and revision with points
// between them.
std::string_view ProgramVersion();

}  // namespace vrx
