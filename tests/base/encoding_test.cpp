#include "base/encoding.h"

#include <random>

#include <gtest/gtest.h>

namespace vrx {
namespace {

TEST(Windows1252ToUtf8, LeavesAsciiAsItIs) {
  EXPECT_EQ(Windows1252ToUtf8("Barley\r\n\x02\x7F"), "Barley\r\n\x02\x7F");
  EXPECT_EQ(Windows1252ToUtf8(std::string(1, '\0')), std::string(1, '\0'));
}

TEST(Windows1252ToUtf8, KnowsTheCharactersBetween80And9F) {
  EXPECT_EQ(Windows1252ToUtf8("\x80"), "€");
  EXPECT_EQ(Windows1252ToUtf8("\x85"), "…");
  EXPECT_EQ(Windows1252ToUtf8("\x8A\x9A"), "Šš");
  EXPECT_EQ(Windows1252ToUtf8("\x91\x92\x93\x94"), "‘’“”");
  EXPECT_EQ(Windows1252ToUtf8("\x96\x97"), "–—");
  EXPECT_EQ(Windows1252ToUtf8("\x9F"), "Ÿ");
}

TEST(Windows1252ToUtf8, KnowsTheUpperHalfOfLatin1) {
  EXPECT_EQ(Windows1252ToUtf8("\xA0\xB0\xC4\xDF\xFF"), "\u00A0°Äßÿ");
}

TEST(Windows1252ToUtf8, TurnsTheFiveUndefinedBytesIntoTheirControlCharacters) {
  EXPECT_EQ(Windows1252ToUtf8("\x81\x8D\x8F\x90\x9D"), "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D");
}

TEST(Utf8ToWindows1252, TurnsCharactersOutsideIntoAQuestionMark) {
  EXPECT_EQ(Utf8ToWindows1252("a\u4E2Db"), "a?b");
  EXPECT_EQ(Utf8ToWindows1252("\U0001F404"), "?");
  EXPECT_EQ(Utf8ToWindows1252("\xC2\x80"), "?");  // byte 0x80 is the euro sign
  EXPECT_EQ(Utf8ToWindows1252("\u0100"), "?");
}

TEST(Utf8ToWindows1252, TurnsMalformedTextIntoQuestionMarks) {
  EXPECT_EQ(Utf8ToWindows1252("\xFF"), "?");
  EXPECT_EQ(Utf8ToWindows1252("a\x80z"), "a?z");          // continuation without a lead
  EXPECT_EQ(Utf8ToWindows1252("\xC3"), "?");              // cut off
  EXPECT_EQ(Utf8ToWindows1252("\xE2\x82"), "?");          // cut off later
  EXPECT_EQ(Utf8ToWindows1252("\xC3z"), "?z");            // the next character stands
  EXPECT_EQ(Utf8ToWindows1252("\xC1\x81"), "?");          // "A" in too many bytes
  EXPECT_EQ(Utf8ToWindows1252("\xED\xA0\x80"), "?");      // surrogate
  EXPECT_EQ(Utf8ToWindows1252("\xF5\x80\x80\x80"), "?");  // beyond the last character
}

TEST(Encoding, BringsEveryByteBack) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string bytes(1, static_cast<char>(byte));
    EXPECT_EQ(Utf8ToWindows1252(Windows1252ToUtf8(bytes)), bytes) << byte;
  }
}

TEST(Encoding, BringsRandomByteStringsBack) {
  std::mt19937 random(20260105);
  std::uniform_int_distribution<int> byte(0, 255);
  for (int round = 0; round < 500; ++round) {
    std::string bytes(static_cast<std::size_t>(byte(random)), '\0');
    for (char& c : bytes) {
      c = static_cast<char>(byte(random));
    }
    EXPECT_EQ(Utf8ToWindows1252(Windows1252ToUtf8(bytes)), bytes);
  }
}

TEST(Encoding, TakesAnyBytesForUtf8) {
  std::mt19937 random(42);
  std::uniform_int_distribution<int> byte(0, 255);
  for (int round = 0; round < 2000; ++round) {
    std::string bytes(static_cast<std::size_t>(round % 12), '\0');
    for (char& c : bytes) {
      c = static_cast<char>(byte(random));
    }
    EXPECT_LE(Utf8ToWindows1252(bytes).size(), bytes.size());
  }
}

}  // namespace
}  // namespace vrx
