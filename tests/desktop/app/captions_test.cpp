#include "desktop/app/captions.h"

#include <gtest/gtest.h>

#include "base/text.h"

namespace vrx {
namespace {

TEST(CaptionText, HoldsTheTextsOfItsRows) {
  EXPECT_EQ(CaptionText(1000), "&File");
  EXPECT_EQ(CaptionText(1003), "-");
  EXPECT_EQ(CaptionText(1049), "Standby... Attempting to connect to KRM");
  EXPECT_EQ(CaptionText(1091), " Exporting");
  EXPECT_EQ(CaptionText(1117),
            "May not reflect changes that have not been saved yet (by exiting the application).");
  EXPECT_EQ(CaptionText(1132),
            "This recipe will require the 200 pen capacity option in the K2260 indicator.");
  EXPECT_EQ(CaptionText(1134), "*");
}

TEST(CaptionText, FallsBackToTbd) { EXPECT_EQ(CaptionText(1053), "TBD"); }

TEST(CaptionText, HasNoRowForTheDescriptionCaption) { EXPECT_EQ(CaptionText(1055), std::nullopt); }

TEST(CaptionText, HasNoRowThatNoFormUses) {
  EXPECT_EQ(CaptionText(1005), std::nullopt);
  EXPECT_EQ(CaptionText(1133), std::nullopt);
}

TEST(CaptionText, HasRowsFrom1000To1134Alone) {
  int rows = 0;
  for (int id = -1; id < 2000; ++id) {
    const bool in_range = id >= 1000 && id <= 1134;
    const bool there = CaptionText(id).has_value();
    EXPECT_TRUE(in_range || !there) << id;
    rows += there ? 1 : 0;
  }
  EXPECT_EQ(rows, 90);
}

TEST(CaptionText, ReportsOneWebAddressEverywhere) {
  ASSERT_TRUE(CaptionText(1116));
  EXPECT_EQ(CaptionText(1084), CaptionText(1116));
  EXPECT_EQ(CaptionText(1126), CaptionText(1116));
}

TEST(ResolveCaptionId, KeepsANumber) { EXPECT_EQ(ResolveCaptionId("1091"), "1091"); }

TEST(ResolveCaptionId, GivesTheFallbackForAnEmptyText) { EXPECT_EQ(ResolveCaptionId(""), "1053"); }

TEST(ResolveCaptionId, GivesTheFallbackForATextWithoutLeadingDigit) {
  EXPECT_EQ(ResolveCaptionId("Open"), "1053");
  EXPECT_EQ(ResolveCaptionId(" 1000"), "1053");
  EXPECT_EQ(ResolveCaptionId("-1000"), "1053");
}

TEST(ResolveCaptionId, KeepsATextThatMerelyBeginsWithADigitWhole) {
  EXPECT_EQ(ResolveCaptionId("7"), "7");
  EXPECT_EQ(ResolveCaptionId("1000 head"), "1000 head");
  EXPECT_EQ(ResolveCaptionId("2nd pass"), "2nd pass");
}

}  // namespace
}  // namespace vrx
