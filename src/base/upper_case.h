#pragma once

#include <string>
#include <string_view>

namespace vrx {

// A UTF-8 text by the simple mapping of Unicode: every character becomes one character, whatever
// the locale. So a sharp s stays as it is. Bytes that are no UTF-8 stay too: a file may have such a
// name.
std::string UnicodeUpperCase(std::string_view text);

}  // namespace vrx
