#include "desktop/recipes/recipes_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class RecipeByKeys : public RecipesFixture {
 protected:
  RecipeByKeys() { Enter(); }

  void GoToGrid() {
    Grid().setFocus();
    ASSERT_EQ(Focused(), "grdREC");
  }
};

TEST_F(RecipeByKeys, AWholeRecipeOf32LinesIsEnteredByTheKeyboardAlone) {
  Show(kUntyped);
  Find<QWidget>("txtRecName").setFocus();
  Press(Qt::Key_A, Qt::ControlModifier);
  Type("STEERS");
  Press(Qt::Key_Return);
  EXPECT_EQ(Focused(), "txtRecDesc");
  Type("Steers Finisher");
  Press(Qt::Key_Return);
  EXPECT_EQ(Focused(), "lstRecBatchType");
  Press(Qt::Key_Down);
  Press(Qt::Key_Down);
  Press(Qt::Key_Return);
  ComeBack();
  ASSERT_EQ(Stored(kUntyped).batch_type, "W");
  ASSERT_EQ(Focused(), "grdREC");
  const std::vector<std::string_view> names = {"CORN", "HAY", "SUPP", "OATS"};
  for (int line = 0; line < kMaxRecipeLines; ++line) {
    AddByKeys(names.at(static_cast<std::size_t>(line) % names.size()), std::to_string(100 + line));
  }
  EXPECT_NE(Focused(), "grdREC");
  EXPECT_EQ(Rows(), kMaxRecipeLines);
  Show(kUntyped);
  TypeInto("txtRecRationTarget", "5000");
  Press(Qt::Key_Return);
  EXPECT_EQ(Label("lblBatchTargetTotal"), "5000");
  EXPECT_EQ(Label("lblTargetTotal"), "3696");
  EXPECT_EQ(Label("lblHandAddTotal"), "8");
  EXPECT_EQ(Stored(kUntyped).ration_target, "5000");
  EXPECT_EQ(Stored(kUntyped).name, "STEERS");
  EXPECT_EQ(Stored(kUntyped).description, "Steers Finisher");
  EXPECT_THAT(ReadRecipeLines(Database(), kUntyped), SizeIs(kMaxRecipeLines));
  EXPECT_THAT(op_.boxes, IsEmpty());
  EXPECT_EQ(op_.beeps, 0);
  ExpectStored();
}

TEST_F(RecipeByKeys, AnIngredientIsFoundByItsNumberNameOrDescription) {
  GoToGrid();
  AddByKeys("2", "10");
  AddByKeys("oa", "20");
  AddByKeys("mineral", "30");
  AddByKeys("premix", "40");
  EXPECT_THAT(Column(kColumnIngredient),
              ElementsAre("HAY", "OATS", "SUPP", "SUPP", "click to add an ingredient"));
  ExpectStored();
}

TEST_F(RecipeByKeys, ACharacterThatLeadsToNoIngredientIsRefused) {
  GoToGrid();
  Type("COX");
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_EQ(Find<FilteredEdit>("grdREC.Ingredient").Text(), "CO");
  Press(Qt::Key_Return);
  EXPECT_EQ(Cell(0, kColumnIngredient), "CORN");
}

TEST_F(RecipeByKeys, TheArrowsGoThroughTheList) {
  GoToGrid();
  Press(Qt::Key_F4);
  EXPECT_TRUE(Grid().IsEditing());
  Press(Qt::Key_Down);
  Press(Qt::Key_Down);
  Press(Qt::Key_Up);
  Press(Qt::Key_PageDown);
  Press(Qt::Key_Up);
  Press(Qt::Key_Return);
  EXPECT_EQ(Cell(0, kColumnIngredient), "SUPP");
  EXPECT_EQ(CurrentColumn(), kColumnTarget);
}

TEST_F(RecipeByKeys, EscapeLeavesACellAsItWas) {
  AddCornHaySupplement(kByWeight);
  Show(kByWeight);
  GoToGrid();
  Press(Qt::Key_Right);
  Type("77");
  Press(Qt::Key_Escape);
  EXPECT_FALSE(Grid().IsEditing());
  EXPECT_EQ(Cell(0, kColumnTarget), "1200");
  Press(Qt::Key_Left);
  Type("O");
  Press(Qt::Key_Escape);
  EXPECT_EQ(Cell(0, kColumnIngredient), "CORN");
  EXPECT_EQ(Focused(), "grdREC");
}

TEST_F(RecipeByKeys, EscapeGivesUpTheLineInTheEntryRow) {
  GoToGrid();
  Type("CORN");
  Press(Qt::Key_Return);
  EXPECT_EQ(Cell(0, kColumnIngredient), "CORN");
  Press(Qt::Key_Escape);
  EXPECT_EQ(Cell(0, kColumnIngredient), "click to add an ingredient");
  EXPECT_THAT(ReadRecipeLines(Database(), kByWeight), IsEmpty());
}

TEST_F(RecipeByKeys, TheEntryRowKeepsAnIngredientWithoutAWeight) {
  GoToGrid();
  Type("CORN");
  Press(Qt::Key_Return);
  Press(Qt::Key_Tab);
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_EQ(Focused(), "grdREC");
  EXPECT_EQ(Rows(), 1);
  EXPECT_EQ(Cell(0, kColumnIngredient), "CORN");
  EXPECT_EQ(Cell(0, kColumnDryMatterPercent), "88");
  EXPECT_THAT(ReadRecipeLines(Database(), kByWeight), IsEmpty());
}

TEST_F(RecipeByKeys, TabGoesThroughTheFieldsOfAllLinesAndOut) {
  AddCornHaySupplement(kByWeight);
  Show(kByWeight);
  GoToGrid();
  std::vector<std::pair<int, int>> cells;
  for (int step = 0; step < 7; ++step) {
    cells.emplace_back(CurrentRow(), CurrentColumn());
    Press(Qt::Key_Tab);
  }
  EXPECT_THAT(cells, ElementsAre(std::pair(0, 0), std::pair(0, 1), std::pair(1, 0), std::pair(1, 1),
                                 std::pair(2, 0), std::pair(2, 1), std::pair(3, 0)));
  EXPECT_NE(Focused(), "grdREC");
  Grid().setFocus();
  Press(Qt::Key_Backtab);
  EXPECT_EQ(std::pair(CurrentRow(), CurrentColumn()), std::pair(2, +kColumnTarget));
}

TEST_F(RecipeByKeys, ArrowsHomeAndEndGoThroughAllCells) {
  AddCornHaySupplement(kByWeight);
  Show(kByWeight);
  GoToGrid();
  Press(Qt::Key_End);
  EXPECT_EQ(CurrentColumn(), kColumnHandAdd);
  Press(Qt::Key_Right);
  EXPECT_EQ(CurrentColumn(), kColumnHandAdd);
  Press(Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(CurrentRow(), 3);
  Press(Qt::Key_Up);
  EXPECT_EQ(CurrentRow(), 2);
  Press(Qt::Key_PageUp);
  EXPECT_EQ(CurrentRow(), 0);
  Press(Qt::Key_PageDown);
  EXPECT_EQ(CurrentRow(), 3);
  Press(Qt::Key_Home, Qt::ControlModifier);
  Press(Qt::Key_Home);
  EXPECT_EQ(std::pair(CurrentRow(), CurrentColumn()), std::pair(0, +kColumnIngredient));
}

TEST_F(RecipeByKeys, AComputedCellTakesNoKey) {
  AddCornHaySupplement(kByWeight);
  Show(kByWeight);
  GoToGrid();
  for (int column = kColumnRationPercent; column <= kColumnHandAdd; ++column) {
    ASSERT_TRUE(Grid().GoTo(0, column));
    Type("7");
    Press(Qt::Key_F2);
    EXPECT_FALSE(Grid().IsEditing());
  }
  EXPECT_EQ(Cell(0, kColumnRationPercent), "60.000");
}

TEST_F(RecipeByKeys, APageLeavesOneRowOfTheLastOneInSight) {
  for (int line = 0; line < kMaxRecipeLines; ++line) {
    AddStoredLine(kByWeight, kCorn, "10");
  }
  Show(kByWeight);
  GoToGrid();
  const int page = Grid().viewport()->height() / Grid().rowHeight(0) - 1;
  ASSERT_GT(page, 0);
  ASSERT_LT(page, kMaxRecipeLines - 1);
  Press(Qt::Key_PageDown);
  EXPECT_EQ(CurrentRow(), page);
  Press(Qt::Key_PageUp);
  EXPECT_EQ(CurrentRow(), 0);
}

}  // namespace
}  // namespace vrx::testing
