#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vrx {

class Operator;
class PrivateINI;

bool IsDigitChar(char character);

// Cuts at the first NUL, then trims blanks right and left.
std::string TrimNulls(std::string_view text);
std::string TrimBlanks(std::string_view text);

// ASCII letters only; other bytes stay.
std::string UpperCase(std::string_view text);
bool EqualsIgnoringCase(std::string_view left, std::string_view right);

std::int32_t CountChar(std::string_view text, char character);

// Key filters: the key's code in, the code to let through out, 0 to drop it. A backspace is not let
// through by any of them: the field tests for it first. The indicator's display shows the letters b
// and d only in lower case, which is why every name has them so.
int FilterNameKey(int key);         // A-Z upper-cased but b and d, digits, "/", "+", "-", blank
int FilterDescriptionKey(int key);  // letters as typed, digits, "+", "-", blank
int FilterDigitKey(int key);        // ration targets and pen feed
int FilterDigitKey2(int key);       // dry matter, head count, the ration grid
int FilterDecimalKey(int key);      // digits and "."

// The text form of FilterNameKey: one character in, one or none out.
std::string NormalizeNameChar(std::string_view character);

// A name from the first six characters of a description; a dropped character leaves no gap and is
// not replaced by a seventh.
std::string AbbreviateDescription(std::string_view description);

// A percentage as typed into a recipe line: 0 to 100 with at most two decimals; "" passes.
bool ValidPercentText(std::string_view text);

// The part of a file title ahead of the first "." has 1 to 8 characters.
bool ValidDatabaseName(std::string_view file_title);

// "7" stands for a row of the caption table, anything that does not begin with a digit for row
// 1053; a text that begins with a digit comes back whole.
std::string ResolveCaptionId(std::string_view text);

void BeepIfEnabled(Operator& op, const PrivateINI& settings);

}  // namespace vrx
