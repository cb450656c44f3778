#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "feed/ration.h"
#include "feed/ration_cells.h"

namespace vrx::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Pair;

constexpr RecipeInputs kAllOpen = {.head_count = true, .ration_target = true, .adjust_batch = true};
constexpr RecipeInputs kPercentOpen = {
    .head_count = false, .ration_target = true, .adjust_batch = true};
constexpr RecipeInputs kClosed = {};

std::vector<RecipeLineRecord> CornHaySupplement() {
  return {WeightLine("1200", "88"), WeightLine("800", "90"), WeightLine("100", "0", true)};
}

std::vector<RecipeLineRecord> Percents(const std::string& last = "7.50") {
  return {PercentLine("62.50", "88"), PercentLine("30.00", "90"), PercentLine(last, "100")};
}

std::vector<std::string> BatchTargets(const Ration& ration) {
  return Cells(ration, &RecipeLineRecord::batch_target);
}

TEST(RecipeByWeight, IsScaledToTheAdjustedRationTarget) {
  for (const std::string type : {"W", "%"}) {
    Ration ration = RationOf(type, CornHaySupplement());
    ration.recipe.ration_target = "5000";
    ration.recipe.adjust_batch_index = "15";
    const RecipeTotals totals = RecalcRecipe(ration);
    EXPECT_THAT(Cells(ration, &RecipeLineRecord::dry_matter), ElementsAre("1364", "889", "100"));
    EXPECT_THAT(Cells(ration, &RecipeLineRecord::ration_percent),
                ElementsAre("60.000", "40.000", "0.000"));
    EXPECT_THAT(BatchTargets(ration), ElementsAre("3043", "1984", "223"));
    EXPECT_THAT(totals.row.Labels(),
                ElementsAre(Pair("lblTargetTotal", "2100"), Pair("lblRationPctTotal", "100.000"),
                            Pair("lblDryMatPercent", "89.2"), Pair("lblDryMatTotal", "2353"),
                            Pair("lblBatchTargetTotal", "5250"), Pair("lblHandAddTotal", "1"),
                            Pair("lblIngPctTotal", "0.00")));
    EXPECT_EQ(totals.enabled, kAllOpen);
  }
}

TEST(RecipeByHeadCount, IsScaledToTheHeadCountWithATieToEven) {
  Ration ration = RationOf("H", CornHaySupplement());
  ration.recipe.head_count = 250;
  const RecipeTotals totals = RecalcRecipe(ration);
  EXPECT_THAT(BatchTargets(ration), ElementsAre("3410", "2222", "250"));
  EXPECT_EQ(totals.row.batch_target, "5882");
  EXPECT_EQ(totals.row.target, "2100");
  EXPECT_EQ(totals.row.dry_matter, "2353");
  EXPECT_EQ(totals.enabled, kAllOpen);
}

TEST(RecipeByHeadCount, RoundsATieUpToEven) {
  Ration ration = RationOf("H", {WeightLine("4447", "100"), WeightLine("4445", "100")});
  ration.recipe.head_count = 50;
  RecalcRecipe(ration);
  EXPECT_THAT(BatchTargets(ration), ElementsAre("2224", "2222"));  // 2223.5, 2222.5
}

TEST(RecipeByHeadCount, DoesNotDependOnAnyTotal) {
  Ration ration = RationOf("H", {WeightLine("-200", "100"), WeightLine("100", "100")});
  ration.recipe.head_count = 200;
  const RecipeTotals totals = RecalcRecipe(ration);
  EXPECT_THAT(BatchTargets(ration), ElementsAre("-400", "200"));
  EXPECT_EQ(totals.row.dry_matter_percent, "0.0");
  EXPECT_EQ(totals.enabled, kClosed);
}

TEST(RecipeByPercent, IsScaledToTheRationTarget) {
  Ration ration = RationOf("P", Percents());
  ration.recipe.ration_target = "12000";
  const RecipeTotals totals = RecalcRecipe(ration);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::dry_matter), ElementsAre("7102", "3333", "750"));
  EXPECT_THAT(BatchTargets(ration), ElementsAre("7619", "3576", "805"));
  EXPECT_EQ(totals.row, (TotalsRow{.target = "0",
                                   .ration_percent = "0.000",
                                   .dry_matter_percent = "0.0",
                                   .dry_matter = "11185",
                                   .batch_target = "12000",
                                   .hand_add = "0",
                                   .ingredient_percent = "100.00"}));
  EXPECT_EQ(totals.enabled, kPercentOpen);
}

TEST(RecipeByPercent, StaysDisabledBelow100ButIsComputed) {
  Ration ration = RationOf("P", Percents("7.49"));
  ration.recipe.ration_target = "12000";
  const RecipeTotals totals = RecalcRecipe(ration);
  EXPECT_EQ(totals.row.ingredient_percent, "99.99");
  EXPECT_EQ(totals.enabled, kClosed);
  EXPECT_EQ(totals.row.batch_target, "12000");
}

TEST(RecipeByPercent, OpensByTheTextOfTheTotalAndNotByItsNumber) {
  Ration ration = RationOf("P", Percents("7.496"));
  const RecipeTotals below = RecalcRecipe(ration);
  EXPECT_EQ(below.row.ingredient_percent, "100.00");
  EXPECT_EQ(below.enabled, kPercentOpen);
  ration.lines[2].ingredient_percent = "7.504";
  EXPECT_EQ(RecalcRecipe(ration).enabled, kPercentOpen);
  ration.lines[2].ingredient_percent = "7.51";
  EXPECT_EQ(RecalcRecipe(ration).enabled, kClosed);
}

TEST(RecipeByPercent, ThirdsThatAddUpTo99_99StayDisabled) {
  Ration ration = RationOf(
      "P", {PercentLine("33.33", "100"), PercentLine("33.33", "100"), PercentLine("33.33", "100")});
  EXPECT_EQ(RecalcRecipe(ration).row.ingredient_percent, "99.99");
  ration.lines[0].ingredient_percent = "33.34";
  EXPECT_EQ(RecalcRecipe(ration).row.ingredient_percent, "100.00");
}

TEST(UntypedRecipe, HasSharesAndTotalsOnly) {
  Ration ration = RationOf("!", CornHaySupplement());
  ration.lines[0].dry_matter = "7";
  ration.lines[0].batch_target = "8";
  const RecipeTotals totals = RecalcRecipe(ration);
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::dry_matter), ElementsAre("7", "0", "0"));
  EXPECT_THAT(Cells(ration, &RecipeLineRecord::ration_percent),
              ElementsAre("60.000", "40.000", "0.000"));
  EXPECT_THAT(BatchTargets(ration), ElementsAre("8", "", ""));
  EXPECT_EQ(totals.row, (TotalsRow{.target = "2100",
                                   .ration_percent = "100.000",
                                   .dry_matter_percent = "30000.0",
                                   .dry_matter = "7",
                                   .batch_target = "0",
                                   .hand_add = "1",
                                   .ingredient_percent = "0.00"}));
  EXPECT_EQ(totals.enabled, kClosed);
}

TEST(UnknownType, IsLeftAlone) {
  Ration ration = RationOf("X", CornHaySupplement());
  const RecipeTotals totals = RecalcRecipe(ration);
  EXPECT_EQ(totals.row, TotalsRow{});
  EXPECT_EQ(totals.enabled, kClosed);
  EXPECT_THAT(BatchTargets(ration), Each(""));
}

TEST(EmptyRecipe, HasZeroTotalsAndDisabledInputs) {
  for (const std::string type : {"W", "H", "%", "P"}) {
    Ration ration = RationOf(type, {});
    ration.recipe.ration_target = "5000";
    const RecipeTotals totals = RecalcRecipe(ration);
    EXPECT_EQ(totals.row, (TotalsRow{.target = "0",
                                     .ration_percent = "0.000",
                                     .dry_matter_percent = "0.0",
                                     .dry_matter = "0",
                                     .batch_target = "0",
                                     .hand_add = "0",
                                     .ingredient_percent = "0.00"}));
    EXPECT_EQ(totals.enabled, kClosed) << type;
  }
}

TEST(RationTarget, OfZeroGivesZeroOnEveryLine) {
  for (const std::string target : {"0", "", "none"}) {
    Ration ration = RationOf("W", CornHaySupplement());
    ration.recipe.ration_target = target;
    const RecipeTotals totals = RecalcRecipe(ration);
    EXPECT_THAT(BatchTargets(ration), Each("0"));
    EXPECT_EQ(totals.row.batch_target, "0");
  }
}

TEST(BatchTarget, IsZeroWhereNothingIsFed) {
  Ration ration = RationOf("W", {WeightLine("0", "88"), WeightLine("0", "90")});
  ration.recipe.ration_target = "5000";
  RecalcRecipe(ration);
  EXPECT_THAT(BatchTargets(ration), Each("0"));
}

TEST(BatchTarget, IsRoundedLineByLineWithoutCorrection) {
  Ration ration =
      RationOf("W", {WeightLine("1", "100"), WeightLine("1", "100"), WeightLine("1", "100")});
  ration.recipe.ration_target = "100";
  EXPECT_EQ(RecalcRecipe(ration).row.batch_target, "99");
  EXPECT_THAT(BatchTargets(ration), Each("33"));
}

TEST(BatchTarget, HasSevenSignificantDigitsWithATieToEven) {
  Ration ration = RationOf("H", {WeightLine("12345675", "100"), WeightLine("12345665", "100")});
  ration.recipe.head_count = 100;
  RecalcRecipe(ration);
  EXPECT_THAT(BatchTargets(ration), ElementsAre("12345680", "12345660"));
}

// 19511 / 1537 x 1277 is 16210.5055; a single quotient would come to 16210.50 and so to 16210.
TEST(BatchTarget, KeepsTheQuotientOfTheTargetInDoublePrecision) {
  Ration ration = RationOf("W", {WeightLine("1277", "100"), WeightLine("260", "100")});
  ration.recipe.ration_target = "19511";
  RecalcRecipe(ration);
  EXPECT_EQ(ration.lines[0].batch_target, "16211");
}

// 459 / 100 x 26445 is 121382.55, as a single 121382.547: 121382.5 and so 121382.
TEST(BatchTarget, KeepsTheFactorOfTheHeadCountInDoublePrecision) {
  Ration ration = RationOf("H", {WeightLine("26445", "100")});
  ration.recipe.head_count = 459;
  RecalcRecipe(ration);
  EXPECT_EQ(ration.lines[0].batch_target, "121382");
}

TEST(BatchTarget, Outside32BitsIsAnOverflow) {
  Ration ration = RationOf("H", {WeightLine("1", "100"), WeightLine("300000000", "100")});
  ration.recipe.head_count = 1000;
  EXPECT_THROW(RecalcRecipe(ration), OverflowError);
  EXPECT_THAT(BatchTargets(ration), Each(""));
}

TEST(Sums, Outside32BitsAreAnOverflowThatNamesTheField) {
  const auto failure = [](Ration ration) -> std::string {
    try {
      RecalcRecipeTotals(ration);
    } catch (const OverflowError& error) {
      return error.what();
    }
    return "none";
  };
  const auto sum_of = [](const std::string& field) {
    return "Overflow: the sum of '" + field + "' is outside the range of 32-bit whole numbers.";
  };
  Ration target = RationOf("W", {WeightLine("2147483647", "0"), WeightLine("1", "0")});
  EXPECT_EQ(failure(target), sum_of("Target"));
  Ration as_fed = RationOf("P", {{.dry_matter = "-2147483648"}, {.dry_matter = "-1"}});
  EXPECT_EQ(failure(as_fed), sum_of("DryMatter"));
  Ration batch = RationOf("H", {{.dry_matter = "1000000000"}, {.dry_matter = "1000000000"}});
  batch.recipe.head_count = 110;
  EXPECT_EQ(failure(batch), sum_of("BatchTarget"));
  Ration largest = RationOf("!", {WeightLine("2147483646", "0"), WeightLine("1", "0")});
  EXPECT_EQ(RecalcRecipeTotals(largest).row.target, "2147483647");
}

TEST(Sums, FailForAPercentageThatIsNoNumber) {
  Ration ration = RationOf("W", {{.ingredient_percent = "half"}});
  EXPECT_THROW(RecalcRecipeTotals(ration), ConversionError);
}

TEST(Totals, FailForAnAdjustItemThatTheListDoesNotHave) {
  Ration ration = RationOf("!", {});
  ration.recipe.adjust_batch_index = "41";
  EXPECT_THROW(RecalcRecipeTotals(ration), Error);
}

TEST(EntryRow, StartsTheSumsOfWeightsAndTheHandAddCount) {
  Ration ration = RationOf("W", CornHaySupplement());
  ration.recipe.ration_target = "5000";
  RecalcRecipe(ration);
  ration.entry_row = WeightLine("400", "80", true);
  RecalcLineDryMatter("W", *ration.entry_row);
  RecalcRationPercents(ration);
  const std::vector<std::string> before = BatchTargets(ration);
  const RecipeTotals totals = RecalcRecipeTotals(ration);
  EXPECT_EQ(totals.row, (TotalsRow{.target = "2500",
                                   .ration_percent = "83.333",  // without the entry row's share
                                   .dry_matter_percent = "87.6",
                                   .dry_matter = "2853",
                                   .batch_target = "0",
                                   .hand_add = "2",
                                   .ingredient_percent = "0.00"}));
  EXPECT_EQ(ration.entry_row->ration_percent, "16.667");
  EXPECT_EQ(BatchTargets(ration), before);
  EXPECT_EQ(totals.enabled, kAllOpen);
}

TEST(EntryRow, IsCountedWithoutOtherLines) {
  Ration ration = RationOf("W", {});
  ration.entry_row = WeightLine("1", "100");
  const RecipeTotals totals = RecalcRecipeTotals(ration);
  EXPECT_EQ(totals.row.target, "1");
  EXPECT_EQ(totals.enabled, kAllOpen);
  ration.entry_row->target = "0";
  EXPECT_EQ(RecalcRecipeTotals(ration).enabled, kClosed);
}

TEST(EntryRow, DoesNotCountItsPercentage) {
  Ration ration = RationOf("P", Percents());
  ration.entry_row = PercentLine("10.00", "100");
  const RecipeTotals totals = RecalcRecipeTotals(ration);
  EXPECT_EQ(totals.row.ingredient_percent, "100.00");
  EXPECT_EQ(totals.enabled, kPercentOpen);
}

TEST(EnableRecipeInputs, FollowsTypeFlagAndThe100PercentRule) {
  for (const std::string type : {"W", "H", "%"}) {
    EXPECT_EQ(EnableRecipeInputs(type, true, ""), kAllOpen);
    EXPECT_EQ(EnableRecipeInputs(type, false, "100.00"), kClosed);
  }
  EXPECT_EQ(EnableRecipeInputs("P", true, "100.00"), kPercentOpen);
  EXPECT_EQ(EnableRecipeInputs("P", true, "99.99"), kClosed);
  EXPECT_EQ(EnableRecipeInputs("P", true, "100"), kClosed);
  EXPECT_EQ(EnableRecipeInputs("P", false, "100.00"), kClosed);
  EXPECT_EQ(EnableRecipeInputs("!", true, "100.00"), kClosed);
  EXPECT_EQ(EnableRecipeInputs("X", true, "100.00"), kClosed);
}

TEST(EnabledByLines, IsWhatTheTotalsEnable) {
  for (const std::string type : {"!", "W", "H", "%", "P", "X"}) {
    for (const auto& lines :
         {CornHaySupplement(), Percents(), Percents("7"), std::vector<RecipeLineRecord>{}}) {
      Ration ration = RationOf(type, lines);
      EXPECT_EQ(EnabledByLines(type, lines), RecalcRecipeTotals(ration).enabled) << type;
    }
  }
}

}  // namespace
}  // namespace vrx::testing
