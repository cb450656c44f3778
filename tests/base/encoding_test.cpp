#include "base/encoding.h"

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/malformed_utf8.h"

namespace vrx::testing {
namespace {

TEST(Windows1252ToUtf8, LeavesAsciiAsItIs) {
  EXPECT_EQ(Windows1252ToUtf8("Barley\r\n\x02\x7F"), "Barley\r\n\x02\x7F");
  EXPECT_EQ(Windows1252ToUtf8(std::string(1, '\0')), std::string(1, '\0'));
}

TEST(Windows1252ToUtf8, MapsTheBytes80To9F) {
  EXPECT_EQ(Windows1252ToUtf8("\x80"), "€");
  EXPECT_EQ(Windows1252ToUtf8("\x85"), "…");
  EXPECT_EQ(Windows1252ToUtf8("\x8A\x9A"), "Šš");
  EXPECT_EQ(Windows1252ToUtf8("\x91\x92\x93\x94"), "‘’“”");
  EXPECT_EQ(Windows1252ToUtf8("\x96\x97"), "–—");
  EXPECT_EQ(Windows1252ToUtf8("\x9F"), "Ÿ");
}

TEST(Windows1252ToUtf8, MapsTheUpperHalfOfLatin1) {
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
  for (const MalformedText& text : MalformedTexts()) {
    EXPECT_EQ(Utf8ToWindows1252(text.bytes), text.windows_1252)
        << ::testing::PrintToString(text.bytes);
  }
}

TEST(DecodeUtf8, FindsTheMalformedSequences) {
  for (const MalformedText& text : MalformedTexts()) {
    std::vector<std::size_t> lengths;
    std::size_t malformed = 0;
    for (std::string_view rest = text.bytes; !rest.empty();) {
      const DecodedCharacter decoded = DecodeUtf8(rest);
      lengths.push_back(decoded.length);
      malformed += decoded.character ? 0 : 1;
      rest.remove_prefix(decoded.length);
    }
    EXPECT_EQ(lengths, text.sequences) << ::testing::PrintToString(text.bytes);
    EXPECT_GT(malformed, 0U) << ::testing::PrintToString(text.bytes);
  }
}

TEST(DecodeUtf8, ReadsWhatAppendUtf8Writes) {
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    if (character >= 0xD800 && character <= 0xDFFF) {
      continue;
    }
    std::string text;
    AppendUtf8(text, character);
    const std::size_t length = character < 0x80      ? 1
                               : character < 0x800   ? 2
                               : character < 0x10000 ? 3
                                                     : 4;
    ASSERT_EQ(text.size(), length);
    text += 'z';
    const DecodedCharacter decoded = DecodeUtf8(text);
    ASSERT_EQ(decoded.character, character);
    ASSERT_EQ(decoded.length, length);
  }
}

TEST(DecodeUtf8, DecodesSequencesOfEveryLength) {
  EXPECT_EQ(DecodeUtf8("\u20AC").character, 0x20AC);
  EXPECT_EQ(DecodeUtf8("\U0001F404").character, 0x1F404);
  EXPECT_EQ(DecodeUtf8(std::string_view("\0", 1)).character, 0);
}

TEST(CountCharacters, CountsEveryByteThatIsNotAContinuation) {
  EXPECT_EQ(CountCharacters(""), 0U);
  EXPECT_EQ(CountCharacters("F\u00FCtter \U0001F404"), 8U);
  for (const MalformedText& text : MalformedTexts()) {
    EXPECT_EQ(CountCharacters(text.bytes), text.counted) << ::testing::PrintToString(text.bytes);
  }
}

TEST(FirstCharacters, CutsBetweenCharacters) {
  EXPECT_EQ(FirstCharacters("F\u00FCtter", 0), "");
  EXPECT_EQ(FirstCharacters("F\u00FCtter", 2), "F\u00FC");
  EXPECT_EQ(FirstCharacters("F\u00FCtter", 6), "F\u00FCtter");
  EXPECT_EQ(FirstCharacters("F\u00FCtter", 7), "F\u00FCtter");
  EXPECT_EQ(FirstCharacters("", 1), "");
}

TEST(Encoding, RoundTripsEveryByte) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string bytes(1, static_cast<char>(byte));
    EXPECT_EQ(Utf8ToWindows1252(Windows1252ToUtf8(bytes)), bytes) << byte;
  }
}

TEST(Encoding, RoundTripsRandomByteStrings) {
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

TEST(Encoding, AcceptsAnyBytesAsUtf8) {
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
}  // namespace vrx::testing
