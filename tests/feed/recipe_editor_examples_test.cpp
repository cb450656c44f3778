#include "feed/recipe_editor_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

constexpr int kPlusFivePercent = 15;

// The worked examples, entered line by line.
class EnteredRecipe : public RecipeEditorTest {};

TEST_F(EnteredRecipe, ByWeightIsScaledToTheAdjustedRationTarget) {
  for (const int recipe : {kByWeight, kSelfAdjusting}) {
    editor.Select(recipe);
    AddCornHaySupplement();
    editor.LeaveRationTarget("5000");
    editor.ChooseAdjustItem(kPlusFivePercent);
    EXPECT_THAT(Column(&RecipeLineRecord::target), ElementsAre("1200", "800", "100"));
    EXPECT_THAT(Column(&RecipeLineRecord::dry_matter_percent), ElementsAre("88", "90", "0"));
    EXPECT_THAT(Column(&RecipeLineRecord::dry_matter), ElementsAre("1364", "889", "100"));
    EXPECT_THAT(Column(&RecipeLineRecord::ration_percent),
                ElementsAre("60.000", "40.000", "0.000"));
    EXPECT_THAT(Column(&RecipeLineRecord::batch_target), ElementsAre("3043", "1984", "223"));
    EXPECT_EQ(Shown().totals, (TotalsRow{.target = "2100",
                                         .ration_percent = "100.000",
                                         .dry_matter_percent = "89.2",
                                         .dry_matter = "2353",
                                         .batch_target = "5250",
                                         .hand_add = "1",
                                         .ingredient_percent = "0.00"}));
    EXPECT_EQ(Shown().enabled, kAllOpen);
    ExpectStored();
  }
}

TEST_F(EnteredRecipe, ByHeadCountIsScaledToTheHeadCount) {
  editor.Select(kByHeadCount);
  AddCornHaySupplement();
  editor.LeaveHeadCount("250");
  EXPECT_THAT(Column(&RecipeLineRecord::batch_target), ElementsAre("3410", "2222", "250"));
  EXPECT_EQ(Shown().totals.batch_target, "5882");
  EXPECT_EQ(Shown().totals.target, "2100");
  EXPECT_EQ(Shown().enabled, kAllOpen);
  ExpectStored();
}

TEST_F(EnteredRecipe, ByPercentOpensItsInputsWithTheLineThatMakes100) {
  WriteIngredient(database, {kSupp, "SUPP", "Supplement", 100, false});
  editor.Select(kByPercent);
  Add(kCorn, "62.50");
  EXPECT_EQ(Shown().enabled, kClosed);
  Add(kHay, "30.00");
  EXPECT_EQ(Shown().enabled, kClosed);
  Add(kSupp, "7.49");
  EXPECT_EQ(Shown().totals.ingredient_percent, "99.99");
  EXPECT_EQ(Shown().enabled, kClosed);
  editor.EnterCell(LineColumn::kIngredientPercent, "7.50");
  EXPECT_EQ(Shown().enabled, kPercentOpen);
  editor.LeaveRationTarget("12000");
  EXPECT_THAT(Column(&RecipeLineRecord::dry_matter), ElementsAre("7102", "3333", "750"));
  EXPECT_THAT(Column(&RecipeLineRecord::batch_target), ElementsAre("7619", "3576", "805"));
  EXPECT_THAT(Column(&RecipeLineRecord::ration_percent), ElementsAre("0.000", "0.000", "0.000"));
  EXPECT_EQ(Shown().totals, (TotalsRow{.target = "0",
                                       .ration_percent = "0.000",
                                       .dry_matter_percent = "0.0",
                                       .dry_matter = "11185",
                                       .batch_target = "12000",
                                       .hand_add = "0",
                                       .ingredient_percent = "100.00"}));
  ExpectStored();
}

TEST_F(EnteredRecipe, WithoutDryMatterFiguresHasNoShares) {
  editor.Select(kByWeight);
  Add(kSupp, "100");
  Add(kSupp, "300");
  EXPECT_THAT(Column(&RecipeLineRecord::ration_percent), ElementsAre("0.000", "0.000"));
  EXPECT_THAT(Column(&RecipeLineRecord::dry_matter), ElementsAre("100", "300"));
  EXPECT_EQ(Shown().totals.hand_add, "2");
}

}  // namespace
}  // namespace vrx::testing
