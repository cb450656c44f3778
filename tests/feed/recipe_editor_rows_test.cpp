#include <string>
#include <tuple>

#include "feed/recipe_editor_fixture.h"
#include "feed/record_fields.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecipeRows : public RecipeEditorTest {};

TEST_F(RecipeRows, ADeletionAsksByTheIngredientsName) {
  editor.Select(kByWeight);
  AddCornHaySupplement();
  editor.GoToRow(2);
  EXPECT_TRUE(Delete());
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_THAT(LastBox(op.boxes), IsBox(Icon::kQuestion, "Delete Ingredient",
                                       "Delete HAY from this recipe?", Buttons::kYesNo));
  EXPECT_EQ(op.boxes.back().buttons, Buttons::kYesNo);
  EXPECT_THAT(Column(&RecipeLineRecord::ingredient), ElementsAre("1", "3"));
  EXPECT_THAT(Column(&RecipeLineRecord::ration_percent), ElementsAre("100.000", "0.000"));
  EXPECT_EQ(Shown().row, 1);
  EXPECT_EQ(Shown().enabled, kAllOpen);
  EXPECT_EQ(op.beeps, 0);
  ExpectStored();
}

TEST_F(RecipeRows, ADeletionAnsweredWithNoLeavesTheLine) {
  editor.Select(kByWeight);
  AddCornHaySupplement();
  EXPECT_FALSE(Delete(Answer::kNo));
  EXPECT_EQ(Shown().LineCount(), 3);
  ExpectStored();
}

TEST_F(RecipeRows, AnIngredientOutOfUseHasNoNameInTheQuestion) {
  editor.Select(kByWeight);
  Add(kHay, "800");
  WriteIngredient(database, {kHay, "HAY", "", 90, false});
  EXPECT_TRUE(Delete());
  EXPECT_THAT(LastBox(op.boxes), IsBox(Icon::kQuestion, "Delete Ingredient",
                                       "Delete  from this recipe?", Buttons::kYesNo));
}

TEST_F(RecipeRows, TheEntryRowCannotBeDeleted) {
  editor.Select(kByWeight);
  EXPECT_FALSE(editor.DeleteIng());
  EXPECT_THAT(LastBox(op.boxes), IsBox(Icon::kInformation, "Delete (Error)",
                                       "There is no ingredient selected to delete."));
  EXPECT_EQ(op.beeps, 1);
}

TEST_F(RecipeRows, TheEntryRowIsOfferedAgainAfterTheLastLineOfAFullRecipe) {
  editor.Select(kByWeight);
  for (int line = 0; line < kMaxRecipeLines; ++line) {
    Add(kCorn, "10");
  }
  EXPECT_FALSE(Shown().entry_row_offered);
  while (Shown().LineCount() > 0) {
    ASSERT_TRUE(Delete());
  }
  EXPECT_TRUE(Shown().entry_row_offered);
}

TEST_F(RecipeRows, TheLastDeletionLeadsToTheEntryRowAndClosesTheInputs) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  EXPECT_TRUE(Delete());
  EXPECT_EQ(Shown().row, kEntryRow);
  EXPECT_EQ(Shown().enabled, kClosed);
  EXPECT_EQ(Shown().totals.target, "0");
  EXPECT_EQ(Shown().totals.dry_matter_percent, "0.0");
  EXPECT_THAT(ReadRecipeLines(database, kByWeight), IsEmpty());
  Add(kHay, "5");
  EXPECT_THAT(Sequences(), ElementsAre(1));
}

TEST_F(RecipeRows, SequencesAreNotRenumberedAndGapsNotFilled) {
  editor.Select(kByWeight);
  AddCornHaySupplement();
  editor.GoToRow(2);
  EXPECT_TRUE(Delete());
  EXPECT_THAT(Sequences(), ElementsAre(1, 3));
  Add(kOats, "5");
  EXPECT_THAT(Sequences(), ElementsAre(1, 3, 4));
}

TEST_F(RecipeRows, AMoveCarriesSixCellsAndLeavesTheHandAddMark) {
  editor.Select(kByWeight);
  Add(kSupp, "100");
  Add(kCorn, "1200");
  editor.GoToRow(1);
  EXPECT_TRUE(editor.MoveRow(MoveDirection::kDown));
  EXPECT_EQ(Shown().row, 2);
  EXPECT_THAT(Column(&RecipeLineRecord::ingredient), ElementsAre("1", "3"));
  EXPECT_THAT(Column(&RecipeLineRecord::target), ElementsAre("1200", "100"));
  EXPECT_THAT(Column(&RecipeLineRecord::ration_percent), ElementsAre("100.000", "0.000"));
  EXPECT_THAT(Column(&RecipeLineRecord::dry_matter_percent), ElementsAre("88", "0"));
  EXPECT_THAT(Column(&RecipeLineRecord::dry_matter), ElementsAre("1364", "100"));
  EXPECT_THAT(Column(&RecipeLineRecord::batch_target), ElementsAre("4658", "342"));
  EXPECT_THAT(Sequences(), ElementsAre(1, 2));
  EXPECT_THAT(HandAdds(), ElementsAre(true, false));
  ExpectStored();
}

TEST_F(RecipeRows, AMoveLeavesThePercentage) {
  editor.Select(kByPercent);
  Add(kCorn, "60");
  Add(kOats, "40");
  EXPECT_TRUE(editor.MoveRow(MoveDirection::kUp));
  EXPECT_EQ(Shown().row, 1);
  EXPECT_THAT(Column(&RecipeLineRecord::ingredient), ElementsAre("4", "1"));
  EXPECT_THAT(Column(&RecipeLineRecord::ingredient_percent), ElementsAre("60.00", "40.00"));
  EXPECT_THAT(Column(&RecipeLineRecord::dry_matter), ElementsAre("4000", "6818"));
  ExpectStored();
}

struct RefusedMove {
  const char* what;
  int lines;
  int row;
  MoveDirection direction;
  std::string_view text;
};

class RefusedMoves : public RecipeEditorTest, public ::testing::WithParamInterface<RefusedMove> {};

TEST_P(RefusedMoves, ShowAMessageAndBeep) {
  editor.Select(kByWeight);
  for (int line = 0; line < GetParam().lines; ++line) {
    Add(kCorn, "10");
  }
  ASSERT_TRUE(editor.GoToRow(GetParam().row));
  const std::vector<RecipeLineRecord> before = Shown().ration.lines;
  EXPECT_FALSE(editor.MoveRow(GetParam().direction));
  EXPECT_THAT(LastBox(op.boxes),
              IsBox(Icon::kInformation, "Move (Error)", std::string(GetParam().text)));
  EXPECT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.beeps, 1);
  EXPECT_EQ(Shown().ration.lines, before);
  EXPECT_EQ(Shown().row, GetParam().row);
}

constexpr std::string_view kNotDown = "The selected row cannot be moved down.";
constexpr std::string_view kNotUp = "The selected row cannot be moved up.";
constexpr std::string_view kNotEntry = "The ingredient entry row cannot be moved.";

INSTANTIATE_TEST_SUITE_P(
    All, RefusedMoves,
    ::testing::Values(RefusedMove{"OnlyLineDown", 1, 1, MoveDirection::kDown, kNotDown},
                      RefusedMove{"OnlyLineUp", 1, 1, MoveDirection::kUp, kNotUp},
                      RefusedMove{"FirstLineUp", 3, 1, MoveDirection::kUp, kNotUp},
                      RefusedMove{"LastLineDown", 3, 3, MoveDirection::kDown, kNotDown},
                      RefusedMove{"EntryRowAlone", 0, kEntryRow, MoveDirection::kUp, kNotEntry},
                      RefusedMove{"EntryRow", 2, kEntryRow, MoveDirection::kDown, kNotEntry}),
    [](const auto& test) { return std::string(test.param.what); });

TEST_F(RecipeRows, AreClosedInAnUntypedRecipeThatHasLines) {
  RecipeLineRecord line{.recipe_id = "5", .ingredient = "1", .target = "7", .sequence = 1};
  WriteRecipeLine(database, line);
  line.row = 0;
  line.sequence = 2;
  WriteRecipeLine(database, line);
  editor.Select(kUntyped);
  EXPECT_THROW(editor.DeleteIng(), FieldRefusal);
  EXPECT_THROW(editor.MoveRow(MoveDirection::kDown), FieldRefusal);
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(RecipeRows, ThereIsNoRowBeyondTheLines) {
  editor.Select(kByWeight);
  Add(kCorn, "10");
  for (const int row : {0, 2, 33, -2}) {
    EXPECT_FALSE(editor.GoToRow(row)) << row;
    EXPECT_EQ(Shown().row, 1);
  }
}

}  // namespace
}  // namespace vrx::testing
