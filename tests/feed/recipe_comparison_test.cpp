#include "feed/recipe_comparison.h"

#include <gmock/gmock.h>

#include "database/identity.h"
#include "feed/feed_database.h"
#include "feed/recipe_copy.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecipeComparisonTest : public FeedDatabaseTest {
 protected:
  RecipeComparisonTest() {
    WriteField(database, kUnitField, "LB");
    WriteIngredient(database, {1, "CORN", "Corn", 88, false});
    WriteIngredient(database, {2, "HAY", "Hay", 90, false});
    UseRecipe(3, "STEERS");
    AddLine(3, 1, {.target = "1200", .dry_matter_percent = "88"});
    AddLine(3, 2, {.target = "800", .dry_matter_percent = "90"});
  }

  ComparedRecipe Read(int id) { return ReadCompared(database, "YARD.RDB", id); }
};

TEST_F(RecipeComparisonTest, ACopyHasNoDifferences) {
  CopyRecipe(database, 3, 9, calendar);
  const ComparedRecipe a = Read(3);
  const ComparedRecipe b = Read(9);
  EXPECT_THAT(DifferentFields(a.head, b.head), IsEmpty());
  EXPECT_THAT(DifferentTotals(a.totals, b.totals), IsEmpty());
  for (const ComparedPair& pair : PairLines(a, b)) {
    EXPECT_THAT(DifferentCells(pair, true), IsEmpty());
  }
}

TEST_F(RecipeComparisonTest, LinesArePairedByTheirIngredientInOrder) {
  UseRecipe(9, "HEIFRS");
  AddLine(9, 2, {.target = "800", .dry_matter_percent = "90"});
  AddLine(9, 700);
  const ComparedRecipe a = Read(3);
  const ComparedRecipe b = Read(9);
  const std::vector<ComparedPair> pairs = PairLines(a, b);
  ASSERT_EQ(pairs.size(), 3U);
  EXPECT_EQ(pairs[0].Any().ingredient, "CORN");
  EXPECT_EQ(pairs[0].b, nullptr);
  EXPECT_EQ(pairs[1].b->place, 1);
  EXPECT_EQ(pairs[2].Any().ingredient, "ingredient '700'");
  EXPECT_EQ(pairs[2].a, nullptr);
}

// The figures of the stored lines were never computed.
TEST_F(RecipeComparisonTest, FiguresAreRecomputed) {
  EXPECT_EQ(Read(3).lines.front().cells.dry_matter, "1364");
  EXPECT_EQ(Read(3).totals.target, "2000");
}

TEST_F(RecipeComparisonTest, OfALineOfOneRecipeAllCellsDifferButTheNumberOfTheIngredient) {
  UseRecipe(9, "HEIFRS");
  const ComparedRecipe a = Read(3);
  const ComparedRecipe b = Read(9);
  EXPECT_THAT(DifferentCells(PairLines(a, b).front(), true),
              ElementsAre("Target", "Ration%", "DryMatter%", "DryMatter", "BatchTarget", "Sequence",
                          "HandAdd", "Ingredient%"));
}

TEST_F(RecipeComparisonTest, TheNumbersOfIngredientsAreComparedWithinOneDatabase) {
  CopyRecipe(database, 3, 9, calendar);
  WriteIngredient(database, {5, "CORN", "Corn", 88, false});
  RecipeLineRecord line = ReadRecipeLines(database, 9).front();
  line.ingredient = "5";
  WriteRecipeLine(database, line);
  const ComparedRecipe a = Read(3);
  const ComparedRecipe b = Read(9);
  EXPECT_THAT(DifferentCells(PairLines(a, b).front(), true), ElementsAre("Ingredient"));
  EXPECT_THAT(DifferentCells(PairLines(a, b).front(), false), IsEmpty());
}

TEST_F(RecipeComparisonTest, OtherUnitsAreReported) {
  ComparedRecipe a = Read(3);
  ComparedRecipe b = a;
  EXPECT_EQ(UnitsDiffer(a, "A.RDB", b, "B.RDB"), "");
  b.unit = "KG";
  EXPECT_EQ(UnitsDiffer(a, "A.RDB", b, "B.RDB"),
            "The weights of A.RDB are in LB, those of B.RDB in KG: they are compared as numbers.");
}

TEST_F(RecipeComparisonTest, ARecipeIsFreeWithoutDescriptionAndLines) {
  AddLine(5, 1);
  std::vector<int> ids;
  for (const RecipeRecord& recipe : FreeRecipes(database)) {
    ids.push_back(recipe.id);
  }
  EXPECT_EQ(ids.size(), 98U);
  EXPECT_THAT(ids, ::testing::Not(::testing::Contains(::testing::AnyOf(3, 5))));
}

}  // namespace
}  // namespace vrx::testing
