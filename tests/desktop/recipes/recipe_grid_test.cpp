#include "desktop/recipes/recipe_grid.h"

#include <QAbstractButton>
#include <QApplication>
#include <QHeaderView>
#include <QTableView>
#include <QTest>

#include "desktop/recipes/recipe_grid_cells.h"
#include "desktop/recipes/recipes_fixture.h"
#include "feed/recipe_columns.h"

namespace vrx::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class RecipeGridTest : public RecipesFixture {
 protected:
  void EnterOn(int recipe) {
    Enter();
    Show(recipe);
    Grid().setFocus();
  }
  // Opens a cell with a click and overwrites its text.
  void Overtype(int row, RecipeColumn column, std::string_view text) {
    Click(row, column);
    ASSERT_TRUE(Grid().IsEditing());
    Type(text);
  }
  // The text of the focused editor.
  static std::string Edited() {
    const auto* const editor = qobject_cast<FilteredEdit*>(QApplication::focusWidget());
    return editor == nullptr ? "nothing is edited" : editor->Text();
  }
  void ClickButton(const char* name) {
    QTest::mouseClick(&Find<QAbstractButton>(name), Qt::LeftButton);
  }
  std::vector<int> Sequences(int recipe) {
    std::vector<int> sequences;
    for (const RecipeLineRecord& line : ReadRecipeLines(Database(), recipe)) {
      sequences.push_back(line.sequence);
    }
    return sequences;
  }
  std::vector<std::string> Totals() {
    std::vector<std::string> totals;
    for (const char* label : {"lblTargetTotal", "lblRationPctTotal", "lblDryMatPercent",
                              "lblDryMatTotal", "lblBatchTargetTotal", "lblHandAddTotal"}) {
      totals.push_back(Label(label));
    }
    return totals;
  }
  void FillUp(int recipe, int lines) {
    for (int line = 0; line < lines; ++line) {
      AddStoredLine(recipe, kOats, "100");
    }
  }
};

// What the cells come to.

TEST_F(RecipeGridTest, ARecipeByWeightIsWorkedOutAsItIsEntered) {
  SetRecipe(kByWeight, &RecipeRecord::adjust_batch_index, "15");
  EnterOn(kByWeight);
  AddByKeys("CORN", "1200");
  AddByKeys("HAY", "800");
  AddByKeys("SUPP", "100");
  Press(Qt::Key_Up);
  EXPECT_THAT(Column(kColumnDryMatter), ElementsAre("1364", "889", "100", ""));
  EXPECT_THAT(Column(kColumnRationPercent), ElementsAre("60.000", "40.000", "0.000", ""));
  EXPECT_THAT(Column(kColumnBatchTarget), ElementsAre("3043", "1984", "223", ""));
  EXPECT_THAT(Column(kColumnHandAdd), ElementsAre("No", "No", "Yes", ""));
  EXPECT_THAT(Totals(), ElementsAre("2100", "100.000", "89.2", "2353", "5250", "1"));
  ExpectStored();
}

TEST_F(RecipeGridTest, ASelfAdjustingRecipeComesToTheSame) {
  SetRecipe(kSelfAdjusting, &RecipeRecord::adjust_batch_index, "15");
  AddCornHaySupplement(kSelfAdjusting);
  EnterOn(kSelfAdjusting);
  EXPECT_THAT(Column(kColumnBatchTarget), ElementsAre("3043", "1984", "223", ""));
  EXPECT_THAT(Totals(), ElementsAre("2100", "100.000", "89.2", "2353", "5250", "1"));
}

TEST_F(RecipeGridTest, ARecipeByHeadCountRoundsAHalfToTheEvenNeighbour) {
  SetHeadCount(kByHeadCount, 250);
  AddCornHaySupplement(kByHeadCount);
  EnterOn(kByHeadCount);
  EXPECT_THAT(Column(kColumnBatchTarget), ElementsAre("3410", "2222", "250", ""));
  EXPECT_EQ(Label("lblBatchTargetTotal"), "5882");
}

TEST_F(RecipeGridTest, ARecipeByPercentOpensItsTargetAt100) {
  WriteIngredient(Database(), {kSupp, "SUPP", "Mineral Premix", 100, true});
  SetRecipe(kByPercent, &RecipeRecord::ration_target, "12000");
  EnterOn(kByPercent);
  AddByKeys("CORN", "62.50");
  AddByKeys("HAY", "30.00");
  EXPECT_FALSE(Enabled("txtRecRationTarget"));
  AddByKeys("SUPP", "7.50");
  Press(Qt::Key_Up);
  EXPECT_THAT(Column(kColumnDryMatter), ElementsAre("7102", "3333", "750", ""));
  EXPECT_THAT(Column(kColumnBatchTarget), ElementsAre("7619", "3576", "805", ""));
  EXPECT_EQ(Label("lblIngPctTotal"), "100.00");
  EXPECT_EQ(Label("lblDryMatTotal"), "11185");
  EXPECT_EQ(Label("lblBatchTargetTotal"), "12000");
  EXPECT_TRUE(Enabled("txtRecRationTarget"));
  EXPECT_TRUE(Enabled("lstAdjustBatchTotal"));
  EXPECT_FALSE(Visible("lblMustTotal100Pct"));
  ExpectStored();
}

TEST_F(RecipeGridTest, AnEmptyRecipeHasBlankTotalsAndClosedInputs) {
  EnterOn(kByWeight);
  EXPECT_THAT(Totals(), Each(""));
  EXPECT_FALSE(Enabled("txtRecRationTarget"));
  EXPECT_EQ(Column(kColumnIngredient), std::vector<std::string>{"click to add an ingredient"});
  EXPECT_EQ(CurrentRow(), 0);
}

TEST_F(RecipeGridTest, WithoutDryMatterFiguresNothingHasAShare) {
  WriteIngredient(Database(), {kCorn, "CORN", "Corn", 0, false});
  EnterOn(kByWeight);
  AddByKeys("CORN", "1200");
  AddByKeys("SUPP", "100");
  Press(Qt::Key_Up);
  EXPECT_THAT(Column(kColumnRationPercent), ElementsAre("0.000", "0.000", ""));
  EXPECT_THAT(Column(kColumnDryMatter), ElementsAre("1200", "100", ""));
}

TEST_F(RecipeGridTest, ARationTargetOf0GivesEmptyBatches) {
  SetRecipe(kByWeight, &RecipeRecord::ration_target, "0");
  AddCornHaySupplement(kByWeight);
  EnterOn(kByWeight);
  EXPECT_THAT(Column(kColumnBatchTarget), ElementsAre("0", "0", "0", ""));
}

TEST_F(RecipeGridTest, AWeightChangesAllThatFollowsFromIt) {
  AddCornHaySupplement(kByWeight);
  EnterOn(kByWeight);
  Overtype(1, kColumnTarget, "1200");
  EXPECT_FALSE(Enabled("txtRecRationTarget"));
  Press(Qt::Key_Return);
  EXPECT_TRUE(Enabled("txtRecRationTarget"));
  EXPECT_THAT(Column(kColumnRationPercent), ElementsAre("50.000", "50.000", "0.000", ""));
  EXPECT_EQ(Label("lblTargetTotal"), "2500");
  EXPECT_EQ(CurrentRow(), 2);
  ExpectStored();
}

TEST_F(RecipeGridTest, AChosenIngredientBringsItsFiguresAndRecomputesAllLines) {
  AddCornHaySupplement(kByWeight);
  EnterOn(kByWeight);
  Grid().GoTo(2, kColumnIngredient);
  Type("OATS");
  Press(Qt::Key_Return);
  EXPECT_EQ(Cell(2, kColumnDryMatterPercent), "100");
  EXPECT_EQ(Cell(2, kColumnHandAdd), "No");
  EXPECT_THAT(Column(kColumnRationPercent), ElementsAre("57.143", "38.095", "4.762", ""));
  EXPECT_EQ(Label("lblHandAddTotal"), "0");
  ExpectStored();
}

TEST_F(RecipeGridTest, TheSameIngredientMayBeChosenTwice) {
  EnterOn(kByWeight);
  AddByKeys("CORN", "100");
  AddByKeys("CORN", "300");
  EXPECT_THAT(Column(kColumnTarget), ElementsAre("100", "300", ""));
  EXPECT_THAT(Column(kColumnIngredient), ElementsAre("CORN", "CORN", "click to add an ingredient"));
}

TEST_F(RecipeGridTest, TheFirstLinePutsARecipeInUse) {
  EnterOn(kByWeight);
  AddByKeys("CORN", "100");
  EXPECT_EQ(Box("txtRecDesc"), "REC001");
  EXPECT_EQ(Stored(kByWeight).description, "REC001");
}

// Keys of the cells.

TEST_F(RecipeGridTest, AWeightTakesSixDigits) {
  AddCornHaySupplement(kByWeight);
  EnterOn(kByWeight);
  Overtype(0, kColumnTarget, "12a345678");
  EXPECT_EQ(Edited(), "123456");
  EXPECT_EQ(op_.beeps, 3);
  Press(Qt::Key_Backspace);
  Press(Qt::Key_Return);
  EXPECT_EQ(Cell(0, kColumnTarget), "12345");
}

TEST_F(RecipeGridTest, ARefusedKeyIsSilentWithoutTheBeeper) {
  AddCornHaySupplement(kByWeight);
  EnterOn(kByWeight);
  settings_.SetEnableBeeperOn(false);
  Overtype(0, kColumnTarget, "12a.");
  EXPECT_EQ(Edited(), "12");
  EXPECT_EQ(op_.beeps, 0);
}

TEST_F(RecipeGridTest, APercentageIsBetween0And100WithTwoDecimals) {
  AddCornHaySupplement(kByPercent);
  EnterOn(kByPercent);
  Overtype(0, kColumnIngredientPercent, "62.5-05");
  EXPECT_EQ(Edited(), "62.50");
  EXPECT_EQ(op_.beeps, 2);
  Press(Qt::Key_Escape);
  Overtype(0, kColumnIngredientPercent, "1000");
  EXPECT_EQ(Edited(), "100");
}

// The entry row.

TEST_F(RecipeGridTest, AClickOnTheEntryRowDropsTheListDown) {
  EnterOn(kByWeight);
  Click(0, kColumnIngredient);
  EXPECT_TRUE(Grid().IsEditing());
  auto& list = Find<QTableView>("grdINGSEL");
  EXPECT_TRUE(list.isVisible());
  EXPECT_EQ(list.model()->rowCount(), 4);
  EXPECT_EQ(list.model()->index(2, 2).data().toString(), u"Mineral Premix"_qs);
  EXPECT_TRUE(list.isColumnHidden(3));
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                    list.visualRect(list.model()->index(1, 1)).center());
  EXPECT_EQ(Cell(0, kColumnIngredient), "HAY");
  EXPECT_FALSE(list.isVisible());
  EXPECT_EQ(CurrentColumn(), kColumnTarget);
  EXPECT_THAT(ReadRecipeLines(Database(), kByWeight), IsEmpty());
}

TEST_F(RecipeGridTest, AnIngredientAloneDoesNotLeaveTheEntryRow) {
  AddCornHaySupplement(kByWeight);
  EnterOn(kByWeight);
  Grid().GoTo(3, kColumnIngredient);
  Type("OATS");
  Press(Qt::Key_Return);
  Click(0, kColumnRationPercent);
  EXPECT_EQ(CurrentRow(), 3);
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_THAT(Sequences(kByWeight), SizeIs(3));
}

TEST_F(RecipeGridTest, ALineThatIsCompleteIsAddedWhenTheFocusLeavesTheGrid) {
  EnterOn(kByWeight);
  Type("CORN");
  Press(Qt::Key_Return);
  Type("1200");
  Find<QWidget>("txtRecName").setFocus();
  EXPECT_THAT(Sequences(kByWeight), ElementsAre(1));
  EXPECT_EQ(CurrentRow(), 0);
}

TEST_F(RecipeGridTest, The32ndLineEndsTheEntryRow) {
  FillUp(kByWeight, 31);
  EnterOn(kByWeight);
  EXPECT_EQ(Rows(), 32);
  Grid().GoTo(31, kColumnIngredient);
  AddByKeys("CORN", "5");
  EXPECT_EQ(Rows(), 32);
  EXPECT_EQ(Cell(31, kColumnIngredient), "CORN");
  op_.answers.push_back(Answer::kYes);
  ClickButton("cmdDeleteIng");
  EXPECT_EQ(Rows(), 31);
  Grid().setFocus();
  EXPECT_EQ(Rows(), 32);
  EXPECT_EQ(Cell(31, kColumnIngredient), "click to add an ingredient");
}

TEST_F(RecipeGridTest, ACommittedRowBringsTheEntryRowBack) {
  FillUp(kByWeight, 32);
  EnterOn(kByWeight);
  op_.answers.push_back(Answer::kYes);
  ClickButton("cmdDeleteIng");
  ASSERT_EQ(Rows(), 31);
  Click(0, kColumnTarget);
  Type("7");
  Press(Qt::Key_Return);
  EXPECT_EQ(Cell(0, kColumnTarget), "7");
  EXPECT_EQ(Rows(), 32);
  EXPECT_EQ(Cell(31, kColumnIngredient), "click to add an ingredient");
}

TEST_F(RecipeGridTest, ALineThatCannotBeStoredIsAskedAboutAndStaysInItsEditor) {
  AddCornHaySupplement(kByWeight);
  EnterOn(kByWeight);
  settings_.SetEnableBeeperOn(false);
  Database().exec(
      "CREATE TRIGGER Fail BEFORE UPDATE ON RecipeRation BEGIN SELECT RAISE(FAIL, 'full'); END");
  Overtype(0, kColumnTarget, "77");
  Press(Qt::Key_Return);
  op_.answers.push_back(Answer::kStay);
  RunEvents();
  ASSERT_EQ(op_.boxes.size(), 1U);
  EXPECT_EQ(op_.boxes[0].buttons, Buttons::kTryDiscardStay);
  EXPECT_TRUE(Grid().IsEditing());
  EXPECT_EQ(Edited(), "77");
  Database().exec("DROP TRIGGER Fail");
  Press(Qt::Key_Return);
  EXPECT_FALSE(Grid().IsEditing());
  EXPECT_EQ(Cell(0, kColumnTarget), "77");
  ExpectStored();
}

// Delete and move.

TEST_F(RecipeGridTest, DeletingAsksByTheNameAndLeavesTheSequencesOfTheOthers) {
  AddCornHaySupplement(kByWeight);
  EnterOn(kByWeight);
  Grid().GoTo(1, kColumnIngredient);
  op_.answers = {Answer::kNo, Answer::kYes};
  ClickButton("cmdDeleteIng");
  EXPECT_THAT(LastBox(op_.boxes), IsBox(Icon::kQuestion, "Delete Ingredient",
                                        "Delete HAY from this recipe?", Buttons::kYesNo));
  EXPECT_EQ(Rows(), 4);
  ClickButton("cmdDeleteIng");
  EXPECT_THAT(Sequences(kByWeight), ElementsAre(1, 3));
  EXPECT_EQ(CurrentRow(), 0);
  EXPECT_EQ(Label("lblTargetTotal"), "1300");
  Grid().setFocus();
  Grid().GoTo(2, kColumnIngredient);
  AddByKeys("OATS", "5");
  EXPECT_THAT(Sequences(kByWeight), ElementsAre(1, 3, 4));
}

TEST_F(RecipeGridTest, DeletingTheLastLineGoesToTheEntryRow) {
  AddStoredLine(kByWeight, kCorn, "100");
  EnterOn(kByWeight);
  EXPECT_TRUE(Enabled("txtRecRationTarget"));
  op_.answers.push_back(Answer::kYes);
  ClickButton("cmdDeleteIng");
  EXPECT_EQ(Column(kColumnIngredient), std::vector<std::string>{"click to add an ingredient"});
  EXPECT_FALSE(Enabled("txtRecRationTarget"));
}

TEST_F(RecipeGridTest, NothingToDeleteIsReported) {
  EnterOn(kByWeight);
  ClickButton("cmdDeleteIng");
  EXPECT_THAT(LastBox(op_.boxes), IsBox(Icon::kInformation, "Delete (Error)",
                                        "There is no ingredient selected to delete."));
  EXPECT_EQ(op_.beeps, 1);
}

TEST_F(RecipeGridTest, AMovedLineLosesItsHandAddMark) {
  AddCornHaySupplement(kByWeight);
  EnterOn(kByWeight);
  Grid().GoTo(2, kColumnIngredient);
  ClickButton("UpDown1.Up");
  EXPECT_EQ(CurrentRow(), 1);
  EXPECT_THAT(Column(kColumnTarget), ElementsAre("1200", "100", "800", ""));
  EXPECT_THAT(Column(kColumnHandAdd), ElementsAre("No", "No", "Yes", ""));
  EXPECT_THAT(Sequences(kByWeight), ElementsAre(1, 2, 3));
  ClickButton("UpDown1.Down");
  EXPECT_EQ(CurrentRow(), 2);
  EXPECT_THAT(Column(kColumnTarget), ElementsAre("1200", "800", "100", ""));
  ExpectStored();
}

TEST_F(RecipeGridTest, AnImpossibleMoveIsReported) {
  AddCornHaySupplement(kByWeight);
  EnterOn(kByWeight);
  ClickButton("UpDown1.Up");
  EXPECT_THAT(LastBox(op_.boxes),
              IsBox(Icon::kInformation, "Move (Error)", "The selected row cannot be moved up."));
  Grid().GoTo(2, kColumnIngredient);
  ClickButton("UpDown1.Down");
  EXPECT_THAT(LastBox(op_.boxes),
              IsBox(Icon::kInformation, "Move (Error)", "The selected row cannot be moved down."));
  Grid().GoTo(3, kColumnIngredient);
  ClickButton("UpDown1.Up");
  EXPECT_THAT(LastBox(op_.boxes), IsBox(Icon::kInformation, "Move (Error)",
                                        "The ingredient entry row cannot be moved."));
  EXPECT_EQ(op_.beeps, 3);
}

TEST_F(RecipeGridTest, TheOnlyLineDoesNotMove) {
  AddStoredLine(kByWeight, kCorn, "100");
  EnterOn(kByWeight);
  ClickButton("UpDown1.Down");
  EXPECT_THAT(LastBox(op_.boxes),
              IsBox(Icon::kInformation, "Move (Error)", "The selected row cannot be moved down."));
  ClickButton("UpDown1.Up");
  EXPECT_THAT(LastBox(op_.boxes),
              IsBox(Icon::kInformation, "Move (Error)", "The selected row cannot be moved up."));
}

// The navigator.

TEST_F(RecipeGridTest, TheNavigatorShowsAndMovesTheLine) {
  AddCornHaySupplement(kByWeight);
  EnterOn(kByWeight);
  EXPECT_FALSE(Visible("grdREC.Navigator"));
  ClickButton("chkUseRationNavigator");
  EXPECT_TRUE(Visible("grdREC.Navigator"));
  EXPECT_EQ(Label("grdREC.NavigatorText"), "Ingredient: 1 of 3");
  ClickButton("grdREC.Navigate(2)");
  EXPECT_EQ(Label("grdREC.NavigatorText"), "Ingredient: 2 of 3");
  ClickButton("grdREC.Navigate(3)");
  EXPECT_EQ(CurrentRow(), 2);
  ClickButton("grdREC.Navigate(1)");
  ClickButton("grdREC.Navigate(0)");
  EXPECT_EQ(Label("grdREC.NavigatorText"), "Ingredient: 1 of 3");
  ClickButton("chkUseRationNavigator");
  EXPECT_FALSE(Visible("grdREC.Navigator"));
}

TEST_F(RecipeGridTest, AWidthThatTheOperatorChoseSurvivesAResize) {
  AddCornHaySupplement(kByWeight);
  Enter();
  Show(kByWeight);
  Grid().horizontalHeader()->resizeSection(kColumnTarget, 222);
  form_->resize(form_->width() + 200, form_->height());
  RunEvents();
  EXPECT_EQ(Grid().columnWidth(kColumnTarget), 222);
}

TEST_F(RecipeGridTest, AReadOnlyRecipeHasNoHintOfAnEntry) {
  RecipeGridModel model;
  model.Show(CurrentRecipe{});
  const QModelIndex entry = model.index(0, kColumnIngredient);
  EXPECT_EQ(model.data(entry, Qt::DisplayRole), u"click to add an ingredient"_qs);
  EXPECT_TRUE(model.flags(entry).testFlag(Qt::ItemIsEditable));
  model.SetReadOnly(true);
  EXPECT_EQ(model.data(entry, Qt::DisplayRole), QString());
  EXPECT_FALSE(model.flags(entry).testFlag(Qt::ItemIsEditable));
}

TEST_F(RecipeGridTest, ASecondClickOnAnIngredientOpensItsList) {
  AddCornHaySupplement(kByWeight);
  Enter();
  Show(kByWeight);
  Click(1, kColumnIngredient);
  EXPECT_EQ(CurrentRow(), 1);
  EXPECT_FALSE(Grid().IsEditing());
  Click(1, kColumnIngredient);
  EXPECT_TRUE(Grid().IsEditing());
}

}  // namespace
}  // namespace vrx::testing
