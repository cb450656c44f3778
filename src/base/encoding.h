#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

// Exchange files and the serial line hold one byte per character, Windows-1252; databases and the
// screen hold UTF-8. These two are the only crossing. The five bytes that Windows-1252 leaves
// undefined (0x81 0x8D 0x8F 0x90 0x9D) stand for the control characters of the same number, so
// every byte string survives the way there and back.
std::string Windows1252ToUtf8(std::string_view bytes);

// Characters outside Windows-1252, and malformed UTF-8, become "?".
std::string Utf8ToWindows1252(std::string_view text);

// The first character of a text.
struct DecodedCharacter {
  std::optional<char32_t> character;  // nothing for a malformed sequence
  std::size_t length = 1;             // bytes taken
};

// The text is not empty.
DecodedCharacter DecodeUtf8(std::string_view text);

void AppendUtf8(std::string& text, char32_t character);

}  // namespace vrx
