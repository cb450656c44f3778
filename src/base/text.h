#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vrx {

// '0' to '9', in every locale.
[[nodiscard]] bool IsDigitChar(char character);

// TrimBlanks removes leading and trailing blanks (not tabs). TrimNulls first cuts the text at its
// first NUL.
[[nodiscard]] std::string TrimNulls(std::string_view text);
[[nodiscard]] std::string TrimBlanks(std::string_view text);

// Change ASCII letters only.
[[nodiscard]] std::string UpperCase(std::string_view text);
[[nodiscard]] bool EqualsIgnoringCase(std::string_view left, std::string_view right);

[[nodiscard]] std::int32_t CountChar(std::string_view text, char character);

// True if the part of a file title before the first "." has 1 to 8 characters.
[[nodiscard]] bool ValidDatabaseName(std::string_view file_title);

// ID of a row of the caption table: `text` if it begins with a digit, else "1053".
[[nodiscard]] std::string ResolveCaptionId(std::string_view text);

// Upper case of a UTF-8 text by Unicode's simple mapping, independent of the locale: each character
// becomes one character, so a sharp s stays. Malformed bytes stay, because a file name may have
// them.
[[nodiscard]] std::string UnicodeUpperCase(std::string_view text);

}  // namespace vrx
