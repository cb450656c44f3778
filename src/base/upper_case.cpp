#include "base/upper_case.h"

#include <unicode/uchar.h>

#include "base/utf8.h"

namespace vrx {

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
