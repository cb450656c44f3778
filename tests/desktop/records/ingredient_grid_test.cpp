// The grid of the Ingredients tab: which ingredients it lists, and typing into it.
#include <gtest/gtest.h>

#include "desktop/records/ingredients_fixture.h"

namespace vrx::testing {
namespace {

class IngredientGridTest : public IngredientsFixture {};

TEST_F(IngredientGridTest, TheActiveOnesAreThoseWithADescription) {
  Tick("chkShowActiveIngsOnly");
  EXPECT_EQ(Grid("grdING").Model().rowCount(), 2);
  EXPECT_EQ(Grid("grdING").Model().IdOf(0), kCorn);
  ClickCell("grdING", kHay, "Name");
  ExpectOnRecord(kHay);
  EXPECT_TRUE(Check("chkShowActiveIngsOnly").isChecked());
}

TEST_F(IngredientGridTest, ChoosingInTheListShowsAllAgain) {
  Tick("chkShowActiveIngsOnly");
  Choose(kHay);
  EXPECT_FALSE(Check("chkShowActiveIngsOnly").isChecked());
  EXPECT_EQ(Grid("grdING").Model().rowCount(), 100);
  ExpectOnRecord(kHay);
}

TEST_F(IngredientGridTest, WithoutViewTheGridKeepsItsPlaceEmpty) {
  const QRect place = Find<QWidget>(u"chkViewAllIngs"_qs).geometry();
  Tick("chkViewAllIngs");
  RunEvents();
  EXPECT_FALSE(Grid("grdING").isVisible());
  EXPECT_EQ(Find<QWidget>(u"chkViewAllIngs"_qs).geometry(), place);
  Tick("chkViewAllIngs");
  EXPECT_TRUE(Grid("grdING").isVisible());
}

// A copy to the clipboard asks for the current cell, also where there is none.
TEST_F(IngredientGridTest, ThereIsNothingInNoCell) {
  EXPECT_FALSE(Grid("grdING").Model().data({}, Qt::DisplayRole).isValid());
}

// Typing into the grid.

TEST_F(IngredientGridTest, ACellTakesItsKeysAsTheFormsBoxDoes) {
  EditCell("grdING", 5, "Name", "b%eet12");
  EXPECT_EQ(operator_.beeps, 1);
  PressKey(Qt::Key_Tab);
  EXPECT_EQ(Stored(5).name, "bEET12");
  EXPECT_EQ(Stored(5).description, "bEET12");
  EXPECT_EQ(Item("cboIngID", 5), "  5: bEET12");
  EXPECT_EQ(Shown("txtIngName"), "bEET12");
}

TEST_F(IngredientGridTest, ADryMatterInTheGridIsNormalizedAndGoesIntoTheLines) {
  EditCell("grdING", kCorn, "DryMatter%", "999");
  PressKey(Qt::Key_Tab);
  EXPECT_EQ(Stored(kCorn).dry_matter_percent, 100);
  EXPECT_EQ(Line(1).dry_matter_percent, "100");
  EXPECT_EQ(CellText("grdING", kCorn, "DryMatter%"), "100");
}

TEST_F(IngredientGridTest, ACommittedRowWithoutDescriptionTakesEvenTheDefaultName) {
  EditCell("grdING", 5, "DryMatter%", "50");
  PressKey(Qt::Key_Tab);
  EXPECT_EQ(Stored(5).description, "ING005");
}

TEST_F(IngredientGridTest, AnEmptyNameInTheGridGoesToTheNameBox) {
  EditCell("grdING", kCorn, "Name", "");
  PressKey(Qt::Key_Tab);
  RunEvents();
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(operator_.boxes[0].text, "The 'Name' field is mandatory.");
  EXPECT_TRUE(Box("txtIngName").hasFocus());
  EXPECT_EQ(Stored(kCorn).name, "");
}

TEST_F(IngredientGridTest, IdAndHandAddCannotBeTyped) {
  for (const char* field : {"ID", "HandAdd"}) {
    EXPECT_FALSE(Cell("grdING", kCorn, field).flags().testFlag(Qt::ItemIsEditable)) << field;
  }
}

TEST_F(IngredientGridTest, LeavingTheGridStoresTheCell) {
  EditCell("grdING", kCorn, "Description", "Corn flaked");
  Box("txtIngName").setFocus();
  EXPECT_EQ(Stored(kCorn).description, "Corn flaked");
  EXPECT_EQ(Stored(kCorn).name, "CORN");
}

}  // namespace
}  // namespace vrx::testing
