#pragma once

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

}  // namespace vrx
