#include "feed/ration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "feed/ration_cells.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

std::string AsFed(const std::string& batch_type, RecipeLineRecord line) {
  line.dry_matter = "as it was";
  RecalcLineDryMatter(batch_type, line);
  return line.dry_matter;
}

TEST(AdjustedRationTarget, FollowsTheAdjustItem) {
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "5000", .adjust_batch_index = "15"}), 5250);
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "5000", .adjust_batch_index = "20"}), 5000);
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "5000", .adjust_batch_index = "40"}), 4000);
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "999999", .adjust_batch_index = "0"}),
            1199999);
}

TEST(AdjustedRationTarget, AnEmptyIndexIsTheFirstItem) {
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "1000"}), 1200);
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "1000", .adjust_batch_index = "x"}), 1200);
}

TEST(AdjustedRationTarget, TextThatIsNotANumberIsZero) {
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "", .adjust_batch_index = "0"}), 0);
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "lots", .adjust_batch_index = "0"}), 0);
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "3000000000", .adjust_batch_index = "0"}), 0);
}

TEST(AdjustedRationTarget, HasSevenSignificantDigitsWithATieToEven) {
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "12345675", .adjust_batch_index = "20"}),
            12345680);
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "12345665", .adjust_batch_index = "20"}),
            12345660);
}

// 831692 x 1.18 is 981396.56; the single next to 1.18 gives 981396.52, which reads 981396.5.
TEST(AdjustedRationTarget, TakesTheFactorAsASingle) {
  EXPECT_EQ(GetAdjustedRationTarget({.ration_target = "831692", .adjust_batch_index = "2"}),
            981396);
}

TEST(AdjustedRationTarget, FailsOutside32BitsAndOutsideTheList) {
  EXPECT_THROW(GetAdjustedRationTarget({.ration_target = "2147483647", .adjust_batch_index = "0"}),
               OverflowError);
  EXPECT_THROW(GetAdjustedRationTarget({.ration_target = "1", .adjust_batch_index = "41"}), Error);
  EXPECT_THROW(GetAdjustedRationTarget({.ration_target = "1", .adjust_batch_index = "-1"}), Error);
}

TEST(AdjustedHeadCount, RoundsHalvesToEven) {
  EXPECT_EQ(GetAdjustedHeadCount({.head_count = 250, .adjust_batch_index = "20"}), 250);
  EXPECT_EQ(GetAdjustedHeadCount({.head_count = 250, .adjust_batch_index = "19"}), 252);  // 252.5
  EXPECT_EQ(GetAdjustedHeadCount({.head_count = 250, .adjust_batch_index = "17"}), 258);  // 257.5
  EXPECT_EQ(GetAdjustedHeadCount({.head_count = 0, .adjust_batch_index = "0"}), 0);
}

TEST(LineDryMatter, DividesTheTargetByTheDryMatterFigure) {
  for (const std::string type : {"W", "H", "%"}) {
    EXPECT_EQ(AsFed(type, WeightLine("1200", "88")), "1364");
    EXPECT_EQ(AsFed(type, WeightLine("800", "90")), "889");
    EXPECT_EQ(AsFed(type, WeightLine("0", "90")), "0");
  }
}

TEST(LineDryMatter, RoundsATieToEven) {
  EXPECT_EQ(AsFed("W", WeightLine("1", "8")), "12");      // 12.5
  EXPECT_EQ(AsFed("W", WeightLine("3", "8")), "38");      // 37.5
  EXPECT_EQ(AsFed("W", WeightLine("1", "40")), "2");      // 2.5
  EXPECT_EQ(AsFed("W", WeightLine("3", "40")), "8");      // 7.5
  EXPECT_EQ(AsFed("P", PercentLine("0.02", "80")), "2");  // 2.5
  EXPECT_EQ(AsFed("P", PercentLine("0.06", "80")), "8");  // 7.5
}

TEST(LineDryMatter, AnIngredientWithoutFigureIsAllDryMatter) {
  EXPECT_EQ(AsFed("W", WeightLine("100", "0")), "100");
  EXPECT_EQ(AsFed("W", WeightLine("100", "")), "100");
  EXPECT_EQ(AsFed("W", WeightLine("100", "wet")), "100");
  EXPECT_EQ(AsFed("P", PercentLine("7.50", "0")), "750");
}

TEST(LineDryMatter, ANegativeFigureLeavesTheLine) {
  EXPECT_EQ(AsFed("W", WeightLine("100", "-1")), "as it was");
  EXPECT_EQ(AsFed("P", PercentLine("7.50", "-1")), "as it was");
}

TEST(LineDryMatter, OfAPercentIsOnABaseOfTenThousand) {
  EXPECT_EQ(AsFed("P", PercentLine("62.50", "88")), "7102");
  EXPECT_EQ(AsFed("P", PercentLine("30.00", "90")), "3333");
  EXPECT_EQ(AsFed("P", PercentLine("7.50", "100")), "750");
  EXPECT_EQ(AsFed("P", PercentLine("33.33", "100")), "3333");
  EXPECT_EQ(AsFed("P", PercentLine("100", "1")), "1000000");
  EXPECT_EQ(AsFed("P", PercentLine("", "88")), "0");
}

TEST(LineDryMatter, OfAnUntypedOrUnknownTypeIsLeft) {
  EXPECT_EQ(AsFed("!", WeightLine("100", "50")), "as it was");
  EXPECT_EQ(AsFed("X", WeightLine("100", "50")), "as it was");
  EXPECT_EQ(AsFed("", WeightLine("100", "50")), "as it was");
}

TEST(LineDryMatter, ATargetThatIsNoWholeNumberOf32BitsIsZero) {
  EXPECT_EQ(AsFed("W", WeightLine("many", "50")), "0");
  EXPECT_EQ(AsFed("W", WeightLine("2147483648", "50")), "0");
  EXPECT_EQ(AsFed("W", WeightLine("10.5", "100")), "10");
}

TEST(LineDryMatter, FailsForAPercentThatIsNoNumber) {
  EXPECT_THROW(AsFed("P", PercentLine("a lot", "88")), ConversionError);
}

TEST(LineDryMatter, FailsOutside32BitsAndSaysSo) {
  EXPECT_EQ(AsFed("W", WeightLine("21474836", "1")), "2147483600");
  EXPECT_THROW(AsFed("W", WeightLine("21474837", "1")), OverflowError);
  EXPECT_THROW(AsFed("W", WeightLine("-21474837", "1")), OverflowError);
  EXPECT_THROW(AsFed("P", PercentLine("300000", "100")), OverflowError);
  try {
    AsFed("W", WeightLine("99999999", "1"));
    FAIL() << "no overflow";
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(),
                 "Overflow: a line's as-fed weight is outside the range of 32-bit whole numbers.");
  }
}

TEST(AllDryMatter, TakesEveryLineButNotTheEntryRow) {
  Ration ration = RationOf("W", {WeightLine("1200", "88"), WeightLine("800", "90")});
  ration.entry_row = WeightLine("100", "50");
  RecalcAllDryMatter(ration);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::dry_matter), ElementsAre("1364", "889"));
  EXPECT_EQ(ration.entry_row->dry_matter, "0");
}

TEST(AllDryMatter, AFailureLeavesEveryLine) {
  Ration ration = RationOf("W", {WeightLine("1200", "88"), WeightLine("99999999", "1")});
  EXPECT_THROW(RecalcAllDryMatter(ration), OverflowError);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::dry_matter), ElementsAre("0", "0"));
}

TEST(RationPercents, LeaveOutALineWithoutDryMatterFigure) {
  Ration ration =
      RationOf("W", {WeightLine("1200", "88"), WeightLine("800", "90"), WeightLine("100", "0")});
  RecalcRationPercents(ration);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::ration_percent),
              ElementsAre("60.000", "40.000", "0.000"));
}

TEST(RationPercents, CountANegativeFigure) {
  Ration ration = RationOf("W", {WeightLine("300", "-1"), WeightLine("100", "90")});
  RecalcRationPercents(ration);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::ration_percent), ElementsAre("75.000", "25.000"));
}

TEST(RationPercents, AreZeroWhereNoLineHasAFigure) {
  Ration ration = RationOf("W", {WeightLine("1200", "0"), WeightLine("800", "0")});
  RecalcAllDryMatter(ration);
  RecalcRationPercents(ration);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::ration_percent), ElementsAre("0.000", "0.000"));
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::dry_matter), ElementsAre("1200", "800"));
}

TEST(RationPercents, AreComputedForEveryKnownType) {
  for (const std::string type : {"!", "W", "H", "%", "P"}) {
    Ration ration = RationOf(type, {WeightLine("1", "88"), WeightLine("2", "90")});
    RecalcRationPercents(ration);
    EXPECT_THAT(Cells(ration, &RecipeLineRecord::ration_percent), ElementsAre("33.333", "66.667"));
  }
  Ration ration = RationOf("P", {PercentLine("100.00", "88")});
  RecalcRationPercents(ration);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::ration_percent), ElementsAre("0.000"));
  Ration unknown = RationOf("X", {WeightLine("1", "88")});
  RecalcRationPercents(unknown);
  EXPECT_THAT(Cells(unknown, &RecipeLineRecord::ration_percent), ElementsAre("0"));
}

TEST(RationPercents, RoundAHalfAwayFromZero) {
  Ration ration = RationOf("W", {WeightLine("1", "88"), WeightLine("63", "90")});
  RecalcRationPercents(ration);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::ration_percent),
              ElementsAre("1.563", "98.438"));  // 1.5625, 98.4375
}

// 192 / 227 is 84.58149...%; a single quotient would show 84.582.
TEST(RationPercents, KeepTheQuotientInDoublePrecision) {
  Ration ration = RationOf("W", {WeightLine("192", "88"), WeightLine("35", "90")});
  RecalcRationPercents(ration);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::ration_percent), ElementsAre("84.581", "15.419"));
}

// Read whole, 1300489945 of 1689836828 is 76.9594999...%.
TEST(RationPercents, TakeWeightsAsSingles) {
  Ration ration = RationOf("W", {WeightLine("1300489945", "88"), WeightLine("389346883", "90")});
  RecalcRationPercents(ration);
  EXPECT_EQ(ration.lines[0].ration_percent, "76.960");
}

TEST(RationPercents, TheEntryRowHasItsShare) {
  Ration ration = RationOf("W", {WeightLine("300", "88")});
  ration.entry_row = WeightLine("100", "50");
  RecalcRationPercents(ration);
  EXPECT_EQ(ration.entry_row->ration_percent, "25.000");
  EXPECT_EQ(ration.lines[0].ration_percent, "75.000");
}

TEST(RationPercents, AnEntryRowWithoutFigureIsIgnored) {
  Ration ration = RationOf("W", {WeightLine("300", "88")});
  ration.entry_row = WeightLine("100", "0");
  RecalcRationPercents(ration);
  EXPECT_EQ(ration.entry_row->ration_percent, "0.000");
  EXPECT_EQ(ration.lines[0].ration_percent, "100.000");
}

TEST(RationPercents, ASumOutside32BitsIsAnOverflow) {
  Ration ration = RationOf("W", {WeightLine("2147483647", "100"), WeightLine("1", "100")});
  EXPECT_THROW(RecalcRationPercents(ration), OverflowError);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::ration_percent), ElementsAre("0", "0"));
  ration.lines[1].dry_matter_percent = "0";
  RecalcRationPercents(ration);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::ration_percent), ElementsAre("100.000", "0.000"));
}

}  // namespace
}  // namespace vrx::testing
