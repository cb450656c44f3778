#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "exchange/recipe_text.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

RecipeRecord OddRecipe(int id, const std::string& type, const std::string& target) {
  return {.id = id,
          .name = "REC" + std::to_string(id),
          .description = "in use",
          .batch_type = type,
          .ration_target = target,
          .adjust_batch_index = "20"};
}

RecipeLineRecord OddLine(int recipe, const std::string& weight, const std::string& percent = "0") {
  return {.recipe_id = std::to_string(recipe),
          .ingredient = "1",
          .target = weight,
          .dry_matter_percent = "90",
          .ingredient_percent = percent};
}

// Nothing in these tables is odd.
RecipeTables Sound() {
  return {.unit = "LB",
          .ingredients = {{.id = 1, .name = "CORN", .description = "Corn"}},
          .recipes = {OddRecipe(1, "W", "5000")},
          .lines = {OddLine(1, "100")},
          .pens = {{.id = 1, .name = "PEN001", .feed_amount = "10"}}};
}

TEST(RecipeOddities, SoundRecipesHaveNone) {
  EXPECT_THAT(FindOddities(Sound()), IsEmpty());
  EXPECT_THAT(FindOddities(RecipeTables{}), IsEmpty());
}

TEST(RecipeOddities, ARecipeIsOddWithoutTheRationTargetThatItsTypeNeeds) {
  for (const std::string type : {"W", "%", "P"}) {
    RecipeTables tables = Sound();
    tables.recipes = {OddRecipe(1, type, "0"), OddRecipe(2, type, ""), OddRecipe(3, type, "1")};
    tables.lines = {OddLine(1, "100", "100"), OddLine(2, "100", "100"), OddLine(3, "100", "100")};
    EXPECT_THAT(FindOddities(tables),
                ElementsAre("Recipes without ration target: 1 (REC1), 2 (REC2)"))
        << type;
  }
  RecipeTables by_head = Sound();
  by_head.recipes = {OddRecipe(1, "H", "")};
  EXPECT_THAT(FindOddities(by_head), IsEmpty());
}

TEST(RecipeOddities, OnlyWhatIsSentIsOdd) {
  RecipeTables tables = Sound();
  tables.recipes = {OddRecipe(1, "!", ""), OddRecipe(2, "W", "")};
  tables.recipes[1].description.clear();
  tables.ingredients.push_back({.id = 2, .name = "HAY", .dry_matter_percent = 0});
  EXPECT_THAT(FindOddities(tables), IsEmpty());
}

TEST(RecipeOddities, PercentagesMustTotal100AsShown) {
  RecipeTables tables = Sound();
  tables.recipes = {OddRecipe(1, "P", "5000"), OddRecipe(2, "P", "5000"), OddRecipe(3, "P", "5000"),
                    OddRecipe(4, "W", "5000")};
  tables.lines = {OddLine(1, "0", "60"), OddLine(1, "0", "39.5"),   OddLine(2, "0", "60"),
                  OddLine(2, "0", "40"), OddLine(3, "0", "99.996"), OddLine(4, "100", "7")};
  EXPECT_THAT(FindOddities(tables),
              ElementsAre("Recipes whose percentages do not total 100: 1 (REC1) 99.50"));
}

TEST(RecipeOddities, AnEmptyRecipeIsListedOnce) {
  RecipeTables tables = Sound();
  tables.recipes = {OddRecipe(1, "P", ""), OddRecipe(2, "H", "")};
  tables.lines.clear();
  EXPECT_THAT(FindOddities(tables), ElementsAre("Recipes without ingredients: 1 (REC1), 2 (REC2)"));
}

TEST(RecipeOddities, AnIngredientInUseNeedsDryMatter) {
  RecipeTables tables = Sound();
  tables.ingredients.push_back(
      {.id = 7, .name = "HAY", .description = "Hay", .dry_matter_percent = 0});
  EXPECT_THAT(FindOddities(tables), ElementsAre("Ingredients without dry matter: 7 (HAY)"));
}

TEST(RecipeOddities, PensBeyondTheSmallestTableNeedAnOption) {
  RecipeTables tables = Sound();
  for (int id = 2; id <= 400; ++id) {
    tables.pens.push_back({.id = id, .name = "PEN"});
  }
  EXPECT_THAT(FindOddities(tables), IsEmpty());
  tables.pens[100].feed_amount = "1";
  EXPECT_THAT(FindOddities(tables), ElementsAre("Pens above 100 have a feed amount: the indicator "
                                                "needs its 200-pen capacity option"));
  tables.pens[399].feed_amount = "1";
  EXPECT_THAT(FindOddities(tables), ElementsAre("Pens above 300 have a feed amount: the indicator "
                                                "needs its 400-pen capacity option"));
}

TEST(RecipeOddities, LongListsAreCutWithACount) {
  RecipeTables tables = Sound();
  tables.recipes.clear();
  tables.lines.clear();
  for (int id = 1; id <= 5; ++id) {
    tables.recipes.push_back(OddRecipe(id, "W", "1"));
  }
  EXPECT_THAT(FindOddities(tables),
              ElementsAre("Recipes without ingredients: 1 (REC1), 2 (REC2), 3 (REC3), 4 (REC4), 5 "
                          "(REC5)"));
  tables.recipes.push_back(OddRecipe(6, "W", "1"));
  tables.recipes.push_back(OddRecipe(7, "W", "1"));
  EXPECT_THAT(FindOddities(tables),
              ElementsAre("Recipes without ingredients: 1 (REC1), 2 (REC2), 3 (REC3), 4 (REC4), 5 "
                          "(REC5) and 2 more"));
}

}  // namespace
}  // namespace vrx::testing
