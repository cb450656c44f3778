#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

// First character of a UTF-8 text.
struct DecodedCharacter {
  std::optional<char32_t> character;  // nothing for a malformed sequence
  std::size_t length = 1;             // bytes, also of a malformed sequence
};

// `text` must not be empty.
[[nodiscard]] DecodedCharacter DecodeUtf8(std::string_view text);

// `character` must not be a surrogate.
void AppendUtf8(std::string& text, char32_t character);

// Number of characters of a UTF-8 text. In malformed text, every byte that is not a continuation
// byte counts as one character.
[[nodiscard]] std::size_t CountCharacters(std::string_view text);
// The first `limit` characters, counted in the same way.
[[nodiscard]] std::string_view FirstCharacters(std::string_view text, std::size_t limit);

// Exchange files and the serial line use Windows-1252, one byte per character; databases and the
// screen use UTF-8. Only these two functions convert between them. The five bytes that Windows-1252
// leaves undefined (0x81 0x8D 0x8F 0x90 0x9D) map to the control characters of the same number, so
// every byte string survives a round trip.
[[nodiscard]] std::string Windows1252ToUtf8(std::string_view bytes);

// Characters outside Windows-1252 and malformed UTF-8 become "?".
[[nodiscard]] std::string Utf8ToWindows1252(std::string_view text);

}  // namespace vrx
