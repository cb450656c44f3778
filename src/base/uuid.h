#pragma once

#include <string>
#include <string_view>

namespace vrx {

// A random UUID (version 4) in lower-case hexadecimal.
[[nodiscard]] std::string NewUuid();

// True for 32 hexadecimal digits in the five usual groups.
[[nodiscard]] bool IsUuid(std::string_view text);

}  // namespace vrx
