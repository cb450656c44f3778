#include <string>

#include "feed/recipe_editor_fixture.h"
#include "feed/record_fields.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class RecipeLineEntry : public RecipeEditorTest {
 protected:
  std::string Refusal(const std::function<void()>& action) {
    try {
      action();
    } catch (const FieldRefusal& refusal) {
      return refusal.what();
    }
    return "not refused";
  }
};

TEST_F(RecipeLineEntry, OffersIngredientsInUseOnly) {
  EXPECT_THAT(
      ReadActiveIngredients(database),
      ElementsAre(Field(&IngredientRecord::name, "CORN"), Field(&IngredientRecord::name, "HAY"),
                  Field(&IngredientRecord::name, "SUPP"), Field(&IngredientRecord::name, "OATS")));
}

TEST_F(RecipeLineEntry, ChoosingAnIngredientCopiesItsDryMatterAndMark) {
  editor.Select(kByWeight);
  editor.ChooseIngredient(kSupp);
  const RecipeLineRecord& line = Shown().Current();
  EXPECT_EQ(line.ingredient, "3");
  EXPECT_EQ(line.dry_matter_percent, "0");
  EXPECT_TRUE(line.hand_add);
  EXPECT_EQ(Shown().totals.hand_add, "1");
}

TEST_F(RecipeLineEntry, ChoosingAnIngredientRecomputesTheStoredLines) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  database.exec("UPDATE RecipeRation SET [DryMatter%] = '100'");
  editor.Select(kByWeight);
  EXPECT_THAT(Column(&RecipeLineRecord::dry_matter), ElementsAre("1364"));
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(kHay);
  EXPECT_THAT(Column(&RecipeLineRecord::dry_matter), ElementsAre("1200"));
  ExpectStored();
}

TEST_F(RecipeLineEntry, AnIngredientAloneIsHeldBackWithRecipeAndSequence) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(kHay);
  EXPECT_FALSE(editor.CommitRow());
  EXPECT_EQ(Shown().row, kEntryRow);
  EXPECT_EQ(Shown().Current().recipe_id, "1");
  EXPECT_EQ(Shown().Current().sequence, 2);
  EXPECT_FALSE(editor.GoToRow(1));
  EXPECT_EQ(Shown().row, kEntryRow);
  EXPECT_THAT(ReadRecipeLines(database, kByWeight), SizeIs(1));
}

TEST_F(RecipeLineEntry, ACanceledWeightCompletesNoLine) {
  editor.Select(kByWeight);
  editor.ChooseIngredient(kHay);
  editor.BeforeCellEdit(LineColumn::kTarget);
  editor.AfterCellEdit(LineColumn::kTarget, false);
  EXPECT_FALSE(editor.CommitRow());
  EXPECT_THAT(ReadRecipeLines(database, kByWeight), IsEmpty());
}

TEST_F(RecipeLineEntry, GoesThroughOnceAWeightWasEntered) {
  editor.Select(kByWeight);
  editor.ChooseIngredient(kHay);
  EXPECT_FALSE(editor.CommitRow());
  editor.EnterCell(LineColumn::kTarget, "800");
  EXPECT_TRUE(editor.CommitRow());
  EXPECT_EQ(Shown().row, 1);
  EXPECT_FALSE(Shown().EntryPending());
  ExpectStored();
}

TEST_F(RecipeLineEntry, IsHeldBackAgainAfterAnotherIngredientWasChosen) {
  editor.Select(kByWeight);
  editor.ChooseIngredient(kHay);
  editor.EnterCell(LineColumn::kTarget, "800");
  editor.ChooseIngredient(kCorn);
  EXPECT_EQ(Shown().Current().dry_matter, "909");
  EXPECT_FALSE(editor.CommitRow());
  editor.AfterCellEdit(LineColumn::kTarget);
  EXPECT_TRUE(editor.CommitRow());
  EXPECT_THAT(Column(&RecipeLineRecord::target), ElementsAre("800"));
}

TEST_F(RecipeLineEntry, AWeightWithoutAnIngredientIsHeldBack) {
  editor.Select(kByWeight);
  editor.EnterCell(LineColumn::kTarget, "800");
  EXPECT_FALSE(editor.CommitRow());
  EXPECT_THAT(ReadRecipeLines(database, kByWeight), IsEmpty());
}

TEST_F(RecipeLineEntry, CountsInTheTotalsWhileItIsComposed) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(kHay);
  editor.EnterCell(LineColumn::kTarget, "800");
  EXPECT_EQ(Shown().totals.target, "2000");
  EXPECT_EQ(Shown().totals.batch_target, "0");
  EXPECT_EQ(Shown().Current().ration_percent, "40.000");
  EXPECT_THAT(Column(&RecipeLineRecord::ration_percent), ElementsAre("60.000"));
  EXPECT_EQ(Shown().enabled, kAllOpen);
  ExpectStored();
}

TEST_F(RecipeLineEntry, DiscardingRestoresTheFigures) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  const std::vector<RecipeLineRecord> before = Shown().ration.lines;
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(kHay);
  editor.EnterCell(LineColumn::kTarget, "800");
  editor.DiscardEntry();
  EXPECT_EQ(Shown().row, kEntryRow);
  EXPECT_EQ(Shown().ration.lines, before);
  EXPECT_EQ(Shown().totals.batch_target, "5000");
  EXPECT_EQ(Shown().enabled, kAllOpen);
  ExpectStored();
}

TEST_F(RecipeLineEntry, LeavingTheEntryRowAddsACompleteLine) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(kHay);
  editor.EnterCell(LineColumn::kTarget, "800");
  EXPECT_TRUE(editor.GoToRow(1));
  EXPECT_THAT(Column(&RecipeLineRecord::ingredient), ElementsAre("1", "2"));
  EXPECT_EQ(Shown().row, 1);
  ExpectStored();
}

TEST_F(RecipeLineEntry, TheSameIngredientMayBePickedTwice) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  Add(kCorn, "300");
  EXPECT_THAT(Column(&RecipeLineRecord::target), ElementsAre("1200", "300"));
  editor.GoToRow(2);
  editor.EnterCell(LineColumn::kTarget, "400");
  EXPECT_THAT(Column(&RecipeLineRecord::target), ElementsAre("1200", "400"));
  ExpectStored();
}

TEST_F(RecipeLineEntry, TheFirstLineMakesTheNameTheDescription) {
  editor.Select(kByWeight);
  static_cast<void>(editor.LeaveName("STEERS"));
  EXPECT_EQ(ReadRecipe(database, kByWeight).description, "");
  Add(kCorn, "1200");
  EXPECT_EQ(ReadRecipe(database, kByWeight).description, "STEERS");
  static_cast<void>(editor.LeaveName("CALVES"));
  Add(kCorn, "1");
  EXPECT_EQ(ReadRecipe(database, kByWeight).description, "STEERS");
}

TEST_F(RecipeLineEntry, TheFirstLineOfARecipeWithoutNameIsReported) {
  editor.Select(kByWeight);
  static_cast<void>(editor.LeaveName(""));
  op.boxes.clear();
  Add(kCorn, "1200");
  EXPECT_THAT(LastBox(op.boxes),
              IsBox(Icon::kCritical, "Field Error", "The 'Name' field is mandatory."));
  EXPECT_THAT(Column(&RecipeLineRecord::target), ElementsAre("1200"));
  ExpectStored();
}

TEST_F(RecipeLineEntry, After32LinesTheEntryRowGoesAwayAndComesBack) {
  editor.Select(kByWeight);
  for (int line = 1; line <= kMaxRecipeLines; ++line) {
    EXPECT_TRUE(Shown().entry_row_offered);
    Add(kOats, std::to_string(line));
  }
  EXPECT_FALSE(Shown().entry_row_offered);
  EXPECT_FALSE(editor.GoToRow(kEntryRow));
  EXPECT_EQ(Refusal([&] { editor.RequireRoom(); }),
            "Recipe 1 has 32 lines, and a recipe holds at most 32.");
  EXPECT_TRUE(Delete());
  EXPECT_FALSE(Shown().entry_row_offered);
  editor.GridGotFocus();
  EXPECT_TRUE(Shown().entry_row_offered);
  EXPECT_TRUE(editor.GoToRow(kEntryRow));
}

TEST_F(RecipeLineEntry, AfterADeletionTheEntryRowComesBackWithACommittedRow) {
  editor.Select(kByWeight);
  for (int line = 1; line <= kMaxRecipeLines; ++line) {
    Add(kOats, "5");
  }
  EXPECT_TRUE(Delete());
  editor.GoToRow(2);
  editor.EnterCell(LineColumn::kTarget, "6");
  EXPECT_TRUE(Shown().entry_row_offered);
}

TEST_F(RecipeLineEntry, ALineComposedInARecipeThatFilledUpMeanwhileIsRefused) {
  editor.Select(kByWeight);
  for (int line = 1; line < kMaxRecipeLines; ++line) {
    Add(kOats, "5");
  }
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(kCorn);
  editor.EnterCell(LineColumn::kTarget, "7");
  RecipeLineRecord other{.recipe_id = "1", .ingredient = "4", .sequence = 99};
  WriteRecipeLine(database, other);
  editor.CommitRecipeRecord();
  EXPECT_THROW(editor.CommitRow(), FieldRefusal);
  EXPECT_THAT(ReadRecipeLines(database, kByWeight), SizeIs(32));
}

TEST_F(RecipeLineEntry, IsClosedInAnUntypedRecipe) {
  const std::string refusal =
      "Recipe 5 is of type \"!\": its lines are closed until a type W, H, % or P is chosen.";
  EXPECT_EQ(Refusal([&] { editor.ChooseIngredient(kCorn); }), refusal);
  EXPECT_EQ(Refusal([&] { editor.EnterCell(LineColumn::kTarget, "5"); }), refusal);
}

TEST_F(RecipeLineEntry, TakesTheCellOfItsTypeOnly) {
  editor.Select(kByPercent);
  EXPECT_EQ(Refusal([&] { editor.EnterCell(LineColumn::kTarget, "5"); }),
            "The 'Target' field is closed in a recipe of type \"P\": its lines are entered by "
            "'Ingredient%'.");
  for (const int recipe : {kByWeight, kByHeadCount, kSelfAdjusting}) {
    editor.Select(recipe);
    EXPECT_EQ(Refusal([&] { editor.EnterCell(LineColumn::kIngredientPercent, "5"); }),
              "The 'Ingredient%' field is closed in a recipe of type \"" +
                  Shown().ration.recipe.batch_type + "\": its lines are entered by 'Target'.");
  }
}

TEST_F(RecipeLineEntry, RefusesAnIngredientThatIsNotInUseOrNotThere) {
  editor.Select(kByWeight);
  EXPECT_EQ(Refusal([&] { editor.ChooseIngredient(kIdle); }),
            "Ingredient 5 (ING005) is not in use: only an ingredient with a description can be "
            "chosen.");
  EXPECT_EQ(Refusal([&] { editor.ChooseIngredient(101); }),
            "There is no ingredient 101, they are numbered 1 to 100.");
  EXPECT_FALSE(Shown().EntryPending());
}

TEST_F(RecipeLineEntry, TheInputsAreClosedWhileATargetIsEdited) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  editor.BeforeCellEdit(LineColumn::kIngredient);
  EXPECT_EQ(Shown().enabled, kAllOpen);
  editor.BeforeCellEdit(LineColumn::kTarget);
  EXPECT_EQ(Shown().enabled, kClosed);
  editor.AfterCellEdit(LineColumn::kTarget);
  EXPECT_EQ(Shown().enabled, kAllOpen);
}

TEST_F(RecipeLineEntry, AnIdleEntryRowLeavesFiguresAndInputsAsOnALine) {
  editor.Select(kByWeight);
  AddCornHaySupplement();
  editor.GoToRow(kEntryRow);
  EXPECT_EQ(Shown().enabled, kAllOpen);
  editor.LeaveRationTarget("6000");
  EXPECT_THAT(Column(&RecipeLineRecord::batch_target), ElementsAre("3478", "2267", "255"));
  EXPECT_EQ(Shown().totals.batch_target, "6000");
  EXPECT_EQ(Shown().enabled, kAllOpen);
  editor.ChooseAdjustItem(0);
  EXPECT_EQ(Shown().totals.batch_target, "7200");
  editor.DiscardEntry();
  editor.CommitRecipeRecord();
  editor.DeleteIng();
  editor.RecomputeAll();
  EXPECT_EQ(Shown().row, kEntryRow);
  EXPECT_EQ(Shown().totals.batch_target, "7200");
  EXPECT_EQ(Shown().enabled, kAllOpen);
  ExpectStored();
}

TEST_F(RecipeLineEntry, ARecipeLeftWithAnIncompleteLineGetsItsFiguresBack) {
  editor.Select(kByWeight);
  AddCornHaySupplement();
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(kOats);
  editor.LeaveRationTarget("6000");
  editor.Select(kByHeadCount);
  const std::vector<RecipeLineRecord> left = ReadRecipeLines(database, kByWeight);
  ASSERT_THAT(left, SizeIs(3));
  EXPECT_EQ(left[0].batch_target, "3478");
  EXPECT_EQ(left[1].batch_target, "2267");
  EXPECT_EQ(left[2].batch_target, "255");
  EXPECT_EQ(left[0].ration_percent, "60.000");
}

TEST_F(RecipeLineEntry, DiscardingKeepsWhatAnotherTabChangedInTheLines) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(kHay);
  database.exec("UPDATE RecipeRation SET [DryMatter%] = '50', DryMatter = '2400'");
  editor.EndEntry();
  EXPECT_THAT(Column(&RecipeLineRecord::dry_matter_percent), ElementsAre("50"));
  EXPECT_THAT(Column(&RecipeLineRecord::dry_matter), ElementsAre("2400"));
  EXPECT_THAT(Column(&RecipeLineRecord::batch_target), ElementsAre("5000"));
  ExpectStored();
}

TEST_F(RecipeLineEntry, EndingItAddsACompleteLine) {
  editor.Select(kByWeight);
  editor.ChooseIngredient(kCorn);
  editor.EnterCell(LineColumn::kTarget, "5");
  editor.EndEntry();
  EXPECT_FALSE(Shown().EntryPending());
  EXPECT_THAT(Column(&RecipeLineRecord::target), ElementsAre("5"));
  ExpectStored();
}

TEST_F(RecipeLineEntry, AnotherIngredientOfAStoredLineBringsItsDryMatter) {
  editor.Select(kByWeight);
  AddCornHaySupplement();
  editor.GoToRow(3);
  editor.ChooseIngredient(kOats);
  EXPECT_THAT(Column(&RecipeLineRecord::ingredient), ElementsAre("1", "2", "4"));
  EXPECT_THAT(Column(&RecipeLineRecord::ration_percent), ElementsAre("57.143", "38.095", "4.762"));
  EXPECT_THAT(HandAdds(), ElementsAre(false, false, false));
  EXPECT_EQ(Shown().row, 3);
  ExpectStored();
}

TEST_F(RecipeLineEntry, AWeightOfZeroIsTakenAndClosesTheInputs) {
  editor.Select(kByWeight);
  Add(kCorn, "0");
  EXPECT_EQ(Shown().enabled, kClosed);
  EXPECT_THAT(Column(&RecipeLineRecord::batch_target), ElementsAre("0"));
}

TEST_F(RecipeLineEntry, ACellThatIsLeftOpensNoInputsWhileTheWeightsTotalZero) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  const auto edit = [&](std::string_view weight) {
    editor.BeforeCellEdit(LineColumn::kTarget);
    editor.EnterCell(LineColumn::kTarget, weight);
    editor.AfterCellEdit(LineColumn::kTarget);
  };
  edit("0");
  EXPECT_EQ(Shown().enabled, kClosed);
  editor.BeforeCellEdit(LineColumn::kTarget);
  editor.AfterCellEdit(LineColumn::kTarget);
  EXPECT_EQ(Shown().enabled, kClosed);
  editor.GoToRow(kEntryRow);
  editor.BeforeCellEdit(LineColumn::kTarget);
  editor.AfterCellEdit(LineColumn::kTarget);
  EXPECT_EQ(Shown().enabled, kClosed);
  editor.GoToRow(1);
  edit("7");
  EXPECT_EQ(Shown().enabled, kAllOpen);
}

}  // namespace
}  // namespace vrx::testing
