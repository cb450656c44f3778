#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

// The first character of a text in UTF-8.
struct DecodedCharacter {
  std::optional<char32_t> character;  // nothing for a malformed sequence
  std::size_t length = 1;             // bytes; of a malformed sequence those that are there
};

// The text is not empty.
[[nodiscard]] DecodedCharacter DecodeUtf8(std::string_view text);

// The character is not a surrogate.
void AppendUtf8(std::string& text, char32_t character);

// The characters of a text in UTF-8. Of malformed text, every byte counts that does not continue a
// character.
[[nodiscard]] std::size_t CountCharacters(std::string_view text);
// The text up to the first `limit` of these.
[[nodiscard]] std::string_view FirstCharacters(std::string_view text, std::size_t limit);

// Exchange files and the serial line hold one byte per character, Windows-1252; databases and the
// screen hold UTF-8. These two are the only crossing. The five bytes that Windows-1252 leaves
// undefined (0x81 0x8D 0x8F 0x90 0x9D) stand for the control characters of the same number, so
// every byte string survives the way there and back.
[[nodiscard]] std::string Windows1252ToUtf8(std::string_view bytes);

// Characters outside Windows-1252, and malformed UTF-8, become "?".
[[nodiscard]] std::string Utf8ToWindows1252(std::string_view text);

}  // namespace vrx
