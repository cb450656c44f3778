#include "feed/auto_abbreviation.h"

#include "feed/record_fields.h"
#include "frame/text.h"

namespace vrx {

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
