#pragma once

#include <string_view>

namespace vrx {

// Title of message boxes without a title, and name of the per-user settings.
inline constexpr std::string_view kApplicationTitle = "VRX(2260)";

// Blank databases in the program's directory. They are only copied, never opened for writing.
inline constexpr std::string_view kRecipeTemplateName = "QXNULRDB.MDB";
inline constexpr std::string_view kTransactionTemplateName = "QXNULXDB.MDB";

}  // namespace vrx
