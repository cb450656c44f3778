#pragma once

#include <string>
#include <string_view>

namespace vrx {

// Decodes a text of a Jet 4 file to UTF-8. It is stored as UTF-16 or, after the bytes FF FE, as
// one byte per character, with a NUL at each switch between one byte and UTF-16. Invalid characters
// become U+FFFD.
[[nodiscard]] std::string DecodeJetText(std::string_view stored);

}  // namespace vrx
