#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "ctl/ctl_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::StartsWith;
using Json = nlohmann::ordered_json;
using Args = std::vector<std::string>;

// The effects of a record on others: its lines, its users, the indicator.
class RecordFlows : public CtlTest {
 protected:
  void MakeRecipe(const std::string& id, const std::string& type) {
    ASSERT_EQ(Run({"set", "recipe", database, id, "--description", "Steers " + id, "--type", type}),
              0)
        << err;
  }

  std::vector<RecipeLineRecord> Lines() {
    SQLite::Database connection = OpenDatabase(database, Access::kRead);
    return ReadAllRecipeLines(connection);
  }

  RecipeRecord Recipe(int id) {
    SQLite::Database connection = OpenDatabase(database, Access::kRead);
    return ReadRecipe(connection, id);
  }

  std::string Modified() {
    EXPECT_EQ(Run({"info", database, "--json"}), 0) << err;
    const Json modified = Json::parse(out)["modified"];
    return modified.is_null() ? "" : modified.get<std::string>();
  }

  std::string database = NewRecipeDatabase();
};

TEST_F(RecordFlows, SetIngredientReachesEachLineByItsOwnRecipesType) {
  MakeRecipe("1", "W");
  MakeRecipe("2", "P");
  for (const std::string recipe : {"1", "2", "3"}) {
    AddLine(database, {.recipe_id = recipe,
                       .ingredient = "5",
                       .target = "1200",
                       .ration_percent = "60.000",
                       .dry_matter_percent = "88",
                       .dry_matter = "17",
                       .batch_target = "3043",
                       .ingredient_percent = "62.50"});
  }
  std::vector<RecipeLineRecord> expected = Lines();
  for (RecipeLineRecord& line : expected) {
    line.hand_add = true;
    line.dry_matter_percent = "80";
  }
  expected[0].dry_matter = "1500";
  expected[1].dry_matter = "7812";
  ASSERT_EQ(Run({"set", "ingredient", database, "5", "--dry-matter", "80", "--hand-add", "yes"}), 0)
      << err;
  EXPECT_EQ(Lines(), expected);
}

TEST_F(RecordFlows, ARecordsNumberMayBearZeros) {
  ASSERT_EQ(Run({"set", "pen", database, "010", "--feed", "500"}), 0) << err;
  ASSERT_EQ(Run({"list", "pens", database}), 0);
  EXPECT_EQ(out, "ID\tName\tDescription\tFeedAmount\n10\tPEN010\t\t500\n");
  ASSERT_EQ(Run({"reset", "pen", database, "010", "--yes"}), 0);
  EXPECT_EQ(err, "Set Pen Defaults: Reset pen #10 (PEN010) to its default values?\n");
}

TEST_F(RecordFlows, ANumberMayBearASign) {
  ASSERT_EQ(Run({"set", "pen", database, "+5", "--feed", "500"}), 0) << err;
  ASSERT_EQ(Run({"list", "pens", database}), 0);
  EXPECT_EQ(out, "ID\tName\tDescription\tFeedAmount\n5\tPEN005\t\t500\n");
  ASSERT_EQ(Run({"set", "recipe", database, "3", "--type", "W"}), 0) << err;
  for (const auto& [percent, index] : {std::pair{"+5", "15"}, {"-5", "25"}, {"20", "0"}}) {
    AddLine(database, {.recipe_id = "3", .target = "100"});
    ASSERT_EQ(Run({"set", "recipe", database, "3", "--adjust", percent}), 0) << err;
    EXPECT_EQ(Recipe(3).adjust_batch_index, index);
  }
  for (const char* const wrong : {"+", "++5", "+-5"}) {
    EXPECT_EQ(Run({"set", "pen", database, wrong, "--feed", "1"}), 2) << wrong;
  }
}

TEST_F(RecordFlows, SetRecipeReportsAHeadCountOutOfRange) {
  AddLine(database, {.recipe_id = "3", .target = "100"});
  ASSERT_EQ(Run({"set", "recipe", database, "3", "--type", "H", "--head-count", "1001"}), 0);
  EXPECT_EQ(err, "HeadCount: 1001 is out of range, 100 is stored.\n");
  EXPECT_EQ(Recipe(3).head_count, 100);
}

TEST_F(RecordFlows, SetRecipeStoresTheBatchTargetsOfANewRationTarget) {
  MakeRecipe("3", "W");
  AddLine(database, {.recipe_id = "3", .target = "1200", .dry_matter_percent = "88"});
  AddLine(database, {.recipe_id = "3", .target = "800", .dry_matter_percent = "90"});
  ASSERT_EQ(Run({"set", "recipe", database, "3", "--ration-target", "5000"}), 0) << err;
  EXPECT_EQ(Lines()[0].batch_target, "3027");
  EXPECT_EQ(Lines()[1].batch_target, "1973");
}

TEST_F(RecordFlows, SetRecipeRenamesARecipeThatCannotBeComputedAndReportsIt) {
  MakeRecipe("3", "W");
  AddLine(database, {.recipe_id = "3", .target = "900000000", .dry_matter_percent = "1"});
  ASSERT_EQ(Run({"set", "recipe", database, "3", "--name", "HEIFRS"}), 0);
  EXPECT_EQ(err,
            "Recipe 3 still cannot be computed: Overflow: a line's as-fed weight is outside the "
            "range of 32-bit whole numbers.\n");
  EXPECT_EQ(Recipe(3).name, "HEIFRS");
}

TEST_F(RecordFlows, FeedOnAHighPenBringsUpTheWarningUntilItIsTakenBack) {
  const std::string warning =
      " This recipe requires a 200-pen capacity option in the K2260 indicator.\n";
  ASSERT_EQ(Run({"set", "pen", database, "100", "--feed", "500"}), 0);
  EXPECT_EQ(err, "");
  ASSERT_EQ(Run({"set", "pen", database, "120", "--feed", "500"}), 0);
  EXPECT_EQ(err, warning);
  ASSERT_EQ(Run({"set", "pen", database, "1", "--name", "A01"}), 0);
  EXPECT_EQ(err, warning);
  ASSERT_EQ(Run({"set", "pen", database, "120", "--feed", "0"}), 0);
  EXPECT_EQ(err, "");
}

TEST_F(RecordFlows, ResetPenShowsTheCapacityThatIsStillNeeded) {
  ASSERT_EQ(Run({"set", "pen", database, "120", "--feed", "500"}), 0);
  ASSERT_EQ(Run({"set", "pen", database, "350", "--feed", "20"}), 0);
  ASSERT_EQ(Run({"reset", "pen", database, "350", "--yes"}), 0);
  EXPECT_EQ(err,
            "Set Pen Defaults: Reset pen #350 (PEN350) to its default values?\n"
            " This recipe requires a 200-pen capacity option in the K2260 indicator.\n");
  EXPECT_EQ(Run({"reset", "pen", database, "120"}), 1);
  EXPECT_EQ(err,
            "Set Pen Defaults: Reset pen #120 (PEN120) to its default values?\n"
            "answered with No (--yes answers with Yes)\n"
            " This recipe requires a 200-pen capacity option in the K2260 indicator.\n");
  ASSERT_EQ(Run({"reset", "pen", database, "120", "--yes"}), 0);
  EXPECT_EQ(err, "Set Pen Defaults: Reset pen #120 (PEN120) to its default values?\n");
}

TEST_F(RecordFlows, ResetOfAnotherRecordShowsNoCapacity) {
  ASSERT_EQ(Run({"set", "pen", database, "350", "--feed", "20"}), 0);
  for (const std::string kind : {"ingredient", "recipe"}) {
    ASSERT_EQ(Run({"reset", kind, database, "5", "--yes"}), 0);
    EXPECT_THAT(err, ::testing::Not(::testing::HasSubstr("capacity"))) << kind;
  }
}

TEST_F(RecordFlows, WhereUsedListsOneEntryForEachLine) {
  MakeRecipe("12", "W");
  MakeRecipe("3", "W");
  for (const std::string recipe : {"12", "3", "3", "4"}) {
    AddLine(database, {.recipe_id = recipe, .ingredient = "7"});
  }
  ASSERT_EQ(Run({"where-used", database, "7"}), 0) << err;
  EXPECT_EQ(out, "ID\tName\n3\tSTEERS\n3\tSTEERS\n12\tSTEERS\n");
  ASSERT_EQ(Run({"where-used", database, "7", "--json"}), 0) << err;
  EXPECT_EQ(Json::parse(out), Json::parse(R"([{"ID":3,"Name":"STEERS"},{"ID":3,"Name":"STEERS"},
                                              {"ID":12,"Name":"STEERS"}])"));
  EXPECT_EQ(err, "");
}

TEST_F(RecordFlows, WhereUsedOfAnUnusedIngredientIsEmpty) {
  const std::string before = ReadAll(database);
  ASSERT_EQ(Run({"where-used", database, "7"}), 0) << err;
  EXPECT_EQ(out, "ID\tName\n");
  ASSERT_EQ(Run({"where-used", database, "7", "--json"}), 0) << err;
  EXPECT_EQ(out, "[]\n");
  EXPECT_EQ(Run({"where-used", database, "101"}), 2);
  EXPECT_TRUE(ReadAll(database) == before);
}

TEST_F(RecordFlows, ResetRecipeClearsItsLinesAndKeepsItsInputs) {
  MakeRecipe("3", "H");
  AddLine(database, {.recipe_id = "3", .ingredient = "7", .target = "100"});
  AddLine(database, {.recipe_id = "4", .ingredient = "7", .target = "100"});
  ASSERT_EQ(Run({"set", "recipe", database, "3", "--head-count", "250", "--adjust", "5"}), 0)
      << err;
  calendar.today = {std::chrono::year{2026}, std::chrono::January, std::chrono::day{9}};
  ASSERT_EQ(Run({"reset", "recipe", database, "3", "--yes"}), 0);
  EXPECT_EQ(err,
            "Set Recipe Defaults: Reset recipe #3 (STEERS) to its default values and clear all "
            "ingredients in this recipe?\n");
  EXPECT_EQ(out, "");
  const RecipeRecord recipe = Recipe(3);
  EXPECT_EQ(recipe.name, "REC003");
  EXPECT_EQ(recipe.description, "");
  EXPECT_EQ(recipe.batch_type, "!");
  EXPECT_EQ(recipe.head_count, 250);
  EXPECT_EQ(recipe.adjust_batch_index, "15");
  EXPECT_EQ(Lines().size(), 1U);
  EXPECT_EQ(Modified(), "2026-01-09");
}

TEST_F(RecordFlows, ResetWithoutAnAnswerLeavesTheFile) {
  ASSERT_EQ(Run({"set", "ingredient", database, "5", "--name", "CORN"}), 0);
  const std::string before = ReadAll(database);
  EXPECT_EQ(Run({"reset", "ingredient", database, "5"}), 1);
  EXPECT_EQ(err,
            "Set Ingredient Defaults: Reset ingredient #5 (CORN) to its default values?\n"
            "answered with No (--yes answers with Yes)\n");
  EXPECT_TRUE(ReadAll(database) == before);
}

TEST_F(RecordFlows, ResetAsksAtTheTerminal) {
  ASSERT_EQ(Run({"set", "ingredient", database, "5", "--name", "CORN"}), 0);
  in_is_terminal = true;
  typed = "no\n";
  EXPECT_EQ(Run({"reset", "ingredient", database, "5"}), 1);
  typed = "yes\n";
  EXPECT_EQ(Run({"reset", "ingredient", database, "5"}), 0);
  ASSERT_EQ(Run({"list", "ingredients", database}), 0);
  EXPECT_EQ(out, "ID\tName\tDescription\tDryMatter%\tHandAdd\n");
}

TEST_F(RecordFlows, ResetRefusesAUsedIngredient) {
  MakeRecipe("3", "W");
  ASSERT_EQ(Run({"set", "ingredient", database, "5", "--name", "CORN"}), 0);
  AddLine(database, {.recipe_id = "3", .ingredient = "5"});
  const std::string before = ReadAll(database);
  EXPECT_EQ(Run({"reset", "ingredient", database, "5", "--yes"}), 1);
  EXPECT_EQ(err,
            "Set Ingredient Defaults: Reset ingredient #5 (CORN) to its default values?\n"
            "Set Ingredient Defaults: Sorry, cannot reset ingredient #5 (CORN) to its default "
            "values because it is currently being used in recipe(s).\n");
  EXPECT_TRUE(ReadAll(database) == before);
}

TEST_F(RecordFlows, AFileOfTheOtherKindIsRefused) {
  const std::string transactions = NewTransactionDatabase();
  const std::string before = ReadAll(transactions);
  for (const Args& args :
       {Args{"where-used", transactions, "5"}, Args{"reset", "pen", transactions, "5", "--yes"}}) {
    EXPECT_EQ(Run(args), 1);
    EXPECT_THAT(err, StartsWith("Invalid Database: "));
    EXPECT_THAT(out, IsEmpty());
  }
  EXPECT_TRUE(ReadAll(transactions) == before);
}

}  // namespace
}  // namespace vrx::testing
