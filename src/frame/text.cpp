#include "frame/text.h"

#include <algorithm>

#include "frame/error.h"
#include "frame/number.h"
#include "frame/private_ini.h"
#include "platform/operator.h"

namespace vrx {
namespace {

constexpr std::string_view kFallbackCaptionId = "1053";
constexpr std::size_t kNameLength = 6;
constexpr std::size_t kDatabaseNameLength = 8;

bool IsDigitKey(int key) { return key >= '0' && key <= '9'; }

bool IsUpperKey(int key) { return key >= 'A' && key <= 'Z'; }

int UpperKey(int key) { return key >= 'a' && key <= 'z' ? key - 'a' + 'A' : key; }

// UTF-8: every character has one byte that is none of these.
bool IsContinuationByte(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

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

int FilterNameKey(int key) {
  const int upper = UpperKey(key);
  if (upper == 'B' || upper == 'D') {
    return upper - 'A' + 'a';
  }
  const bool passes = IsUpperKey(upper) || IsDigitKey(upper) || upper == '/' || upper == '+' ||
                      upper == '-' || upper == ' ';
  return passes ? upper : 0;
}

int FilterDescriptionKey(int key) {
  const bool passes =
      IsUpperKey(UpperKey(key)) || IsDigitKey(key) || key == '+' || key == '-' || key == ' ';
  return passes ? key : 0;
}

int FilterDigitKey(int key) { return IsDigitKey(key) ? key : 0; }

int FilterDigitKey2(int key) { return FilterDigitKey(key); }

int FilterDecimalKey(int key) { return IsDigitKey(key) || key == '.' ? key : 0; }

std::string NormalizeNameChar(std::string_view character) {
  if (character.empty()) {
    return {};
  }
  const int key = FilterNameKey(static_cast<unsigned char>(character.front()));
  return key == 0 ? std::string() : std::string(1, static_cast<char>(key));
}

std::string AbbreviateDescription(std::string_view description) {
  std::string name;
  std::size_t characters = 0;
  for (const char& byte : description) {
    if (IsContinuationByte(byte)) {
      continue;
    }
    if (++characters > kNameLength) {
      break;
    }
    name += NormalizeNameChar({&byte, 1});
  }
  return name;
}

bool ValidPercentText(std::string_view text) {
  try {
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos) {
      const std::int16_t percent = TextToInt(text);
      return percent >= 0 && percent <= 100;
    }
    const std::size_t decimals = text.size() - (point + 1);
    return decimals <= 2 && TextToSingle(text) <= 100.0F;
  } catch (const ConversionError&) {
    return false;
  }
}

bool ValidDatabaseName(std::string_view file_title) {
  const std::string_view name = file_title.substr(0, file_title.find('.'));
  const auto length = static_cast<std::size_t>(
      std::count_if(name.begin(), name.end(), [](char byte) { return !IsContinuationByte(byte); }));
  return length >= 1 && length <= kDatabaseNameLength;
}

std::string ResolveCaptionId(std::string_view text) {
  return std::string(!text.empty() && IsDigitChar(text.front()) ? text : kFallbackCaptionId);
}

void BeepIfEnabled(Operator& op, const PrivateINI& settings) {
  if (settings.EnableBeeperOn()) {
    op.Beep();
  }
}

}  // namespace vrx
