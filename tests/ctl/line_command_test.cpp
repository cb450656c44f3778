#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "ctl/ctl_fixture.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Json = nlohmann::ordered_json;

// CORN, HAY and SUPP in use as ingredients 1 to 3, SUPP without a dry-matter figure and added by
// hand. Recipe 3 is by weight, 4 by percent.
class LineCommand : public CtlTest {
 protected:
  LineCommand() {
    EXPECT_EQ(Run({"set", "ingredient", database, "1", "--name", "CORN", "--dry-matter", "88"}), 0);
    EXPECT_EQ(Run({"set", "ingredient", database, "2", "--name", "HAY", "--dry-matter", "90"}), 0);
    EXPECT_EQ(Run({"set", "ingredient", database, "3", "--name", "SUPP", "--dry-matter", "0",
                   "--hand-add", "yes"}),
              0);
    EXPECT_EQ(Run({"set", "recipe", database, "3", "--name", "STEERS", "--type", "W"}), 0);
    EXPECT_EQ(Run({"set", "recipe", database, "4", "--type", "P"}), 0);
  }

  int Line(std::vector<std::string> args) {
    args.insert(args.begin(), "line");
    args.insert(args.begin() + 2, database);
    return Run(std::move(args));
  }

  Json Recipe(const std::string& id = "3") {
    EXPECT_EQ(Run({"recipe", database, id, "--json"}), 0) << err;
    return Json::parse(out);
  }

  std::vector<std::string> Fields(const std::string& field, const std::string& id = "3") {
    std::vector<std::string> values;
    const Json recipe = Recipe(id);
    for (const Json& line : recipe["lines"]) {
      values.push_back(line[field].is_string() ? line[field].get<std::string>()
                                               : line[field].dump());
    }
    return values;
  }

  void AddCornHaySupplement() {
    ASSERT_EQ(Line({"add", "3", "1", "--weight", "1200"}), 0) << err;
    ASSERT_EQ(Line({"add", "3", "2", "--weight", "800"}), 0) << err;
    ASSERT_EQ(Line({"add", "3", "3", "--weight", "100"}), 0) << err;
  }

  void ExpectRefused(const std::vector<std::string>& args, const std::string& message) {
    const std::string before = ReadAll(database);
    EXPECT_EQ(Line(args), 1) << ::testing::PrintToString(args);
    EXPECT_EQ(err, message + "\n");
    EXPECT_THAT(out, IsEmpty());
    EXPECT_TRUE(ReadAll(database) == before) << ::testing::PrintToString(args);
  }

  std::string database = NewRecipeDatabase();
};

TEST_F(LineCommand, AddBuildsARecipeAsItsGridDoes) {
  AddCornHaySupplement();
  ASSERT_EQ(Run({"set", "recipe", database, "3", "--ration-target", "5000", "--adjust", "5"}), 0);
  const Json recipe = Recipe();
  EXPECT_EQ(recipe["Description"], "STEERS");
  EXPECT_EQ(recipe["totals"]["lblBatchTargetTotal"], "5250");
  EXPECT_EQ(recipe["totals"]["lblDryMatPercent"], "89.2");
  EXPECT_THAT(Fields("DryMatter"), ElementsAre("1364", "889", "100"));
  EXPECT_THAT(Fields("BatchTarget"), ElementsAre("3043", "1984", "223"));
  EXPECT_THAT(Fields("HandAdd"), ElementsAre("false", "false", "true"));
  EXPECT_THAT(Fields("Sequence"), ElementsAre("1", "2", "3"));
}

TEST_F(LineCommand, StoresTheComputedCells) {
  AddCornHaySupplement();
  SQLite::Database connection = OpenDatabase(database, Access::kRead);
  const std::vector<RecipeLineRecord> lines = ReadRecipeLines(connection, 3);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0].ration_percent, "60.000");
  EXPECT_EQ(lines[1].dry_matter, "889");
  EXPECT_EQ(lines[2].batch_target, "0");
  EXPECT_EQ(lines[2].recipe_id, "3");
}

TEST_F(LineCommand, AddFillsARecipeByPercent) {
  ASSERT_EQ(Line({"add", "4", "1", "--percent", "62.50"}), 0) << err;
  ASSERT_EQ(Line({"add", "4", "2", "--percent", "37.5"}), 0) << err;
  EXPECT_THAT(Fields("DryMatter", "4"), ElementsAre("7102", "4167"));
  EXPECT_EQ(Recipe("4")["inputs"]["RationTarget"], true);
}

TEST_F(LineCommand, StoresAPercentageWithTwoDecimals) {
  ASSERT_EQ(Line({"add", "4", "1", "--percent", "60"}), 0) << err;
  ASSERT_EQ(Line({"add", "4", "2", "--percent", "37.5"}), 0) << err;
  ASSERT_EQ(Line({"set", "4", "2", "--percent", "40"}), 0) << err;
  EXPECT_THAT(Fields("Ingredient%", "4"), ElementsAre("60.00", "40.00"));
  SQLite::Database connection = OpenDatabase(database, Access::kRead);
  EXPECT_EQ(ReadRecipeLines(connection, 4).at(0).ingredient_percent, "60.00");
}

TEST_F(LineCommand, TakesTheBoundsOfWeightAndPercent) {
  for (const char* const weight : {"0", "999999"}) {
    EXPECT_EQ(Line({"add", "3", "1", "--weight", weight}), 0) << err;
  }
  for (const char* const percent : {"0", "100", "100.00", "33.33"}) {
    EXPECT_EQ(Line({"add", "4", "1", "--percent", percent}), 0) << err;
  }
}

TEST_F(LineCommand, SetChangesIngredientAndWeight) {
  AddCornHaySupplement();
  ASSERT_EQ(Line({"set", "3", "2", "--ingredient", "3"}), 0) << err;
  EXPECT_THAT(Fields("Ingredient"), ElementsAre("1", "3", "3"));
  EXPECT_THAT(Fields("HandAdd"), ElementsAre("false", "true", "true"));
  ASSERT_EQ(Line({"set", "3", "1", "--weight", "400"}), 0) << err;
  EXPECT_THAT(Fields("Target"), ElementsAre("400", "800", "100"));
  ASSERT_EQ(Line({"set", "3", "3", "--ingredient", "2", "--weight", "7"}), 0) << err;
  EXPECT_THAT(Fields("DryMatter"), ElementsAre("455", "800", "8"));
}

TEST_F(LineCommand, MoveCarriesSixFieldsToTheNeighbour) {
  AddCornHaySupplement();
  ASSERT_EQ(Line({"move", "3", "3", "up"}), 0) << err;
  EXPECT_THAT(Fields("Ingredient"), ElementsAre("1", "3", "2"));
  EXPECT_THAT(Fields("HandAdd"), ElementsAre("false", "false", "true"));
  EXPECT_THAT(Fields("Sequence"), ElementsAre("1", "2", "3"));
  ASSERT_EQ(Line({"move", "3", "1", "down"}), 0) << err;
  EXPECT_THAT(Fields("Ingredient"), ElementsAre("3", "1", "2"));
}

TEST_F(LineCommand, MoveRefusesTheEnds) {
  AddCornHaySupplement();
  ExpectRefused({"move", "3", "1", "up"}, "Move (Error): The selected row cannot be moved up.");
  ExpectRefused({"move", "3", "3", "down"}, "Move (Error): The selected row cannot be moved down.");
}

TEST_F(LineCommand, DeleteAsks) {
  AddCornHaySupplement();
  ExpectRefused({"delete", "3", "2"},
                "Delete Ingredient: Delete HAY from this recipe?\n"
                "answered with No (--yes answers with Yes)");
  ASSERT_EQ(Line({"delete", "3", "2", "--yes"}), 0);
  EXPECT_EQ(err, "Delete Ingredient: Delete HAY from this recipe?\n");
  EXPECT_THAT(Fields("Sequence"), ElementsAre("1", "3"));
  ASSERT_EQ(Line({"add", "3", "1", "--weight", "5"}), 0);
  EXPECT_THAT(Fields("Sequence"), ElementsAre("1", "3", "4"));
}

TEST_F(LineCommand, ReadsNumbersAsDecimalDigits) {
  AddCornHaySupplement();
  ASSERT_EQ(Line({"add", "003", "002", "--weight", "010"}), 0) << err;
  ASSERT_EQ(Line({"set", "003", "004", "--ingredient", "001"}), 0) << err;
  EXPECT_THAT(Fields("Ingredient"), ElementsAre("1", "2", "3", "1"));
}

TEST_F(LineCommand, RefusesAnUntypedRecipe) {
  const std::string refusal =
      "Field Error: Recipe 5 is of type \"!\": its lines are closed until a type W, H, % or P is "
      "chosen.";
  ExpectRefused({"add", "5", "1", "--weight", "5"}, refusal);
  ExpectRefused({"set", "5", "1", "--weight", "5"}, refusal);
  ExpectRefused({"delete", "5", "1", "--yes"}, refusal);
  ExpectRefused({"move", "5", "1", "up"}, refusal);
}

TEST_F(LineCommand, RefusesTheOptionOfTheOtherType) {
  ExpectRefused({"add", "3", "1", "--percent", "5"},
                "Field Error: The 'Ingredient%' field is closed in a recipe of type \"W\": its "
                "lines are entered by 'Target'.");
  ExpectRefused({"add", "4", "1", "--weight", "5"},
                "Field Error: The 'Target' field is closed in a recipe of type \"P\": its lines "
                "are entered by 'Ingredient%'.");
}

TEST_F(LineCommand, RefusesAnInactiveIngredient) {
  AddCornHaySupplement();
  const std::string refusal =
      "Field Error: Ingredient 9 (ING009) is not in use: only an ingredient with a description "
      "can be chosen.";
  ExpectRefused({"add", "3", "9", "--weight", "5"}, refusal);
  ExpectRefused({"set", "3", "1", "--ingredient", "9"}, refusal);
}

TEST_F(LineCommand, RefusesAnAmountThatCannotBeTyped) {
  AddCornHaySupplement();
  for (const std::string text : {"12x", "1234567", "1.5", "-5"}) {
    const std::string refusal =
        "Field Error: The 'Target' field takes digits, at most 6: not '" + text + "'.";
    ExpectRefused({"add", "3", "1", "--weight", text}, refusal);
    ExpectRefused({"set", "3", "1", "--ingredient", "2", "--weight", text}, refusal);
  }
  for (const std::string text : {"33.333", "100.01", "101", "x"}) {
    ExpectRefused({"add", "4", "1", "--percent", text},
                  "Field Error: The 'Ingredient%' field takes a percentage from 0 to 100 with at "
                  "most two decimals: not '" +
                      text + "'.");
  }
  ExpectRefused({"set", "3", "1", "--weight", ""},
                "Field Error: The 'Target' field needs a number.");
}

TEST_F(LineCommand, RefusesA33rdLine) {
  for (int line = 1; line <= kMaxRecipeLines; ++line) {
    ASSERT_EQ(Line({"add", "3", "1", "--weight", "5"}), 0) << err;
  }
  ExpectRefused({"add", "3", "1", "--weight", "5"},
                "Field Error: Recipe 3 has 32 lines, and a recipe holds at most 32.");
  ASSERT_EQ(Line({"delete", "3", "32", "--yes"}), 0);
  EXPECT_EQ(Line({"add", "3", "2", "--weight", "5"}), 0) << err;
}

TEST_F(LineCommand, RefusesAPositionThatIsMissing) {
  ExpectRefused({"set", "3", "1", "--weight", "5"}, "Field Error: Recipe 3 has no lines.");
  ASSERT_EQ(Line({"add", "3", "1", "--weight", "5"}), 0);
  ExpectRefused({"delete", "3", "2", "--yes"},
                "Field Error: Recipe 3 has no line 2, its only line is 1.");
  AddCornHaySupplement();
  for (const std::string position : {"0", "-1", "5", "2147483647"}) {
    ExpectRefused({"move", "3", position, "up"},
                  "Field Error: Recipe 3 has no line " + position + ", its lines are 1 to 4.");
  }
}

// The file is not read while it is locked: closing it would drop the locks of this process.
TEST_F(LineCommand, RefusesALockedFile) {
  AddCornHaySupplement();
  busy_timeout = std::chrono::milliseconds{20};
  const std::string before = ReadAll(database);
  {
    const ExclusiveHolder holder(database);
    EXPECT_EQ(Line({"set", "3", "1", "--weight", "5"}), 1);
    EXPECT_THAT(err, HasSubstr("cause: YARD.RDB is locked by another program\n"));
  }
  EXPECT_TRUE(ReadAll(database) == before);
}

// Runs as the user nobody, because a superuser may write everywhere. The settings are readable.
TEST_F(LineCommand, RefusesAReadOnlyFile) {
  AddCornHaySupplement();
  const TempFolder archive;
  const std::string fixed = (archive / "FIXED.RDB").string();
  std::filesystem::copy_file(database, fixed);
  const std::string before = ReadAll(fixed);
  std::filesystem::permissions(folder.Path(), std::filesystem::perms::all);
  {
    const WithoutWritePermission rights(archive.Path());
    EXPECT_EQ(Run({"line", "set", fixed, "3", "1", "--weight", "5"}), 1);
    EXPECT_THAT(err, HasSubstr("cause: FIXED.RDB may not be written: it is write-protected\n"));
  }
  EXPECT_TRUE(ReadAll(fixed) == before);
}

TEST_F(LineCommand, RefusesAFileWhoseStorageFails) {
  AddCornHaySupplement();
  {
    SQLite::Database connection = OpenDatabase(database, Access::kWrite);
    connection.exec(
        "CREATE TRIGGER Full AFTER UPDATE ON RecipeRation WHEN NEW.Sequence = 2 "
        "BEGIN SELECT RAISE(FAIL, 'disk is full'); END");
  }
  const std::string before = ReadAll(database);
  EXPECT_EQ(Line({"set", "3", "1", "--weight", "5"}), 1);
  EXPECT_THAT(err, HasSubstr("disk is full"));
  EXPECT_TRUE(ReadAll(database) == before);
}

TEST_F(LineCommand, RepairsARecipeThatOverflowsAndReportsWhatIsLeft) {
  AddCornHaySupplement();
  for (int line = 4; line <= 5; ++line) {
    AddLine(database, {.recipe_id = "3",
                       .ingredient = "1",
                       .target = "99999999",
                       .dry_matter_percent = "1",
                       .dry_matter = "2147483647",
                       .sequence = line});
  }
  ASSERT_EQ(Line({"delete", "3", "5", "--yes"}), 0) << err;
  EXPECT_THAT(err, HasSubstr("Recipe 3 still cannot be computed: Overflow: the sum of "
                             "'DryMatter' is outside the range of 32-bit whole numbers.\n"));
  ASSERT_EQ(Line({"delete", "3", "4", "--yes"}), 0) << err;
  EXPECT_THAT(err, ::testing::Not(HasSubstr("cannot be computed")));
  EXPECT_EQ(Recipe()["totals"]["lblDryMatTotal"], "2353");
}

TEST_F(LineCommand, SetsTheDateOfTheChange) {
  EXPECT_EQ(Line({"add", "3", "1", "--weight", "5"}), 0);
  SQLite::Database connection = OpenDatabase(database, Access::kWrite);
  connection.exec("UPDATE History SET Modified = NULL");
  ASSERT_EQ(Line({"set", "3", "1", "--weight", "6"}), 0);
  ASSERT_EQ(Run({"info", database, "--json"}), 0);
  EXPECT_EQ(Json::parse(out)["modified"], "2026-01-05");
}

TEST_F(LineCommand, LeavesOtherRecipesAlone) {
  ASSERT_EQ(Line({"add", "4", "1", "--percent", "60"}), 0);
  const Json before = Recipe("4");
  AddCornHaySupplement();
  ASSERT_EQ(Line({"delete", "3", "1", "--yes"}), 0);
  EXPECT_EQ(Recipe("4"), before);
}

TEST_F(LineCommand, RefusesAWrongUsage) {
  const std::string before = ReadAll(database);
  for (const std::vector<std::string>& args :
       std::vector<std::vector<std::string>>{{"add", "3", "1"},
                                             {"add", "3", "101", "--weight", "5"},
                                             {"add", "101", "1", "--weight", "5"},
                                             {"add", "3", "1", "--weight", "5", "--percent", "5"},
                                             {"set", "3", "1"},
                                             {"set", "3", "1", "--ingredient", "0"},
                                             {"set", "3", "x", "--weight", "5"},
                                             {"move", "3", "1", "sideways"},
                                             {"move", "3", "1"},
                                             {"delete", "3"}}) {
    EXPECT_EQ(Line(args), 2) << ::testing::PrintToString(args);
  }
  EXPECT_EQ(Run({"line"}), 2);
  EXPECT_TRUE(ReadAll(database) == before);
}

TEST_F(LineCommand, RefusesADatabaseOfTheOtherKind) {
  EXPECT_EQ(Run({"line", "add", NewTransactionDatabase(), "3", "1", "--weight", "5"}), 1);
  EXPECT_THAT(err, HasSubstr("Invalid Database: The database file (YARD.TDB)"));
}

}  // namespace
}  // namespace vrx::testing
