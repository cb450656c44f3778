#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace vrx::testing {

// A text that is not valid UTF-8, and how it must be decoded.
struct MalformedText {
  std::string_view bytes;
  std::vector<std::size_t> sequences;  // their lengths, those of good characters among them
  std::size_t counted;                 // characters
  std::string_view windows_1252;
  std::string_view xml;
};

inline const std::vector<MalformedText>& MalformedTexts() {
  static const std::vector<MalformedText> kTexts = {
      // Bytes that begin nothing.
      {"\x80", {1}, 0, "?", "\uFFFD"},
      {"a\xBF\xBFz", {1, 1, 1, 1}, 2, "a??z", "a\uFFFD\uFFFDz"},
      {"\xF8\x88\x80\x80\x80", {1, 1, 1, 1, 1}, 1, "?????", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xFE\xFFz", {1, 1, 1}, 3, "??z", "\uFFFD\uFFFDz"},
      // Cut off, by the end or by another character.
      {"\xC3", {1}, 1, "?", "\uFFFD"},
      {"\xE2\x82", {2}, 1, "?", "\uFFFD\uFFFD"},
      {"\xF0\x9F\x90", {3}, 1, "?", "\uFFFD\uFFFD\uFFFD"},
      {"\xC3(", {1, 1}, 2, "?(", "\uFFFD("},
      {"\xE2\x82\xC3\xA4", {2, 2}, 2, "?\xE4", "\uFFFD\uFFFD\u00E4"},
      {"\xF0\x9F\x90z", {3, 1}, 2, "?z", "\uFFFD\uFFFD\uFFFDz"},
      // Longer than they need to be.
      {"\xC0\xAF", {2}, 1, "?", "\uFFFD\uFFFD"},
      {"\xC1\xBFz", {2, 1}, 2, "?z", "\uFFFD\uFFFDz"},
      {"\xE0\x9F\xBF", {3}, 1, "?", "\uFFFD\uFFFD\uFFFD"},
      {"\xF0\x8F\xBF\xBF", {4}, 1, "?", "\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xF0\x8D\xA0\x80", {4}, 1, "?", "\uFFFD\uFFFD\uFFFD\uFFFD"},
      // Surrogates, and numbers above the last character.
      {"\xED\xA0\x80", {3}, 1, "?", "\uFFFD"},
      {"\xED\xBF\xBF\x80", {3, 1}, 1, "??", "\uFFFD\uFFFD"},
      {"\xF4\x90\x80\x80", {4}, 1, "?", "\uFFFD"},
      {"\xF7\xBF\xBF\xBFz", {4, 1}, 2, "?z", "\uFFFDz"},
      {"\xF5\x80\x80", {3}, 1, "?", "\uFFFD\uFFFD\uFFFD"},
  };
  return kTexts;
}

}  // namespace vrx::testing
