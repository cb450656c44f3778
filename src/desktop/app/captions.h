#pragma once

#include <optional>
#include <string_view>

namespace vrx {

// The text of a row of the caption table, ids 1000 to 1134; nothing for an id without a row.
std::optional<std::string_view> CaptionText(int id);

}  // namespace vrx
