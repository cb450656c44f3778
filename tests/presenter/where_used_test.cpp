#include "feed/where_used.h"

#include <random>

#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>

#include "base/number.h"
#include "database/connection.h"
#include "feed/feed_database.h"
#include "presenter/record_actions.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FindWhereIngUsed : public FeedDatabaseTest {
 protected:
  std::vector<WhereUsed> Find(int ingredient, bool stop_at_first = false) {
    return vrx::FindWhereIngUsed(database, ingredient, stop_at_first);
  }
};

TEST_F(FindWhereIngUsed, FindsNothingForAnIngredientThatIsUsedNowhere) {
  UseRecipe(3, "STEERS");
  AddLine(3, 6);
  EXPECT_THAT(Find(5), IsEmpty());
}

TEST_F(FindWhereIngUsed, FindsRecipesInTheirOrder) {
  UseRecipe(12, "HEIFRS");
  UseRecipe(3, "STEERS");
  AddLine(12, 5);
  AddLine(3, 6);
  AddLine(3, 5);
  EXPECT_THAT(Find(5), ElementsAre(WhereUsed{3, "STEERS"}, WhereUsed{12, "HEIFRS"}));
}

TEST_F(FindWhereIngUsed, SkipsARecipeWithoutDescription) {
  AddLine(3, 5);
  EXPECT_THAT(Find(5), IsEmpty());
  UseRecipe(3, "STEERS");
  EXPECT_THAT(Find(5), ElementsAre(WhereUsed{3, "STEERS"}));
}

TEST_F(FindWhereIngUsed, ARecipeThatHoldsItTwiceGivesTwoItems) {
  UseRecipe(3, "STEERS");
  AddLine(3, 5);
  AddLine(3, 6);
  AddLine(3, 5);
  EXPECT_THAT(Find(5), ElementsAre(WhereUsed{3, "STEERS"}, WhereUsed{3, "STEERS"}));
}

TEST_F(FindWhereIngUsed, StopsAtTheFirstFind) {
  UseRecipe(3, "STEERS");
  UseRecipe(12, "HEIFRS");
  AddLine(12, 5);
  AddLine(3, 5);
  AddLine(3, 5);
  EXPECT_THAT(Find(5, true), ElementsAre(WhereUsed{3, "STEERS"}));
}

TEST_F(FindWhereIngUsed, ReadsALinesIngredientAsANumber) {
  UseRecipe(3, "STEERS");
  AddLine(3, 5);
  for (const char* const text : {"05", " 5 ", "5.0", "55", "5x", ""}) {
    AddLine(3, 5);
    RecipeLineRecord line = ReadRecipeLines(database, 3).back();
    line.ingredient = text;
    WriteRecipeLine(database, line);
  }
  EXPECT_EQ(Find(5).size(), 4U);
}

TEST_F(FindWhereIngUsed, ALineOfARecipeThatIsMissingIsNoUse) {
  AddLine(300, 5);
  EXPECT_THAT(Find(5), IsEmpty());
}

// Compares the query with a loop over the recipes.
TEST_F(FindWhereIngUsed, FindsWhatAWalkThroughTheRecipesFinds) {
  std::mt19937 random(2260);
  FillAtRandom(random);
  RecipeRecord unused = ReadRecipe(database, 2);
  unused.description = "";
  WriteRecipe(database, unused);
  for (int ingredient = 1; ingredient <= 5; ++ingredient) {
    std::vector<WhereUsed> walked;
    for (const RecipeRecord& recipe : ReadRecipes(database)) {
      for (const RecipeLineRecord& line : ReadRecipeLines(database, recipe.id)) {
        if (!recipe.description.empty() && TextToLong(line.ingredient) == ingredient) {
          walked.push_back({recipe.id, recipe.name});
        }
      }
    }
    EXPECT_EQ(Find(ingredient), walked);
    EXPECT_EQ(Find(ingredient, true).size(), walked.empty() ? 0U : 1U);
  }
}

class SearchWhereUsed : public FeedDatabaseTest {};

TEST_F(SearchWhereUsed, ShowsThatItIsNotUsed) {
  EXPECT_THAT(vrx::SearchWhereUsed(database, 5, services), ElementsAre("Not Used"));
  EXPECT_EQ(op.beeps, 1);
  EXPECT_EQ(op.busy_changes, 2);
  EXPECT_FALSE(op.busy);
}

TEST_F(SearchWhereUsed, ShowsRecipesThreeAndTwelveInThatOrder) {
  UseRecipe(12, "HEIFRS");
  UseRecipe(3, "STEERS");
  AddLine(12, 5);
  AddLine(3, 5);
  EXPECT_THAT(vrx::SearchWhereUsed(database, 5, services),
              ElementsAre("Done!", "  3: STEERS", " 12: HEIFRS"));
  EXPECT_EQ(op.beeps, 1);
}

TEST_F(SearchWhereUsed, EndsWithoutABeepWhileTheBeeperIsOff) {
  settings.SetEnableBeeperOn(false);
  vrx::SearchWhereUsed(database, 5, services);
  EXPECT_EQ(op.beeps, 0);
}

TEST_F(SearchWhereUsed, ReportsALockedFileAndShowsNothing) {
  const ExclusiveHolder holder(path);
  EXPECT_THAT(vrx::SearchWhereUsed(database, 5, services), IsEmpty());
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "Where Used (in Recipes)");
  EXPECT_EQ(op.boxes[0].text, "A table in the specified database is locked.");
  EXPECT_EQ(op.boxes[0].cause, "YARD.RDB is locked by another program");
  EXPECT_FALSE(op.busy);
}

}  // namespace
}  // namespace vrx::testing
