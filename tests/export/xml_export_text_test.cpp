#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "export/xml_export.h"
#include "support/malformed_utf8.h"

namespace vrx::testing {
namespace {

using namespace std::string_view_literals;

std::string Text(std::string_view utf8) {
  std::string xml;
  AppendXmlText(utf8, xml);
  return xml;
}

std::string Attribute(std::string_view utf8) {
  std::string xml;
  AppendXmlAttribute(utf8, xml);
  return xml;
}

TEST(XmlText, KeepsPlainAndAccentedCharacters) {
  EXPECT_EQ(Text("PEN 1 'a' \"b\""), "PEN 1 'a' \"b\"");
  EXPECT_EQ(Text("CAF\u00C9 \u20AC \U0001F404"), "CAF\u00C9 \u20AC \U0001F404");
}

TEST(XmlText, EscapesWhatXmlReadsAsMarkup) {
  EXPECT_EQ(Text("<A&B>]]>"), "&lt;A&amp;B&gt;]]&gt;");
  EXPECT_EQ(Attribute("<A&\"B\">"), "&lt;A&amp;&quot;B&quot;&gt;");
}

TEST(XmlText, KeepsLineEndsThroughAReadersNormalising) {
  EXPECT_EQ(Text("a\r\nb\tc"), "a&#13;\nb\tc");
  EXPECT_EQ(Attribute("a\r\nb\tc"), "a&#13;&#10;b&#9;c");
}

TEST(XmlText, ReplacesWhatXmlDoesNotKnow) {
  EXPECT_EQ(Text("a\0b\x01"
                 "c\x1F"sv),
            "a\uFFFDb\uFFFDc\uFFFD");
  EXPECT_EQ(Text("\xEF\xBF\xBE"), "\uFFFD");  // U+FFFE
  EXPECT_EQ(Text("\xED\xA0\x80"), "\uFFFD");  // a surrogate
}

TEST(XmlText, ReplacesMalformedText) {
  for (const MalformedText& text : MalformedTexts()) {
    EXPECT_EQ(Text(text.bytes), text.xml) << ::testing::PrintToString(text.bytes);
  }
}

TEST(XmlText, KeepsTheCharactersAtTheLimits) {
  for (const char* const text :
       {"\u0080", "\u07FF", "\u0800", "\uD7FF", "\uE000", "\uFFFD", "\U00010000", "\U0010FFFF"}) {
    EXPECT_EQ(Text(text), text);
  }
  EXPECT_EQ(Text("\uFFFE\uFFFF"), "\uFFFD\uFFFD");
}

TEST(XmlElementName, HasNoBlankAndNoPercent) {
  EXPECT_EQ(XmlElementName("IngPercent"), "IngPercent");
  EXPECT_EQ(XmlElementName("Ing%"), "Ing");
  EXPECT_EQ(XmlElementName("Feed Wt"), "Feed_Wt");
}

}  // namespace
}  // namespace vrx::testing
