#include "base/text.h"

#include <algorithm>

#include <unicode/uchar.h>

#include "base/encoding.h"

namespace vrx {
namespace {

constexpr std::string_view kFallbackCaptionId = "1053";
constexpr std::size_t kDatabaseNameLength = 8;

}  // namespace

bool IsDigitChar(char character) { return character >= '0' && character <= '9'; }

std::string TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) {
    return {};
  }
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string TrimNulls(std::string_view text) { return TrimBlanks(text.substr(0, text.find('\0'))); }

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  for (char& character : upper) {
    if (character >= 'a' && character <= 'z') {
      character = static_cast<char>(character - 'a' + 'A');
    }
  }
  return upper;
}

bool EqualsIgnoringCase(std::string_view left, std::string_view right) {
  return left.size() == right.size() && UpperCase(left) == UpperCase(right);
}

std::int32_t CountChar(std::string_view text, char character) {
  return static_cast<std::int32_t>(std::count(text.begin(), text.end(), character));
}

bool ValidDatabaseName(std::string_view file_title) {
  const std::size_t length = CountCharacters(file_title.substr(0, file_title.find('.')));
  return length >= 1 && length <= kDatabaseNameLength;
}

std::string ResolveCaptionId(std::string_view text) {
  return std::string(!text.empty() && IsDigitChar(text.front()) ? text : kFallbackCaptionId);
}

std::string UnicodeUpperCase(std::string_view text) {
  std::string upper;
  upper.reserve(text.size());
  while (!text.empty()) {
    const DecodedCharacter first = DecodeUtf8(text);
    if (first.character) {
      AppendUtf8(upper, static_cast<char32_t>(u_toupper(static_cast<UChar32>(*first.character))));
    } else {
      upper.append(text.substr(0, first.length));
    }
    text.remove_prefix(first.length);
  }
  return upper;
}

}  // namespace vrx
