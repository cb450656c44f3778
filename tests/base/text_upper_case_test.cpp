#include <clocale>
#include <cwctype>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "base/encoding.h"
#include "base/text.h"

namespace vrx::testing {
namespace {

TEST(UnicodeUpperCase, MapsEachCharacterToOne) {
  for (const auto& [text, upper] :
       {std::pair<std::string, std::string>{"Barley-2b", "BARLEY-2B"},
        {"Gr\u00FCnfutter", "GR\u00DCNFUTTER"},
        {"stra\u00DFe", "STRA\u00DFE"},      // Two letters in a longer mapping.
        {"\u00FF", "\u0178"},                // Not in the same block.
        {"\u0131\u017F", "IS"},              // Shorter in bytes.
        {"\u0250", "\u2C6F"},                // Longer in bytes.
        {"\u01C6 \u01C5", "\u01C4 \u01C4"},  // Has a title case besides.
        {"\u1FB3", "\u1FBC"},                // A longer mapping differs.
        {"\u0436\u03C3\u03C2", "\u0416\u03A3\u03A3"},
        {"\U00010428", "\U00010400"},
        {"", ""}}) {
    EXPECT_EQ(UnicodeUpperCase(text), upper) << text;
  }
}

TEST(UnicodeUpperCase, LeavesMalformedUtf8Unchanged) {
  const std::string latin = "f\xFCtter";
  EXPECT_EQ(UnicodeUpperCase(latin), "F\xFCTTER");
  EXPECT_EQ(UnicodeUpperCase("a\xE2\x82"), "A\xE2\x82");  // Cut off.
  EXPECT_EQ(UnicodeUpperCase("\xC0\x80"
                             "b\xED\xA0\x80"
                             "c"),
            "\xC0\x80"
            "B\xED\xA0\x80"
            "C");
  EXPECT_EQ(UnicodeUpperCase(std::string("a\0b", 3)), std::string("A\0B", 3));
}

// The C library has the same table, in a locale that every Linux system has.
TEST(UnicodeUpperCase, AgreesWithTheCLibraryOnEveryCharacter) {
  const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  ASSERT_NE(unicode, nullptr);
  for (char32_t character = 1; character <= 0x10FFFF; ++character) {
    if (character >= 0xD800 && character <= 0xDFFF) {
      continue;
    }
    std::string text;
    AppendUtf8(text, character);
    std::string upper;
    AppendUtf8(upper, static_cast<char32_t>(towupper_l(static_cast<wint_t>(character), unicode)));
    ASSERT_EQ(UnicodeUpperCase(text), upper) << std::hex << static_cast<unsigned>(character);
  }
  freelocale(unicode);
}

}  // namespace
}  // namespace vrx::testing
