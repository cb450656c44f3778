#include <numeric>
#include <random>

#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>

#include "feed/feed_database.h"
#include "feed/ration.h"
#include "feed/recipe_storage.h"
#include "presenter/record_actions.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecordingProgress : public ProgressDisplay {
 public:
  void SetProgressMessage(std::string_view text) override { messages.emplace_back(text); }
  void SetProgressRange(int maximum) override { range = maximum; }
  void SetProgressValue(int value) override { values.push_back(value); }

  std::vector<std::string> messages;
  int range = 0;
  std::vector<int> values;
};

class UpdateRecipes : public FeedDatabaseTest {
 protected:
  bool Update() { return vrx::UpdateRecipes(database, progress, services); }

  RecordingProgress progress;
};

TEST_F(UpdateRecipes, RecomputesEveryRecipeInUse) {
  for (const int recipe : {1, 100}) {
    UseRecipe(recipe, "STEERS");
    AddLine(recipe, 1, {.target = "1200", .dry_matter_percent = "88"});
    AddLine(recipe, 2, {.target = "800", .dry_matter_percent = "90"});
  }
  EXPECT_TRUE(Update());
  for (const int recipe : {1, 100}) {
    const auto lines = ReadRecipeLines(database, recipe);
    EXPECT_EQ(lines[0].dry_matter, "1364");
    EXPECT_EQ(lines[1].dry_matter, "889");
    EXPECT_EQ(lines[0].ration_percent, "60.000");
    EXPECT_EQ(lines[1].ration_percent, "40.000");
  }
  EXPECT_THAT(Ask("SELECT Modified FROM History"), ElementsAre("2026-01-05"));
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(UpdateRecipes, LeavesARecipeWithoutDescription) {
  AddLine(7, 1, {.target = "1200", .dry_matter_percent = "88", .dry_matter = "17"});
  const std::string before = ReadAll(path);
  EXPECT_TRUE(Update());
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(UpdateRecipes, ShowsItsWayFromOneToAHundredAndBeepsAtTheEnd) {
  EXPECT_TRUE(Update());
  std::vector<int> all(100);
  std::iota(all.begin(), all.end(), 1);
  EXPECT_THAT(progress.messages, ElementsAre("Scanning database...", ""));
  EXPECT_EQ(progress.range, 100);
  EXPECT_EQ(progress.values, all);
  EXPECT_EQ(op.beeps, 1);
  EXPECT_EQ(op.busy_changes, 2);
  EXPECT_FALSE(op.busy);
}

TEST_F(UpdateRecipes, ARecipeThatFailsIsReportedAndTheOthersAreStored) {
  for (const int recipe : {1, 2, 3}) {
    UseRecipe(recipe, "R" + std::to_string(recipe));
    AddLine(recipe, 1, {.target = "1200", .dry_matter_percent = "88"});
  }
  AddLine(2, 1, {.target = "2147483647", .dry_matter_percent = "1"});
  const auto second = ReadRecipeLines(database, 2);
  EXPECT_FALSE(Update());
  EXPECT_EQ(ReadRecipeLines(database, 1)[0].dry_matter, "1364");
  EXPECT_EQ(ReadRecipeLines(database, 2), second);
  EXPECT_EQ(ReadRecipeLines(database, 3)[0].dry_matter, "1364");
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(op.boxes[0].text,
            "These recipes could not be computed and stay as they were:\r\n  2: R2: Overflow: a "
            "line's as-fed weight is outside the range of 32-bit whole numbers.");
  EXPECT_EQ(progress.values.size(), 100U);
  EXPECT_EQ(op.beeps, 1);
}

TEST_F(UpdateRecipes, ALockedFileIsReportedAndUnchanged) {
  UseRecipe(1, "STEERS");
  AddLine(1, 1, {.target = "1200", .dry_matter_percent = "88"});
  const std::string before = ReadAll(path);
  SQLite::Database other(path, SQLite::OPEN_READWRITE);
  const SQLite::Transaction lock(other, SQLite::TransactionBehavior::IMMEDIATE);
  EXPECT_FALSE(Update());
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].cause, "YARD.RDB is locked by another program");
  EXPECT_THAT(progress.messages, ElementsAre("Scanning database...", ""));
  EXPECT_FALSE(op.busy);
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(UpdateRecipes, AFailureHalfwayStoresNothing) {
  for (const int recipe : {1, 2}) {
    UseRecipe(recipe, "STEERS");
    AddLine(recipe, recipe, {.target = "1200", .dry_matter_percent = "88"});
  }
  Alter(path,
        "CREATE TRIGGER Full BEFORE UPDATE ON RecipeRation WHEN OLD.Ingredient = '2' "
        "BEGIN SELECT RAISE(FAIL, 'disk full'); END");
  const auto lines = ReadAllRecipeLines(database);
  EXPECT_FALSE(Update());
  EXPECT_EQ(ReadAllRecipeLines(database), lines);
}

// Updating all at once has the same result as recipe by recipe, and a second run changes nothing.
TEST_F(UpdateRecipes, ComesToWhatEachRecipeComesToByItself) {
  std::mt19937 random(2260);
  FillAtRandom(random);
  std::vector<std::vector<RecipeLineRecord>> expected;
  for (const RecipeRecord& recipe : ReadRecipes(database)) {
    Ration ration{.recipe = recipe, .lines = ReadRecipeLines(database, recipe.id)};
    if (!recipe.description.empty()) {
      RecalcRecipe(ration);
    }
    expected.push_back(ration.lines);
  }
  EXPECT_TRUE(Update());
  for (const RecipeRecord& recipe : ReadRecipes(database)) {
    EXPECT_EQ(ReadRecipeLines(database, recipe.id),
              expected[static_cast<std::size_t>(recipe.id) - 1]);
  }
  const std::string once = ReadAll(path);
  EXPECT_TRUE(Update());
  EXPECT_TRUE(ReadAll(path) == once);
}

}  // namespace
}  // namespace vrx::testing
