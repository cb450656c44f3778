#include <array>
#include <functional>

#include "feed/recipe_editor_fixture.h"
#include "feed/record_fields.h"
#include "presenter/report_failure.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

// Every kind of edit, each of which writes.
struct NamedEdit {
  std::string_view name;
  void (*run)(RecipeEditor&);
};

void AddLine(RecipeEditor& editor) {
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(2);
  editor.EnterCell(LineColumn::kTarget, "777");
  editor.CommitRow();
}

constexpr std::array<NamedEdit, 9> kEdits = {{
    {"Add", AddLine},
    {"EnterCell", [](RecipeEditor& editor) { editor.EnterCell(LineColumn::kTarget, "777"); }},
    {"ChooseIngredient", [](RecipeEditor& editor) { editor.ChooseIngredient(4); }},
    {"DeleteIng", [](RecipeEditor& editor) { editor.DeleteIng(); }},
    {"MoveRow", [](RecipeEditor& editor) { editor.MoveRow(MoveDirection::kDown); }},
    {"ChooseBatchType", [](RecipeEditor& editor) { editor.ChooseBatchType(2); }},
    {"ChooseAdjustItem", [](RecipeEditor& editor) { editor.ChooseAdjustItem(0); }},
    {"LeaveName", [](RecipeEditor& editor) { static_cast<void>(editor.LeaveName("OTHER")); }},
    {"LeaveRationTarget", [](RecipeEditor& editor) { editor.LeaveRationTarget("77"); }},
}};

class RecipeEditorFaults : public RecipeEditorTest,
                           public ::testing::WithParamInterface<NamedEdit> {
 protected:
  RecipeEditorFaults() {
    editor.Select(kByWeight);
    AddCornHaySupplement();
    editor.GoToRow(1);
    op.answers.push_back(Answer::kYes);
  }

  // While a new line is composed, the totals include its entered cells.
  void ExpectUntouched(RecipeEditor& tried, const std::function<void()>& edit) {
    const auto before = CurrentRecipe(tried.Current());
    const std::string file = ReadAll(folder / "YARD.RDB");
    EXPECT_THROW(edit(), DatabaseError);
    EXPECT_EQ(tried.Current().ration.recipe.name, before.ration.recipe.name);
    EXPECT_EQ(tried.Current().ration.recipe.batch_type, before.ration.recipe.batch_type);
    EXPECT_EQ(tried.Current().ration.recipe.ration_target, before.ration.recipe.ration_target);
    EXPECT_EQ(tried.Current().ration.recipe.adjust_batch_index,
              before.ration.recipe.adjust_batch_index);
    EXPECT_EQ(tried.Current().LineCount(), before.LineCount());
    EXPECT_EQ(tried.Current().type_list_enabled, before.type_list_enabled);
    EXPECT_EQ(tried.Current().ration.lines, before.ration.lines);
    if (!tried.Current().OnEntryRow()) {
      EXPECT_EQ(tried.Current().totals, before.totals);
      EXPECT_EQ(tried.Current().row, before.row);
    }
    EXPECT_TRUE(ReadAll(folder / "YARD.RDB") == file);
  }
};

TEST_P(RecipeEditorFaults, AReadOnlyDatabaseLeavesEverythingAsItWas) {
  SQLite::Database read_only = OpenDatabase(folder / "YARD.RDB", Access::kRead);
  RecipeEditor tried(read_only, messages, kByWeight);
  ExpectUntouched(tried, [&] { GetParam().run(tried); });
}

// The failure occurs after a part of the step is written.
TEST_P(RecipeEditorFaults, AWriteThatFailsHalfwayLeavesEverythingAsItWas) {
  database.exec(
      "CREATE TRIGGER FailHead BEFORE UPDATE ON Recipe BEGIN SELECT RAISE(FAIL, 'full'); END; "
      "CREATE TRIGGER FailAdd BEFORE INSERT ON RecipeRation BEGIN SELECT RAISE(FAIL, 'full'); END; "
      "CREATE TRIGGER FailLine AFTER UPDATE ON RecipeRation WHEN NEW.Sequence = 2 "
      "BEGIN SELECT RAISE(FAIL, 'full'); END; "
      "CREATE TRIGGER FailDelete AFTER DELETE ON RecipeRation "
      "BEGIN SELECT RAISE(FAIL, 'full'); END");
  ExpectUntouched(editor, [&] { GetParam().run(editor); });
  // No transaction is still open.
  SQLite::Database other = OpenDatabase(folder / "YARD.RDB", Access::kWrite);
  other.exec("DROP TRIGGER FailHead");
}

TEST_P(RecipeEditorFaults, AFailedStepKeepsTheRestOfItsTransaction) {
  database.exec(
      "CREATE TRIGGER Fail AFTER UPDATE ON RecipeRation BEGIN SELECT RAISE(FAIL, 'full'); END; "
      "CREATE TRIGGER FailAdd BEFORE INSERT ON RecipeRation BEGIN SELECT RAISE(FAIL, 'full'); END; "
      "CREATE TRIGGER FailDelete AFTER DELETE ON RecipeRation "
      "BEGIN SELECT RAISE(FAIL, 'full'); END; "
      "CREATE TRIGGER FailHead BEFORE UPDATE ON Recipe WHEN NEW.ID = 1 "
      "BEGIN SELECT RAISE(FAIL, 'full'); END; "
      "BEGIN; UPDATE Pen SET FeedAmount = '9' WHERE ID = 1");
  EXPECT_THROW(GetParam().run(editor), DatabaseError);
  database.exec("COMMIT");
  EXPECT_EQ(ReadPen(database, 1).feed_amount, "9");
  EXPECT_THAT(ReadRecipeLines(database, kByWeight), SizeIs(3));
}

INSTANTIATE_TEST_SUITE_P(All, RecipeEditorFaults, ::testing::ValuesIn(kEdits),
                         [](const auto& edit) { return std::string(edit.param.name); });

class WriteProtectedRecipe : public RecipeEditorTest {};

// Its figures are from before a change of the ingredient's dry matter.
TEST_F(WriteProtectedRecipe, IsShownRecomputedAndStaysAsItIs) {
  editor.Select(kByWeight);
  AddLine(editor);
  const TempFolder locked;
  const std::filesystem::path path = locked / "OLD.RDB";
  std::filesystem::copy_file(folder / "YARD.RDB", path);
  Alter(path, "UPDATE RecipeRation SET [Ration%] = '1', BatchTarget = '1'");
  const std::string before = ReadAll(path);
  const WithoutWritePermission protection(locked.Path());
  SQLite::Database read_only = OpenDatabase(path, Access::kRead);
  RecipeEditor shown(read_only, messages, kByWeight);
  shown.RecomputeAll();
  shown.CommitRecipeRecord();
  EXPECT_EQ(shown.Current().ration.lines.at(0).ration_percent,
            editor.Current().ration.lines.at(0).ration_percent);
  EXPECT_EQ(shown.Current().ration.lines.at(0).batch_target,
            editor.Current().ration.lines.at(0).batch_target);
  EXPECT_TRUE(ReadAll(path) == before);
}

class RecipeEditorFailure : public RecipeEditorTest {
 protected:
  // 22 lines of 99,999,900 as fed are more than 32 bits hold; 21 are not.
  void FillToTheBrim() {
    WriteIngredient(database, {kCorn, "CORN", "Corn", 1, false});
    editor.Select(kByWeight);
    for (int line = 1; line <= 21; ++line) {
      Add(kCorn, "999999");
    }
  }
};

TEST_F(RecipeEditorFailure, AnEditThatWouldOverflowIsRefusedAsAWhole) {
  FillToTheBrim();
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(kCorn);
  const TotalsRow totals = Shown().totals;
  EXPECT_THROW(editor.EnterCell(LineColumn::kTarget, "999999"), Error);
  EXPECT_EQ(Shown().Current().target, "0");
  EXPECT_EQ(Shown().totals, totals);
  EXPECT_THAT(Shown().failure, IsEmpty());
  ExpectStored();
}

TEST_F(RecipeEditorFailure, ARecipeThatOverflowsIsShownAndCanBeCorrected) {
  FillToTheBrim();
  RecipeLineRecord line = Shown().ration.lines.front();
  line.row = 0;
  line.sequence = 30;
  WriteRecipeLine(database, line);
  editor.Select(kByWeight);
  EXPECT_EQ(Shown().failure,
            "Overflow: the sum of 'DryMatter' is outside the range of 32-bit whole numbers.");
  EXPECT_EQ(Shown().totals, TotalsRow{});
  EXPECT_EQ(Shown().enabled, kClosed);
  EXPECT_EQ(Shown().LineCount(), 22);
  EXPECT_TRUE(Delete());
  EXPECT_THAT(Shown().failure, IsEmpty());
  EXPECT_EQ(Shown().enabled, kAllOpen);
  ExpectStored();
}

TEST_F(RecipeEditorFailure, ARecipeWithInvalidTextsCanBeCorrectedStepByStep) {
  editor.Select(kByPercent);
  Add(kCorn, "60");
  Add(kCorn, "40");
  database.exec("UPDATE RecipeRation SET [Ingredient%] = 'x'");
  editor.Select(kByPercent);
  EXPECT_NE(Shown().failure, "");
  editor.EnterCell(LineColumn::kIngredientPercent, "60");
  EXPECT_NE(Shown().failure, "");
  ExpectStored();
  editor.GoToRow(2);
  editor.EnterCell(LineColumn::kIngredientPercent, "40");
  EXPECT_EQ(Shown().failure, "");
  EXPECT_EQ(Shown().totals.ingredient_percent, "100.00");
  ExpectStored();
}

TEST_F(RecipeEditorFailure, ASequenceThatCannotGrowIsReportedAsAnOverflow) {
  RecipeLineRecord line{.recipe_id = "1", .ingredient = "1", .sequence = 2147483647};
  WriteRecipeLine(database, line);
  editor.Select(kByWeight);
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(kCorn);
  editor.EnterCell(LineColumn::kTarget, "5");
  EXPECT_THROW(editor.CommitRow(), Error);
  EXPECT_THAT(ReadRecipeLines(database, kByWeight), SizeIs(1));
}

TEST_F(RecipeEditorFailure, ALineThatCannotBeAddedStaysInTheEntryRow) {
  editor.Select(kByWeight);
  Add(kCorn, "1200");
  editor.GoToRow(kEntryRow);
  editor.ChooseIngredient(kHay);
  editor.EnterCell(LineColumn::kTarget, "800");
  database.exec(
      "CREATE TRIGGER Fail AFTER INSERT ON RecipeRation BEGIN SELECT RAISE(FAIL, 'full'); END");
  const std::string file = ReadAll(folder / "YARD.RDB");
  EXPECT_THROW(editor.CommitRow(), DatabaseError);
  EXPECT_THROW(editor.GoToRow(1), DatabaseError);
  EXPECT_TRUE(ReadAll(folder / "YARD.RDB") == file);
  EXPECT_TRUE(Shown().OnEntryRow());
  EXPECT_EQ(Shown().Current().target, "800");
  EXPECT_EQ(Shown().LineCount(), 1);
  ExpectStored();
  database.exec("DROP TRIGGER Fail");
  EXPECT_TRUE(editor.CommitRow());
  EXPECT_EQ(Shown().LineCount(), 2);
  ExpectStored();
}

TEST_F(RecipeEditorFailure, AFailedWriteBeepsWhateverTheSettingSays) {
  settings.SetEnableBeeperOn(false);
  SQLite::Database read_only = OpenDatabase(folder / "YARD.RDB", Access::kRead);
  RecipeEditor tried(read_only, messages, kByWeight);
  EXPECT_FALSE(RunReported<Error>(op, EventFailure, [&] { tried.LeaveRationTarget("77"); }));
  EXPECT_EQ(op.beeps, 1);
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(RecipeEditorFailure, ARefusalAndAnOverflowShowAMessageBox) {
  EXPECT_FALSE(RunReported<Error>(op, EventFailure, [&] { editor.ChooseIngredient(kCorn); }));
  EXPECT_THAT(
      LastBox(op.boxes),
      IsBox(
          Icon::kCritical, "Field Error",
          "Recipe 5 is of type \"!\": its lines are closed until a type W, H, % or P is chosen."));
  EXPECT_EQ(op.beeps, 1);
  EXPECT_FALSE(RunReported<Error>(op, EventFailure, [&] { editor.ChooseAdjustItem(41); }));
  EXPECT_THAT(LastBox(op.boxes), IsBox(Icon::kCritical, "Edit (Error)",
                                       "The adjust list has no item 41, its items are 0 to 40."));
  EXPECT_TRUE(RunReported<Error>(op, EventFailure, [&] { editor.ChooseBatchType(1); }));
  EXPECT_EQ(op.beeps, 2);
}

}  // namespace
}  // namespace vrx::testing
