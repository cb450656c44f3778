#include <QAbstractItemView>
#include <QTest>

#include <gtest/gtest.h>

#include "desktop/records/ingredients_fixture.h"
#include "desktop/records/ingredients_page.h"

namespace vrx::testing {
namespace {

class WhereUsedListTest : public IngredientsFixture {};

TEST_F(WhereUsedListTest, ASearchListsEveryLineThatHoldsTheIngredient) {
  Choose(kCorn);
  Tick("chkShowActiveIngsOnly");
  Press("cmdSearch");
  EXPECT_EQ(List("cboWhereUsed").count(), 4);
  EXPECT_EQ(Item("cboWhereUsed", 0), "Done!");
  EXPECT_EQ(Item("cboWhereUsed", 1), "  1: REC1");
  EXPECT_EQ(Item("cboWhereUsed", 3), "  3: REC3");
  EXPECT_EQ(List("cboWhereUsed").currentIndex(), 0);
  EXPECT_TRUE(List("cboWhereUsed").isEnabled());
  EXPECT_FALSE(Check("chkShowActiveIngsOnly").isChecked());
  EXPECT_EQ(operator_.beeps, 1);
  EXPECT_FALSE(operator_.busy);
  ExpectOnRecord(kCorn);
}

TEST_F(WhereUsedListTest, ASearchLeavesTheRecipesAtTheLastOne) {
  Press("cmdSearch");
  EXPECT_EQ(List("cboRecID").currentIndex(), 100);
}

TEST_F(WhereUsedListTest, AnIngredientUsedNowhereSaysSo) {
  Choose(5);
  Press("cmdSearch");
  EXPECT_EQ(List("cboWhereUsed").count(), 1);
  EXPECT_EQ(Item("cboWhereUsed", 0), "Not Used");
}

TEST_F(WhereUsedListTest, ARecipeWithoutDescriptionIsNotSearched) {
  Database().exec("UPDATE Recipe SET Description = '' WHERE ID <> 3");
  Choose(kCorn);
  Press("cmdSearch");
  EXPECT_EQ(List("cboWhereUsed").count(), 2);
  EXPECT_EQ(Item("cboWhereUsed", 1), "  3: REC3");
}

TEST_F(WhereUsedListTest, AnotherIngredientEmptiesWhatWasFound) {
  Choose(kCorn);
  Press("cmdSearch");
  Choose(kHay);
  EXPECT_EQ(List("cboWhereUsed").count(), 0);
}

TEST_F(WhereUsedListTest, TheSameIngredientKeepsWhatWasFound) {
  Choose(kCorn);
  Press("cmdSearch");
  Choose(kCorn);
  EXPECT_EQ(List("cboWhereUsed").count(), 4);
}

TEST_F(WhereUsedListTest, TheStatusStaysInViewAndTheOpenListShowsOnlyRecipes) {
  Choose(kCorn);
  Press("cmdSearch");
  QComboBox& list = List("cboWhereUsed");
  list.showPopup();
  EXPECT_EQ(Item("cboWhereUsed", 0), "");
  list.view()->setCurrentIndex(list.model()->index(2, 0));
  QTest::keyClick(list.view(), Qt::Key_Return);
  RunEvents();
  EXPECT_EQ(list.currentIndex(), 0);
  EXPECT_EQ(Item("cboWhereUsed", 0), "Done!");
}

}  // namespace
}  // namespace vrx::testing
