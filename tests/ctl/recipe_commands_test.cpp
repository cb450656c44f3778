#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "ctl/ctl_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::StartsWith;
using Json = nlohmann::ordered_json;

class RecipeCommand : public CtlTest {
 protected:
  Json Shown(const std::string& id) {
    EXPECT_EQ(Run({"recipe", database, id, "--json"}), 0) << err;
    return Json::parse(out);
  }

  // Recipe 3 by weight, entered and never computed.
  void EnterSteers() {
    ASSERT_EQ(Run({"set", "recipe", database, "3", "--description", "Steers", "--type", "W"}), 0);
    AddLine(database, {.recipe_id = "3",
                       .ingredient = "1",
                       .target = "1200",
                       .dry_matter_percent = "88",
                       .sequence = 1});
    AddLine(database, {.recipe_id = "3",
                       .ingredient = "7",
                       .target = "800",
                       .dry_matter_percent = "90",
                       .sequence = 2});
    AddLine(
        database,
        {.recipe_id = "3", .ingredient = "12", .target = "100", .sequence = 4, .hand_add = true});
    ASSERT_EQ(Run({"set", "recipe", database, "3", "--ration-target", "5000", "--adjust", "5"}), 0)
        << err;
  }

  std::string database = NewRecipeDatabase();
};

TEST_F(RecipeCommand, RecomputesTheLinesAndTotals) {
  EnterSteers();
  const Json recipe = Shown("3");
  EXPECT_EQ(recipe, Json::parse(R"({
      "ID":3,"Name":"STEERS","Description":"Steers","BatchType":"W","HeadCount":0,
      "RationTarget":"5000","AdjBatTotIndex":"15",
      "lines":[
        {"RecipeID":"3","Ingredient":"1","Target":"1200","Ration%":"60.000","DryMatter%":"88",
         "DryMatter":"1364","BatchTarget":"3043","Sequence":"1","HandAdd":false,
         "Ingredient%":"0.00"},
        {"RecipeID":"3","Ingredient":"7","Target":"800","Ration%":"40.000","DryMatter%":"90",
         "DryMatter":"889","BatchTarget":"1984","Sequence":"2","HandAdd":false,
         "Ingredient%":"0.00"},
        {"RecipeID":"3","Ingredient":"12","Target":"100","Ration%":"0.000","DryMatter%":"0",
         "DryMatter":"100","BatchTarget":"223","Sequence":"4","HandAdd":true,
         "Ingredient%":"0.00"}],
      "totals":{"lblTargetTotal":"2100","lblRationPctTotal":"100.000","lblDryMatPercent":"89.2",
        "lblDryMatTotal":"2353","lblBatchTargetTotal":"5250","lblHandAddTotal":"1",
        "lblIngPctTotal":"0.00"},
      "inputs":{"HeadCount":true,"RationTarget":true,"AdjustBatch":true}})"));
}

TEST_F(RecipeCommand, ShowsFourTablesWithoutJson) {
  EnterSteers();
  ASSERT_EQ(Run({"recipe", database, "3"}), 0) << err;
  EXPECT_EQ(out,
            "ID\tName\tDescription\tBatchType\tHeadCount\tRationTarget\tAdjBatTotIndex\n"
            "3\tSTEERS\tSteers\tW\t0\t5000\t15\n"
            "\n"
            "RecipeID\tIngredient\tTarget\tRation%\tDryMatter%\tDryMatter\tBatchTarget\tSequence\t"
            "HandAdd\tIngredient%\n"
            "3\t1\t1200\t60.000\t88\t1364\t3043\t1\tNo\t0.00\n"
            "3\t7\t800\t40.000\t90\t889\t1984\t2\tNo\t0.00\n"
            "3\t12\t100\t0.000\t0\t100\t223\t4\tYes\t0.00\n"
            "\n"
            "lblTargetTotal\tlblRationPctTotal\tlblDryMatPercent\tlblDryMatTotal\t"
            "lblBatchTargetTotal\tlblHandAddTotal\tlblIngPctTotal\n"
            "2100\t100.000\t89.2\t2353\t5250\t1\t0.00\n"
            "\n"
            "HeadCount\tRationTarget\tAdjustBatch\n"
            "Yes\tYes\tYes\n");
}

TEST_F(RecipeCommand, StoresNothing) {
  EnterSteers();
  const std::string before = ReadAll(database);
  Shown("3");
  EXPECT_TRUE(ReadAll(database) == before);
}

TEST_F(RecipeCommand, ShowsAnUntypedRecipeWithoutLines) {
  const Json recipe = Shown("100");
  EXPECT_EQ(recipe["Name"], "REC100");
  EXPECT_EQ(recipe["BatchType"], "!");
  EXPECT_EQ(recipe["lines"], Json::array());
  EXPECT_EQ(recipe["totals"]["lblDryMatPercent"], "0.0");
  EXPECT_EQ(recipe["inputs"],
            Json::parse(R"({"HeadCount":false,"RationTarget":false,"AdjustBatch":false})"));
}

TEST_F(RecipeCommand, ShowsARecipeByPercentOfTheSampleSite) {
  database = SitePath("SITE.RDB");
  const Json recipe = Shown("1");
  EXPECT_EQ(recipe["totals"], Json::parse(R"({"lblTargetTotal":"0","lblRationPctTotal":"0.000",
                "lblDryMatPercent":"0.0","lblDryMatTotal":"15110","lblBatchTargetTotal":"10000",
                "lblHandAddTotal":"1","lblIngPctTotal":"100.00"})"));
  EXPECT_EQ(recipe["inputs"],
            Json::parse(R"({"HeadCount":false,"RationTarget":true,"AdjustBatch":true})"));
}

TEST_F(RecipeCommand, ReportsAnOverflow) {
  EnterSteers();
  AddLine(database, {.recipe_id = "3", .target = "99999999", .dry_matter_percent = "1"});
  EXPECT_EQ(Run({"recipe", database, "3", "--json"}), 1);
  EXPECT_EQ(err,
            "Error: Overflow: a line's as-fed weight is outside the range of 32-bit whole "
            "numbers.\n");
  EXPECT_THAT(out, IsEmpty());
}

TEST_F(RecipeCommand, RefusesAnIdThatNoRecipeHas) {
  for (const char* const id : {"0", "101", "-1", "x"}) {
    EXPECT_EQ(Run({"recipe", database, id}), 2) << id;
  }
  EXPECT_EQ(Run({"recipe", database}), 2);
}

TEST_F(RecipeCommand, RefusesADatabaseOfTheOtherKind) {
  EXPECT_EQ(Run({"recipe", NewTransactionDatabase(), "1"}), 1);
  EXPECT_THAT(err, StartsWith("Invalid Database: The database file (YARD.TDB) that you specified"));
}

TEST_F(RecipeCommand, SetRefusesAnInputThatTheLinesClose) {
  ASSERT_EQ(Run({"set", "recipe", database, "3", "--description", "Steers", "--type", "H"}), 0);
  const std::string before = ReadAll(database);
  EXPECT_EQ(Run({"set", "recipe", database, "3", "--head-count", "250"}), 1);
  EXPECT_EQ(err,
            "Field Error: The 'HeadCount' field is closed: the 'Target' weights of the recipe "
            "total less than 1.\n");
  EXPECT_TRUE(ReadAll(database) == before);
}

TEST_F(RecipeCommand, SetOpensAPercentRecipeAt100) {
  ASSERT_EQ(Run({"set", "recipe", database, "4", "--description", "Calves", "--type", "P"}), 0);
  AddLine(database, {.recipe_id = "4", .sequence = 1, .ingredient_percent = "99.99"});
  EXPECT_EQ(Run({"set", "recipe", database, "4", "--ration-target", "9000"}), 1);
  EXPECT_EQ(err,
            "Field Error: The 'RationTarget' field is closed: Ingredients must total 100% to set "
            "Ration Target.\n");
  EXPECT_EQ(Shown("4")["inputs"]["RationTarget"], false);
  AddLine(database, {.recipe_id = "4", .sequence = 2, .ingredient_percent = "0.01"});
  EXPECT_EQ(Run({"set", "recipe", database, "4", "--ration-target", "9000"}), 0) << err;
  EXPECT_EQ(Shown("4")["RationTarget"], "9000");
}

}  // namespace
}  // namespace vrx::testing
