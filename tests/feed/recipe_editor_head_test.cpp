#include "feed/recipe_editor_fixture.h"
#include "feed/record_fields.h"

namespace vrx::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr int kIndexOfWeight = 1;
constexpr int kIndexOfPercent = 4;

class RecipeHead : public RecipeEditorTest {};

TEST_F(RecipeHead, AnEmptyRecipeStartsOnTheEntryRowWithoutTotals) {
  editor.Select(kByWeight);
  EXPECT_EQ(Shown().row, kEntryRow);
  EXPECT_FALSE(Shown().EntryPending());
  EXPECT_EQ(Shown().totals, TotalsRow{});
  EXPECT_EQ(Shown().enabled, kClosed);
  EXPECT_TRUE(Shown().entry_row_offered);
}

TEST_F(RecipeHead, ARecipeWithLinesStartsOnLine1WithItsInputsEnabled) {
  editor.Select(kByWeight);
  AddCornHaySupplement();
  database.exec("UPDATE RecipeRation SET [Ration%] = 'x', BatchTarget = NULL");
  editor.Select(kByHeadCount);
  editor.Select(kByWeight);
  EXPECT_EQ(Shown().row, 1);
  EXPECT_FALSE(Shown().ration.entry_row.has_value());
  EXPECT_THAT(Column(&RecipeLineRecord::ration_percent), ElementsAre("60.000", "40.000", "0.000"));
  EXPECT_THAT(Column(&RecipeLineRecord::batch_target), ElementsAre("2898", "1889", "212"));
  EXPECT_EQ(Shown().enabled, kAllOpen);
  ExpectStored();
}

TEST_F(RecipeHead, TheBlankItemOfTheListShowsTheSameRecipe) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  editor.Select(0);
  EXPECT_EQ(Shown().ration.recipe.id, kByWeight);
  EXPECT_EQ(Shown().row, 1);
  EXPECT_THROW(editor.Select(101), DatabaseError);
  EXPECT_EQ(Shown().ration.recipe.id, kByWeight);
}

TEST_F(RecipeHead, SelectingDoesNotRecomputeTheAsFedWeights) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  database.exec("UPDATE RecipeRation SET DryMatter = '7'");
  editor.Select(kByWeight);
  EXPECT_THAT(Column(&RecipeLineRecord::dry_matter), ElementsAre("7"));
  editor.RecomputeAll();
  EXPECT_THAT(Column(&RecipeLineRecord::dry_matter), ElementsAre("1364"));
  ExpectStored();
}

TEST_F(RecipeHead, EachTypeShowsItsGroupsOfInputs) {
  EXPECT_EQ(Shown().Shown(), RecipeInputs{});
  for (const int recipe : {kByWeight, kSelfAdjusting, kByPercent}) {
    editor.Select(recipe);
    EXPECT_EQ(Shown().Shown(), kPercentOpen);
  }
  editor.Select(kByHeadCount);
  EXPECT_EQ(Shown().Shown(), (RecipeInputs{.head_count = true, .adjust_batch = true}));
}

TEST_F(RecipeHead, AnUntypedRecipeHidesItsGrid) {
  EXPECT_EQ(Shown().Entry(), LineEntry::kNone);
  editor.Select(kByHeadCount);
  EXPECT_EQ(Shown().Entry(), LineEntry::kWeight);
  editor.Select(kByPercent);
  EXPECT_EQ(Shown().Entry(), LineEntry::kPercent);
}

TEST_F(RecipeHead, PleaseSelectOnATypedRecipeChangesNothing) {
  editor.Select(kByWeight);
  AddCornHaySupplement();
  const std::string before = ReadAll(folder / "YARD.RDB");
  const TotalsRow totals = Shown().totals;
  for (const int index : {0, -1, 5}) {
    editor.ChooseBatchType(index);
  }
  EXPECT_TRUE(Shown().type_list_enabled);
  EXPECT_EQ(Shown().ration.recipe.batch_type, "W");
  EXPECT_EQ(Shown().totals, totals);
  EXPECT_TRUE(ReadAll(folder / "YARD.RDB") == before);
}

TEST_F(RecipeHead, AChosenTypeIsStoredAndClosesTheList) {
  editor.ChooseBatchType(kIndexOfPercent);
  EXPECT_FALSE(Shown().type_list_enabled);
  EXPECT_EQ(Shown().Entry(), LineEntry::kPercent);
  EXPECT_EQ(ReadRecipe(database, kUntyped).batch_type, "P");
}

TEST_F(RecipeHead, TheListStaysOpenFromAnUntypedToATypedRecipe) {
  editor.ChooseBatchType(kIndexOfPercent);
  editor.Select(kByWeight);
  EXPECT_FALSE(Shown().type_list_enabled);
  editor.Select(kUntyped + 1);
  EXPECT_TRUE(Shown().type_list_enabled);
  editor.Select(kByWeight);
  EXPECT_TRUE(Shown().type_list_enabled);
}

TEST_F(RecipeHead, AnotherTypeRecomputesTheBatchTargets) {
  editor.Select(kByHeadCount);
  AddCornHaySupplement();
  editor.LeaveHeadCount("250");
  EXPECT_THAT(Column(&RecipeLineRecord::batch_target), ElementsAre("3410", "2222", "250"));
  editor.ChooseBatchType(kIndexOfWeight);
  EXPECT_THAT(Column(&RecipeLineRecord::batch_target), ElementsAre("2898", "1889", "212"));
  ExpectStored();
}

TEST_F(RecipeHead, TheAdjustItemIsStoredAsItsIndex) {
  editor.Select(kByWeight);
  AddCornHaySupplement();
  editor.ChooseAdjustItem(15);
  EXPECT_EQ(ReadRecipe(database, kByWeight).adjust_batch_index, "15");
  EXPECT_EQ(Shown().totals.batch_target, "5250");
  EXPECT_THROW(editor.ChooseAdjustItem(41), Error);
  EXPECT_EQ(Shown().ration.recipe.adjust_batch_index, "15");
  ExpectStored();
}

TEST_F(RecipeHead, TheHeadCountIsNormalizedWhenTheBoxLosesFocus) {
  editor.Select(kByHeadCount);
  AddCornHaySupplement();
  for (const auto& [typed, stored] :
       {std::pair{"1001", 100}, {"1000", 1000}, {"0", 0}, {"", 0}, {"250", 250}}) {
    editor.LeaveHeadCount(typed);
    EXPECT_EQ(ReadRecipe(database, kByHeadCount).head_count, stored) << typed;
  }
  EXPECT_EQ(Shown().totals.batch_target, "5882");
}

TEST_F(RecipeHead, AHeadCountOf100FeedsTheAsFedWeights) {
  editor.Select(kByHeadCount);
  AddCornHaySupplement();
  editor.LeaveHeadCount("100");
  EXPECT_EQ(Column(&RecipeLineRecord::batch_target), Column(&RecipeLineRecord::dry_matter));
}

TEST_F(RecipeHead, ARationTargetOfZeroGivesNoBatch) {
  editor.Select(kByWeight);
  AddCornHaySupplement();
  editor.LeaveRationTarget("0");
  EXPECT_THAT(Column(&RecipeLineRecord::batch_target), Each("0"));
  editor.LeaveRationTarget("999999");
  EXPECT_EQ(ReadRecipe(database, kByWeight).ration_target, "999999");
  ExpectStored();
}

TEST_F(RecipeHead, AnEmptyNameHoldsTheFieldAndIsStoredAllTheSame) {
  editor.Select(kByWeight);
  EXPECT_EQ(editor.LeaveName("STEER  "), "");
  EXPECT_EQ(ReadRecipe(database, kByWeight).name, "STEER");
  EXPECT_EQ(editor.LeaveName("  "), "The 'Name' field is mandatory.");
  EXPECT_EQ(ReadRecipe(database, kByWeight).name, "");
}

TEST_F(RecipeHead, ADescriptionMayBringAName) {
  editor.Select(kByWeight);
  editor.LeaveDescription("Steers  ", std::nullopt);
  EXPECT_EQ(ReadRecipe(database, kByWeight).description, "Steers");
  EXPECT_EQ(ReadRecipe(database, kByWeight).name, "REC001");
  editor.LeaveDescription("Calves", "CALVES");
  EXPECT_EQ(ReadRecipe(database, kByWeight).name, "CALVES");
}

TEST_F(RecipeHead, ACommitStaysOnItsRowAndTakesWhatWasStoredMeanwhile) {
  editor.Select(kByWeight);
  AddCornHaySupplement();
  editor.GoToRow(2);
  database.exec("UPDATE RecipeRation SET DryMatter = '1000' WHERE Sequence = 1");
  editor.CommitRecipeRecord();
  EXPECT_EQ(Shown().row, 2);
  EXPECT_EQ(Shown().totals.dry_matter, "1989");
  database.exec("DELETE FROM RecipeRation WHERE Sequence > 1");
  editor.CommitRecipeRecord();
  EXPECT_EQ(Shown().row, 1);
  database.exec("DELETE FROM RecipeRation");
  editor.CommitRecipeRecord();
  EXPECT_EQ(Shown().row, kEntryRow);
  EXPECT_EQ(Shown().enabled, kClosed);
}

TEST_F(RecipeHead, ACommitKeepsTheLineThatIsBeingComposed) {
  editor.Select(kByWeight);
  editor.ChooseIngredient(kCorn);
  editor.LeaveDescription("Steers", std::nullopt);
  EXPECT_EQ(Shown().Current().ingredient, "1");
  EXPECT_TRUE(Shown().EntryPending());
}

TEST_F(RecipeHead, AnotherSelectionAddsACompleteLineAndDiscardsAnIncompleteOne) {
  editor.Select(kByWeight);
  editor.ChooseIngredient(kCorn);
  editor.EnterCell(LineColumn::kTarget, "5");
  editor.Select(kByHeadCount);
  EXPECT_EQ(ReadRecipeLines(database, kByWeight).size(), 1U);
  editor.ChooseIngredient(kCorn);
  editor.Select(kByWeight);
  EXPECT_EQ(ReadRecipeLines(database, kByHeadCount).size(), 0U);
  EXPECT_FALSE(Shown().EntryPending());
}

TEST_F(RecipeHead, WhatFollowsAStepRunsInsideItAndOnlyWhereSomethingIsStored) {
  int steps = 0;
  RecipeEditor observed(database, messages, kByWeight, [&](const CurrentRecipe& next) {
    ++steps;
    EXPECT_EQ(next.ration.recipe.ration_target, "77");
    EXPECT_EQ(observed.Current().ration.recipe.ration_target, "5000");
    database.exec("UPDATE Pen SET FeedAmount = '9' WHERE ID = 1");
  });
  EXPECT_EQ(steps, 0);
  observed.LeaveRationTarget("5000");
  EXPECT_EQ(steps, 0);
  observed.LeaveRationTarget("77");
  EXPECT_EQ(steps, 1);
  EXPECT_EQ(ReadPen(database, 1).feed_amount, "9");
}

TEST_F(RecipeHead, WhatFollowsAStepUndoesItWhereItFails) {
  RecipeEditor observed(database, messages, kByWeight, [&](const CurrentRecipe& /*next*/) {
    database.exec("INSERT INTO NoSuchTable VALUES (1)");
  });
  EXPECT_THROW(observed.LeaveRationTarget("77"), DatabaseError);
  EXPECT_EQ(observed.Current().ration.recipe.ration_target, "5000");
  EXPECT_EQ(ReadRecipe(database, kByWeight).ration_target, "5000");
}

}  // namespace
}  // namespace vrx::testing
