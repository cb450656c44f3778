#include "base/text.h"

#include <random>

#include <gtest/gtest.h>

namespace vrx {
namespace {

TEST(IsDigitChar, IsTrueFrom0To9) {
  for (int byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(IsDigitChar(static_cast<char>(byte)), byte >= '0' && byte <= '9') << byte;
  }
}

TEST(TrimNulls, CutsAtTheFirstNullThenTrims) {
  EXPECT_EQ(TrimNulls(std::string_view("  a b \0 c", 9)), "a b");
  EXPECT_EQ(TrimNulls(std::string_view("\0abc", 4)), "");
  EXPECT_EQ(TrimNulls(" plain "), "plain");
  EXPECT_EQ(TrimNulls(""), "");
  EXPECT_EQ(TrimNulls("   "), "");
}

TEST(TrimBlanks, RemovesBlanksOnly) { EXPECT_EQ(TrimBlanks("  \ta  "), "\ta"); }

TEST(UpperCase, ChangesAsciiLettersOnly) {
  EXPECT_EQ(UpperCase("Barley-2b \xC3\xA4"), "BARLEY-2B \xC3\xA4");
}

TEST(EqualsIgnoringCase, ComparesWholeTexts) {
  EXPECT_TRUE(EqualsIgnoringCase("Comments", "comments"));
  EXPECT_TRUE(EqualsIgnoringCase("", ""));
  EXPECT_FALSE(EqualsIgnoringCase("Comments", "comment"));
  EXPECT_FALSE(EqualsIgnoringCase("a", "b"));
}

TEST(CountChar, CountsOccurrences) {
  EXPECT_EQ(CountChar("a,b,c", ','), 2);
  EXPECT_EQ(CountChar("abc", ','), 0);
  EXPECT_EQ(CountChar("", ','), 0);
}

TEST(ValidDatabaseName, NeedsOneToEightCharactersBeforeTheFirstDot) {
  EXPECT_TRUE(ValidDatabaseName("A"));
  EXPECT_TRUE(ValidDatabaseName("FEEDLOT1.RDB"));
  EXPECT_TRUE(ValidDatabaseName("LOT.2026.TDB"));
  EXPECT_FALSE(ValidDatabaseName("FEEDLOT12.RDB"));
  EXPECT_FALSE(ValidDatabaseName(".RDB"));
  EXPECT_FALSE(ValidDatabaseName(""));
}

TEST(ValidDatabaseName, CountsACharacterOfSeveralBytesAsOne) {
  EXPECT_TRUE(ValidDatabaseName("F\u00FCtterng.RDB"));
  EXPECT_FALSE(ValidDatabaseName("F\u00FCtterung.RDB"));
}

}  // namespace
}  // namespace vrx
