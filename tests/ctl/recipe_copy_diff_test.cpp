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
using ::testing::StartsWith;
using Json = nlohmann::ordered_json;

// CORN, HAY, SUPP and OATS are the ingredients 1 to 4. Recipe 3 is by weight, with two lines of
// CORN.
class TwoRecipes : public CtlTest {
 protected:
  TwoRecipes() {
    const std::vector<std::vector<std::string>> calls = {
        {"set", "ingredient", yard, "1", "--name", "CORN", "--dry-matter", "88"},
        {"set", "ingredient", yard, "2", "--name", "HAY", "--dry-matter", "90"},
        {"set", "ingredient", yard, "3", "--name", "SUPP", "--dry-matter", "0", "--hand-add",
         "yes"},
        {"set", "ingredient", yard, "4", "--name", "OATS", "--dry-matter", "100"},
        {"set", "recipe", yard, "3", "--name", "STEERS", "--type", "W"},
        {"line", "add", yard, "3", "1", "--weight", "1200"},
        {"line", "add", yard, "3", "2", "--weight", "800"},
        {"line", "add", yard, "3", "1", "--weight", "500"},
        {"set", "recipe", yard, "3", "--ration-target", "5000"}};
    for (const auto& call : calls) {
      EXPECT_EQ(Run(call), 0) << err;
    }
  }

  int Copy(const std::string& from, const std::string& to) {
    return Run({"recipe", "copy", yard, from, to});
  }

  int Diff(std::vector<std::string> args) {
    args.insert(args.begin(), {"recipe", "diff", yard});
    return Run(std::move(args));
  }

  Json Shown(const std::string& id) {
    EXPECT_EQ(Run({"recipe", yard, id, "--json"}), 0) << err;
    return Json::parse(out);
  }

  std::string yard = NewRecipeDatabase();
};

class RecipeCopyCommand : public TwoRecipes {
 protected:
  void ExpectRefused(const std::string& from, const std::string& to, const std::string& message) {
    const std::string before = ReadAll(yard);
    EXPECT_EQ(Copy(from, to), 1);
    EXPECT_EQ(err, message + "\n");
    EXPECT_THAT(out, IsEmpty());
    EXPECT_TRUE(ReadAll(yard) == before) << message;
  }
};

TEST_F(RecipeCopyCommand, StoresTheSameRecipeUnderAnotherNumber) {
  Json expected = Shown("3");
  expected["ID"] = 9;
  for (Json& line : expected["lines"]) {
    line["RecipeID"] = "9";
  }
  EXPECT_EQ(Copy("3", "9"), 0);
  EXPECT_EQ(err,
            "Recipe 3 (STEERS) is copied to recipe 9 (STEERS), with 3 lines.\n"
            "Both have the same name: the history shows their batches as one recipe until one of "
            "them is renamed.\n");
  EXPECT_THAT(out, IsEmpty());
  EXPECT_EQ(Shown("9"), expected);
  EXPECT_EQ(Run({"info", yard, "--json"}), 0);
  EXPECT_EQ(Json::parse(out)["modified"], "2026-01-05");
}

TEST_F(RecipeCopyCommand, ReportsTheDefaultNameOfTheCopy) {
  AddLine(yard, {.recipe_id = "5", .ingredient = "1", .sequence = 1});
  EXPECT_EQ(Copy("5", "007"), 0);
  EXPECT_EQ(err, "Recipe 5 (REC005) is copied to recipe 7 (REC007), with 1 line.\n");
}

TEST_F(RecipeCopyCommand, RefusesWhatIsNotFreeOrEmpty) {
  AddLine(yard, {.recipe_id = "5", .ingredient = "1", .sequence = 1});
  ExpectRefused("5", "3", "Copy (Error): Recipe 3 (STEERS) is not free: it has a description.");
  ExpectRefused("3", "5", "Copy (Error): Recipe 5 (REC005) is not free: it has lines.");
  ExpectRefused("6", "7",
                "Copy (Error): Recipe 6 (REC006) cannot be copied: it has neither description nor "
                "lines.");
  ExpectRefused("3", "3", "Copy (Error): Recipe 3 cannot be copied to itself.");
}

// The file is not read while it is locked: closing it would drop the locks of this process.
TEST_F(RecipeCopyCommand, RefusesALockedFile) {
  busy_timeout = std::chrono::milliseconds{20};
  const std::string before = ReadAll(yard);
  {
    const ExclusiveHolder holder(yard);
    EXPECT_EQ(Copy("3", "9"), 1);
    EXPECT_THAT(err, HasSubstr("cause: YARD.RDB is locked by another program\n"));
  }
  EXPECT_TRUE(ReadAll(yard) == before);
}

// Runs as the user nobody, because a superuser may write everywhere. The settings are readable.
TEST_F(RecipeCopyCommand, RefusesAReadOnlyFile) {
  const TempFolder archive;
  const std::string fixed = (archive / "FIXED.RDB").string();
  std::filesystem::copy_file(yard, fixed);
  std::filesystem::permissions(folder.Path(), std::filesystem::perms::all);
  {
    const WithoutWritePermission rights(archive.Path());
    EXPECT_EQ(Run({"recipe", "copy", fixed, "3", "9"}), 1);
    EXPECT_THAT(err, HasSubstr("cause: FIXED.RDB may not be written: it is write-protected\n"));
  }
  EXPECT_TRUE(ReadAll(fixed) == ReadAll(yard));
}

TEST_F(RecipeCopyCommand, StoresNothingWhenTheStorageFails) {
  Alter(yard,
        "CREATE TRIGGER Full AFTER INSERT ON RecipeRation WHEN NEW.Sequence = 2 "
        "BEGIN SELECT RAISE(FAIL, 'disk is full'); END");
  const std::string before = ReadAll(yard);
  EXPECT_EQ(Copy("3", "9"), 1);
  EXPECT_THAT(err, HasSubstr("disk is full"));
  EXPECT_TRUE(ReadAll(yard) == before);
}

TEST_F(RecipeCopyCommand, RefusesAWrongUsage) {
  const std::string before = ReadAll(yard);
  const std::vector<std::vector<std::string>> usages = {
      {"copy"},
      {"copy", yard, "3"},
      {"copy", yard, "3", "101"},
      {"copy", yard, "0", "9"},
      {"copy", yard, "3", "x"},
      {"copy", yard, "3", "9", "10"},
      {"copy", yard, "3", "9", "--json"},
      {"--json", "copy", yard, "3", "9"},
      {yard, "copy", yard, "3", "9"},
      {yard, "3", "copy", yard, "3", "9"},
      {"copy", yard, "3", "9", "diff", yard, "3", "9"},
      {"diff", yard, "3"},
      {"diff", yard, "3", "9", "3"},
      {"diff", yard, "3", "101"},
      {"diff", yard, "3", "9", "--csv", "--json"},
      {"diff", yard, "3", "9", "--with"}};
  for (std::vector<std::string> args : usages) {
    args.insert(args.begin(), "recipe");
    EXPECT_EQ(Run(args), 2) << ::testing::PrintToString(args);
    EXPECT_THAT(err, HasSubstr("--help"));
    EXPECT_THAT(out, IsEmpty());
  }
  EXPECT_TRUE(ReadAll(yard) == before);
}

TEST_F(RecipeCopyCommand, TakesTheOptionsOfTheTool) {
  EXPECT_EQ(RunBare({"recipe", "copy", yard, "3", "9", "--data-dir", (folder / "data").string()}),
            0);
  EXPECT_EQ(RunBare({"recipe", "diff", yard, "3", "9", "--yes", "--data-dir",
                     (folder / "data").string()}),
            0);
}

TEST_F(RecipeCopyCommand, LeavesTheCommandThatShowsARecipeAsItIs) {
  const std::string shown = Shown("3").dump();
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  for (const char* const name : {"copy", "diff"}) {
    std::filesystem::copy_file(yard, name);
    const std::string here = std::string("./") + name;
    EXPECT_EQ(Run({"recipe", here, "3", "--json"}), 0) << err;
    EXPECT_EQ(Json::parse(out).dump(), shown);
    EXPECT_EQ(Run({"recipe", "--", name, "3"}), 0) << err;
    EXPECT_EQ(Run({"recipe", "diff", name, "3", "3", "--with", name}), 0) << err;
    EXPECT_EQ(Run({"recipe", "copy", name, "3", "9"}), 0) << err;
  }
  std::filesystem::current_path(before);
  EXPECT_EQ(Run({"recipe"}), 2);
  EXPECT_THAT(err, StartsWith("rdb is required\n"));
  EXPECT_EQ(Run({"recipe", yard}), 2);
  EXPECT_THAT(err, StartsWith("id is required\n"));
  EXPECT_EQ(Run({"recipe", yard, "3", "4"}), 2);
  EXPECT_THAT(err, StartsWith("The following argument was not expected: 4\n"));
}

class RecipeDiffCommand : public TwoRecipes {
 protected:
  // Recipe 9 is recipe 3 with the second line of CORN and a line of OATS in place of HAY, and with
  // another ration target.
  RecipeDiffCommand() {
    const std::vector<std::vector<std::string>> calls = {
        {"recipe", "copy", yard, "3", "9"},
        {"line", "delete", yard, "9", "2", "--yes"},
        {"line", "set", yard, "9", "2", "--weight", "600"},
        {"line", "add", yard, "9", "4", "--weight", "800"},
        {"set", "recipe", yard, "9", "--name", "FINISH", "--ration-target", "6000"}};
    for (const auto& call : calls) {
      EXPECT_EQ(Run(call), 0) << err;
    }
  }
};

TEST_F(RecipeDiffCommand, ListsEachDifferenceUnderItsName) {
  EXPECT_EQ(Diff({"3", "9"}), 0);
  EXPECT_EQ(out,
            "field\ta\tb\n"
            "Name\tSTEERS\tFINISH\n"
            "RationTarget\t5000\t6000\n"
            "lblTargetTotal\t2500\t2600\n"
            "lblDryMatPercent\t88.6\t91.4\n"
            "lblDryMatTotal\t2821\t2846\n"
            "lblBatchTargetTotal\t5001\t6001\n"
            "line 1 CORN Ration%\t48.000\t46.154\n"
            "line 1 CORN BatchTarget\t2418\t2876\n"
            "line 2 HAY Target\t800\t\n"
            "line 2 HAY Ration%\t32.000\t\n"
            "line 2 HAY DryMatter%\t90\t\n"
            "line 2 HAY DryMatter\t889\t\n"
            "line 2 HAY BatchTarget\t1576\t\n"
            "line 2 HAY Sequence\t2\t\n"
            "line 2 HAY HandAdd\tNo\t\n"
            "line 2 HAY Ingredient%\t0.00\t\n"
            "line 3 CORN Target\t500\t600\n"
            "line 3 CORN Ration%\t20.000\t23.077\n"
            "line 3 CORN DryMatter\t568\t682\n"
            "line 3 CORN BatchTarget\t1007\t1438\n"
            "line 3 OATS Target\t\t800\n"
            "line 3 OATS Ration%\t\t30.769\n"
            "line 3 OATS DryMatter%\t\t100\n"
            "line 3 OATS DryMatter\t\t800\n"
            "line 3 OATS BatchTarget\t\t1687\n"
            "line 3 OATS Sequence\t\t4\n"
            "line 3 OATS HandAdd\t\tNo\n"
            "line 3 OATS Ingredient%\t\t0.00\n");
  EXPECT_THAT(err, IsEmpty());
  EXPECT_EQ(Diff({"3", "9", "--csv"}), 0);
  EXPECT_THAT(out, StartsWith("field,a,b\r\nName,STEERS,FINISH\r\n"));
  EXPECT_THAT(out, HasSubstr("\r\nline 2 HAY Target,800,\r\n"));
}

TEST_F(RecipeDiffCommand, HasTheSameDifferencesAsOneDocument) {
  const Json a = Shown("3");
  const Json b = Shown("9");
  EXPECT_EQ(Diff({"3", "9", "--json"}), 0);
  const Json expected = {{"a", {{"ID", 3}, {"Name", "STEERS"}}},
                         {"b", {{"ID", 9}, {"Name", "FINISH"}}},
                         {"fields",
                          {{{"field", "Name"}, {"a", "STEERS"}, {"b", "FINISH"}},
                           {{"field", "RationTarget"}, {"a", "5000"}, {"b", "6000"}}}},
                         {"totals",
                          {{{"field", "lblTargetTotal"}, {"a", "2500"}, {"b", "2600"}},
                           {{"field", "lblDryMatPercent"}, {"a", "88.6"}, {"b", "91.4"}},
                           {{"field", "lblDryMatTotal"}, {"a", "2821"}, {"b", "2846"}},
                           {{"field", "lblBatchTargetTotal"}, {"a", "5001"}, {"b", "6001"}}}},
                         {"lines",
                          {{{"ingredient", "CORN"}, {"a", a["lines"][0]}, {"b", b["lines"][0]}},
                           {{"ingredient", "HAY"}, {"a", a["lines"][1]}, {"b", nullptr}},
                           {{"ingredient", "CORN"}, {"a", a["lines"][2]}, {"b", b["lines"][1]}},
                           {{"ingredient", "OATS"}, {"a", nullptr}, {"b", b["lines"][2]}}}}};
  EXPECT_EQ(Json::parse(out).dump(1), expected.dump(1));
}

TEST_F(RecipeDiffCommand, ListsNothingForTheSameRecipe) {
  ASSERT_EQ(Copy("9", "20"), 0);
  const std::string before = ReadAll(yard);
  EXPECT_EQ(Diff({"9", "20"}), 0);
  EXPECT_EQ(out, "field\ta\tb\n");
  EXPECT_EQ(Diff({"9", "20", "--csv"}), 0);
  EXPECT_EQ(out, "field,a,b\r\n");
  EXPECT_EQ(Diff({"9", "20", "--json"}), 0);
  EXPECT_EQ(Json::parse(out), Json::parse(R"({"a":{"ID":9,"Name":"FINISH"},
      "b":{"ID":20,"Name":"FINISH"},"fields":[],"totals":[],"lines":[]})"));
  EXPECT_TRUE(ReadAll(yard) == before);
}

// The figures of the stored lines are never computed.
TEST_F(RecipeDiffCommand, ComparesRecomputedFigures) {
  ASSERT_EQ(Copy("3", "20"), 0);
  Alter(yard,
        "UPDATE RecipeRation SET DryMatter = '1', BatchTarget = '', [Ration%] = '0' "
        "WHERE RecipeID = '20'");
  EXPECT_EQ(Diff({"3", "20"}), 0);
  EXPECT_EQ(out, "field\ta\tb\n");
}

// Of three lines of CORN the first of one recipe belongs to the first of the other.
TEST_F(RecipeDiffCommand, MatchesARepeatedIngredientInOrder) {
  ASSERT_EQ(Run({"line", "add", yard, "9", "1", "--weight", "0"}), 0);
  EXPECT_EQ(Diff({"9", "3", "--json"}), 0);
  std::vector<std::string> pairs;
  const Json document = Json::parse(out);
  for (const Json& line : document["lines"]) {
    const auto target = [&](const char* side) {
      return line[side].is_null() ? "none" : line[side]["Target"].get<std::string>();
    };
    pairs.push_back(line["ingredient"].get<std::string>() + " " + target("a") + " " + target("b"));
  }
  EXPECT_THAT(pairs, ElementsAre("CORN 1200 1200", "CORN 600 500", "OATS 800 none", "CORN 0 none",
                                 "HAY none 800"));
}

TEST_F(RecipeDiffCommand, ShowsAMoveByTheSequence) {
  ASSERT_EQ(Copy("3", "20"), 0);
  ASSERT_EQ(Run({"line", "move", yard, "20", "1", "down"}), 0);
  EXPECT_EQ(Diff({"3", "20"}), 0);
  EXPECT_EQ(out,
            "field\ta\tb\n"
            "line 1 CORN Sequence\t1\t2\n"
            "line 2 HAY Sequence\t2\t1\n");
}

TEST_F(RecipeDiffCommand, ShowsAnotherIngredientOfTheSameName) {
  ASSERT_EQ(Copy("3", "20"), 0);
  ASSERT_EQ(Run({"set", "ingredient", yard, "5", "--name", "HAY", "--dry-matter", "90"}), 0);
  ASSERT_EQ(Run({"line", "set", yard, "20", "2", "--ingredient", "5"}), 0);
  EXPECT_EQ(Diff({"3", "20"}), 0);
  EXPECT_EQ(out, "field\ta\tb\nline 2 HAY Ingredient\t2\t5\n");
}

TEST_F(RecipeDiffCommand, NamesAnIngredientThatIsMissingByItsNumber) {
  AddLine(yard, {.recipe_id = "20", .ingredient = "700", .target = "5", .sequence = 1});
  EXPECT_EQ(Diff({"20", "21"}), 0);
  EXPECT_THAT(out, HasSubstr("\nline 1 ingredient '700' Target\t5\t\n"));
}

TEST_F(RecipeDiffCommand, MatchesTheIngredientsOfTwoDatabasesByName) {
  const std::string other = (folder / "OTHER.RDB").string();
  std::filesystem::copy_file(yard, other);
  Alter(other,
        "UPDATE Ingredient SET Name = 'OLD' WHERE ID = 1; "
        "UPDATE Ingredient SET Name = 'CORN' WHERE ID = 11; "
        "UPDATE RecipeRation SET Ingredient = '11' WHERE Ingredient = '1'");
  EXPECT_EQ(Diff({"3", "3", "--with", other}), 0);
  EXPECT_EQ(out, "field\ta\tb\n");
  EXPECT_THAT(err, IsEmpty());
  Alter(other,
        "UPDATE Recipe SET HeadCount = 7 WHERE ID = 3; UPDATE UnitsOfMeasure SET UoM = 'KG'; "
        "UPDATE RecipeRation SET HandAdd = 1 WHERE Ingredient = '2' AND RecipeID = '3'");
  EXPECT_EQ(Diff({"3", "3", "--with", other}), 0);
  EXPECT_EQ(out,
            "field\ta\tb\n"
            "HeadCount\t0\t7\n"
            "lblHandAddTotal\t0\t1\n"
            "line 2 HAY HandAdd\tNo\tYes\n");
  EXPECT_EQ(err,
            "The weights of YARD.RDB are in LB, those of OTHER.RDB in KG: they are compared as "
            "numbers.\n");
}

TEST_F(RecipeDiffCommand, RefusesWhatItCannotRead) {
  EXPECT_EQ(Diff({"3", "9", "--with", NewTransactionDatabase()}), 1);
  EXPECT_THAT(err, StartsWith("Invalid Database: The database file (YARD.TDB)"));
  EXPECT_EQ(Diff({"3", "9", "--with", ""}), 1);
  EXPECT_THAT(err, HasSubstr("cause: no file was named"));
  EXPECT_EQ(Run({"recipe", "diff", (folder / "NONE.RDB").string(), "3", "9", "--with", yard}), 1);
  EXPECT_THAT(err, HasSubstr("NONE.RDB"));
  AddLine(yard, {.recipe_id = "9", .target = "99999999", .dry_matter_percent = "1"});
  EXPECT_EQ(Diff({"3", "9", "--json"}), 1);
  EXPECT_EQ(err,
            "Error: Recipe 9 of YARD.RDB: Overflow: a line's as-fed weight is outside the range of "
            "32-bit whole numbers.\n");
  EXPECT_THAT(out, IsEmpty());
}

// Runs as the user nobody: neither the databases nor the settings can be written.
TEST_F(RecipeDiffCommand, OnlyReads) {
  const WithoutWritePermission rights(folder.Path());
  EXPECT_EQ(Diff({"3", "9"}), 0) << err;
  EXPECT_EQ(
      RunBare({"--data-dir", (folder / "missing").string(), "recipe", "diff", yard, "3", "9"}), 0)
      << err;
  EXPECT_EQ(RunBare({"--data-dir", (folder / "missing").string(), "recipe", yard, "3"}), 0) << err;
}

}  // namespace
}  // namespace vrx::testing
