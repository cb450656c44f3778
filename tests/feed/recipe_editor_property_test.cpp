#include <algorithm>
#include <random>
#include <set>

#include "feed/ration_model.h"
#include "feed/recipe_editor_fixture.h"
#include "feed/record_fields.h"

namespace vrx::testing {
namespace {

// Random edits of one of the typed recipes, inside one transaction or each by itself.
class RandomRecipeEdits : public RecipeEditorTest, public ::testing::WithParamInterface<unsigned> {
 protected:
  RandomRecipeEdits() {
    for (int id = 1; id <= 4; ++id) {
      editor.Select(id);
      Add(kCorn, "10");
    }
    editor.Select(Number(1, 4));
  }

  int Number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

  std::string Amount() {
    return Shown().Entry() == LineEntry::kWeight
               ? std::to_string(Number(0, 99999))
               : std::to_string(Number(0, 99)) + "." + std::to_string(Number(0, 99));
  }

  void Grow(int lines) {
    while (Shown().LineCount() < lines) {
      Add(Number(kCorn, kOats), Amount());
    }
  }

  void Step() {
    const MoveDirection direction = Number(0, 1) == 0 ? MoveDirection::kUp : MoveDirection::kDown;
    switch (Number(0, 9)) {
      case 0:
      case 1:
      case 2:
        editor.GridGotFocus();
        editor.GoToRow(kEntryRow);
        return;
      case 3:
      case 4:
        return editor.ChooseIngredient(Number(kCorn, kOats));
      case 5:
      case 6:
        return editor.EnterCell(OpenColumn(), Amount());
      case 7:
        editor.GoToRow(Number(-1, 33));
        return;
      case 8:
        // A percentage stays in its row, so the moved as-fed weights do not match it.
        if (moves_shares_ || Shown().Entry() != LineEntry::kPercent) {
          editor.MoveRow(direction);
        }
        return;
      default:
        HeadOrRow();
    }
  }

  void HeadOrRow() {
    switch (Number(0, 5)) {
      case 0:
        Delete(Number(0, 3) == 0 ? Answer::kNo : Answer::kYes);
        op.answers.clear();
        return;
      case 1:
        return editor.LeaveHeadCount(std::to_string(Number(0, 1200)));
      case 2:
        return editor.LeaveRationTarget(std::to_string(Number(0, 999999)));
      case 3:
        return editor.ChooseAdjustItem(Number(0, 40));
      case 4:
        editor.CommitRow();
        return;
      default:
        return editor.RecomputeAll();
    }
  }

  // Also what the grid and the action bar do on an idle entry row, and another recipe.
  void StepAnywhere() {
    const LineColumn column = Number(0, 1) == 0 ? LineColumn::kIngredient : OpenColumn();
    switch (Number(0, 11)) {
      case 0:
        return editor.Select(Number(0, 4));
      case 1:
        return editor.DiscardEntry();
      case 2:
        return editor.CommitRecipeRecord();
      case 3:
        editor.BeforeCellEdit(column);
        return editor.AfterCellEdit(column);
      case 4:
        return editor.LeaveDescription("Fed daily", std::nullopt);
      default:
        return Step();
    }
  }

  // The figures of a recipe's lines, computed only from the entered cells.
  static void ExpectFigures(const Ration& ration, const TotalsRow* totals = nullptr) {
    const std::optional<ModelOutcome> expected = ModelRation(ration);
    ASSERT_TRUE(expected.has_value());
    EXPECT_TRUE(totals == nullptr || *totals == expected->row);
    EXPECT_EQ(Cells(ration, &RecipeLineRecord::dry_matter), expected->dry_matter);
    EXPECT_EQ(Cells(ration, &RecipeLineRecord::ration_percent), expected->ration_percent);
    EXPECT_EQ(Cells(ration, &RecipeLineRecord::batch_target), expected->batch_target);
  }

  void ExpectFiguresShownAndStored() {
    for (int id = kByWeight; id <= kByPercent; ++id) {
      const bool composed = Shown().EntryPending() && Shown().ration.recipe.id == id;
      if (!composed) {
        ExpectFigures({.recipe = ReadRecipe(database, id), .lines = ReadRecipeLines(database, id)});
      }
    }
    if (!Shown().EntryPending() && Shown().LineCount() > 0) {
      ExpectFigures(Shown().ration, &Shown().totals);
    }
  }

  std::vector<RecipeLineRecord> LinesOfOthers() {
    std::vector<RecipeLineRecord> lines = ReadAllRecipeLines(database);
    const std::string own = std::to_string(Shown().ration.recipe.id);
    std::erase_if(lines, [&](const RecipeLineRecord& line) { return line.recipe_id == own; });
    return lines;
  }

  bool moves_shares_ = true;

 private:
  std::mt19937 random_{GetParam()};
};

TEST_P(RandomRecipeEdits, StayStoredWithinBoundsAndApartFromOtherRecipes) {
  database.exec(GetParam() % 2 == 0 ? "BEGIN" : "SELECT 1");
  const std::vector<RecipeLineRecord> others = LinesOfOthers();
  for (int step = 0; step < 400; ++step) {
    Step();
    ExpectStored();
    EXPECT_LE(Shown().LineCount(), kMaxRecipeLines);
    EXPECT_TRUE(Shown().OnEntryRow() || !Shown().EntryPending());
    EXPECT_TRUE(Shown().OnEntryRow() || (Shown().row >= 1 && Shown().row <= Shown().LineCount()));
    const std::vector<int> sequences = Sequences();
    EXPECT_TRUE(std::is_sorted(sequences.begin(), sequences.end()));
    EXPECT_EQ(std::set(sequences.begin(), sequences.end()).size(), sequences.size());
    ASSERT_FALSE(HasFailure()) << "step " << step;
  }
  EXPECT_EQ(LinesOfOthers(), others);
}

TEST_P(RandomRecipeEdits, ShowAndStoreTheFiguresOfAnIndependentRecomputation) {
  moves_shares_ = false;
  for (int step = 0; step < 300; ++step) {
    StepAnywhere();
    ExpectStored();
    ExpectFiguresShownAndStored();
    ASSERT_FALSE(HasFailure()) << "step " << step;
  }
}

TEST_P(RandomRecipeEdits, RecomputingChangesNothingMore) {
  Grow(Number(2, 12));
  const CurrentRecipe before = Shown();
  editor.RecomputeAll();
  editor.Select(Shown().ration.recipe.id);
  editor.CommitRecipeRecord();
  EXPECT_EQ(Shown().ration.lines, before.ration.lines);
  EXPECT_EQ(Shown().totals, before.totals);
  EXPECT_EQ(Shown().enabled, before.enabled);
}

TEST_P(RandomRecipeEdits, AMoveUpAndDownRestoresEverything) {
  Grow(Number(2, 12));
  const int row = Number(2, Shown().LineCount());
  ASSERT_TRUE(editor.GoToRow(row));
  const CurrentRecipe before = Shown();
  EXPECT_TRUE(editor.MoveRow(MoveDirection::kUp));
  EXPECT_EQ(Shown().row, row - 1);
  EXPECT_TRUE(editor.MoveRow(MoveDirection::kDown));
  EXPECT_EQ(Shown().row, row);
  EXPECT_EQ(Shown().ration.lines, before.ration.lines);
  EXPECT_EQ(Shown().totals, before.totals);
  ExpectStored();
}

TEST_P(RandomRecipeEdits, ADiscardedLineChangesNothing) {
  Grow(Number(1, 12));
  editor.GoToRow(1);
  const CurrentRecipe before = Shown();
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(Number(kCorn, kOats));
  editor.EnterCell(OpenColumn(), Amount());
  editor.DiscardEntry();
  editor.GoToRow(1);
  EXPECT_EQ(Shown().ration.lines, before.ration.lines);
  EXPECT_EQ(Shown().totals, before.totals);
  ExpectStored();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomRecipeEdits, ::testing::Range(1U, 13U));

}  // namespace
}  // namespace vrx::testing
