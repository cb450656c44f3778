#include "legacy/jet_text.h"

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

using namespace std::string_view_literals;

TEST(JetText, ReadsUtf16) {
  EXPECT_EQ(DecodeJetText("P\0e\0\xF1\0a\0"sv),
            "Pe\xC3\xB1"
            "a");
  EXPECT_EQ(DecodeJetText(""), "");
}

TEST(JetText, ReadsTheCompressedForm) {
  EXPECT_EQ(DecodeJetText("\xFF\xFEPe\xF1"
                          "a"),
            "Pe\xC3\xB1"
            "a");
}

TEST(JetText, TakesTurnsAtANul) {
  // "A", then U+20AC in two bytes, then "B".
  EXPECT_EQ(DecodeJetText("\xFF\xFE"
                          "A\0\xAC\x20\0B"sv),
            "A\xE2\x82\xAC"
            "B");
}

TEST(JetText, MayEndWithACharacterOfTwoBytes) {
  EXPECT_EQ(DecodeJetText("\xFF\xFE\0\xAC\x20"sv), "\xE2\x82\xAC");
}

TEST(JetText, ReadsCharactersOfTwoUnits) {
  EXPECT_EQ(DecodeJetText("\x3D\xD8\x00\xDE"sv), "\xF0\x9F\x98\x80");
}

TEST(JetText, ReadsPairsFromTheFirstToTheLastUnit) {
  EXPECT_EQ(DecodeJetText("\x00\xD8\x00\xDC"sv), "\xF0\x90\x80\x80");
  EXPECT_EQ(DecodeJetText("\xFF\xDB\xFF\xDF"sv), "\xF4\x8F\xBF\xBF");
  EXPECT_EQ(DecodeJetText("\xFF\xD7\x00\xE0"sv), "\xED\x9F\xBF\xEE\x80\x80") << "no pair";
  EXPECT_EQ(DecodeJetText("\x00\xD8\xFF\xDB"sv), "\xEF\xBF\xBD\xEF\xBF\xBD") << "two first units";
  EXPECT_EQ(DecodeJetText("\x00\xDC\x00\xDC"sv), "\xEF\xBF\xBD\xEF\xBF\xBD") << "two second units";
}

TEST(JetText, WritesAsManyBytesAsACharacterTakes) {
  EXPECT_EQ(DecodeJetText("\x7F\x00\x80\x00\xFF\x07\x00\x08"sv),
            "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80");
}

TEST(JetText, MarksWhatIsNoCharacter) {
  EXPECT_EQ(DecodeJetText("A\0B"sv), "A\xEF\xBF\xBD");  // half a unit
  EXPECT_EQ(DecodeJetText("\x3D\xD8"
                          "A\0"sv),
            "\xEF\xBF\xBD"
            "A");                                             // half a pair
  EXPECT_EQ(DecodeJetText("\xFF\xFE\0A"sv), "\xEF\xBF\xBD");  // half a unit, compressed
  EXPECT_EQ(DecodeJetText("\x00\xDE"sv), "\xEF\xBF\xBD");
}

}  // namespace
}  // namespace vrx::testing
