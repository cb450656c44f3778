#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vrx {

bool IsDigitChar(char character);

// Cuts at the first NUL, then trims blanks right and left.
std::string TrimNulls(std::string_view text);
std::string TrimBlanks(std::string_view text);

// ASCII letters only; other bytes stay.
std::string UpperCase(std::string_view text);
bool EqualsIgnoringCase(std::string_view left, std::string_view right);

std::int32_t CountChar(std::string_view text, char character);

// The part of a file title ahead of the first "." has 1 to 8 characters.
bool ValidDatabaseName(std::string_view file_title);

// "7" stands for a row of the caption table, anything that does not begin with a digit for row
// 1053; a text that begins with a digit comes back whole.
std::string ResolveCaptionId(std::string_view text);

// A UTF-8 text by the simple mapping of Unicode: every character becomes one character, whatever
// the locale. So a sharp s stays as it is. Bytes that are no UTF-8 stay too: a file may have such a
// name.
std::string UnicodeUpperCase(std::string_view text);

}  // namespace vrx
