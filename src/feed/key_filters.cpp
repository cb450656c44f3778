#include "feed/key_filters.h"

#include "base/encoding.h"
#include "base/error.h"
#include "base/number.h"
#include "base/translation.h"

namespace vrx {
namespace {

constexpr std::size_t kNameLength = 6;

bool IsDigitKey(int key) { return key >= '0' && key <= '9'; }

bool IsUpperKey(int key) { return key >= 'A' && key <= 'Z'; }

int UpperKey(int key) { return key >= 'a' && key <= 'z' ? key - 'a' + 'A' : key; }

}  // namespace

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

std::string_view DigitRefusal(int key) {
  return IsDecimalKey(key) ? kTakesWholeNumbers : kTakesDigits;
}

std::string FullRefusal(std::size_t limit) {
  return Tr("Full: at most %1 characters", {std::to_string(limit)});
}

std::string NormalizeNameChar(std::string_view character) {
  if (character.empty()) {
    return {};
  }
  const int key = FilterNameKey(static_cast<unsigned char>(character.front()));
  return key == 0 ? std::string() : std::string(1, static_cast<char>(key));
}

std::string AbbreviateDescription(std::string_view description) {
  std::string name;
  for (const char& byte : FirstCharacters(description, kNameLength)) {
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

int AutoAbbreviation::DescriptionKey(int key, std::size_t length) {
  const bool is_backspace = key == kBackspaceKey;
  typed_ = is_backspace || length < kDescriptionLimit;
  if (is_backspace) {
    return key;
  }
  return typed_ ? FilterDescriptionKey(key) : 0;
}

std::optional<std::string> AutoAbbreviation::LeaveDescription(std::string_view description,
                                                              bool auto_abbreviate) const {
  if (!typed_ || !auto_abbreviate) {
    return std::nullopt;
  }
  std::string name = AbbreviateDescription(description);
  if (name.find_first_not_of(' ') == std::string::npos) {
    return std::nullopt;
  }
  return name;
}

}  // namespace vrx
