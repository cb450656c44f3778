#pragma once

#include <string_view>

namespace vrx {

// What the program calls itself: the title of a message box that has none of its own, and the name
// of the per-user settings.
inline constexpr std::string_view kApplicationTitle = "VRX(2260)";

// The blank databases in the program's directory. They stay there and are only copied.
inline constexpr std::string_view kRecipeTemplateName = "QXNULRDB.MDB";
inline constexpr std::string_view kTransactionTemplateName = "QXNULXDB.MDB";

}  // namespace vrx
