#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

// The first character of a text.
struct DecodedCharacter {
  std::optional<char32_t> character;  // nothing for a malformed sequence
  std::size_t length = 1;             // bytes taken
};

// The text is not empty.
DecodedCharacter DecodeUtf8(std::string_view text);

void AppendUtf8(std::string& text, char32_t character);

}  // namespace vrx
