#include "exchange/recipe_text.h"

#include <array>
#include <string>

#include <gmock/gmock.h>

#include "support/recipe_tables.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecipeDownloadText : public ::testing::Test {
 protected:
  std::string File() const { return BuildRecipeDownload(tables, batch_target).text; }
  std::string Ingredients() const { return Section(File(), "[ING]"); }
  std::string Recipes() const { return Section(File(), "[REC]"); }
  std::string Pens() const { return Section(File(), "[PEN]"); }

  // Recipe 7 of the type: dry-matter weights 1200, 800 and 100, or 62.5, 30 and 7.5 percent.
  void EnterRecipe(const std::string& type) {
    UseIngredient(tables, 1, "CORN", 88);
    UseIngredient(tables, 2, "HAY", 90);
    UseIngredient(tables, 3, "SUPP", type == "P" ? 100 : 0);
    UseRecipe(tables, 7, "MIX", type);
    if (type == "P") {
      AddPercentLine(tables, 7, 1, "62.50");
      AddPercentLine(tables, 7, 2, "30.00");
      AddPercentLine(tables, 7, 3, "7.50");
      Recipe(tables, 7).ration_target = "12000";
    } else {
      AddWeightLine(tables, 7, 1, "1200");
      AddWeightLine(tables, 7, 2, "800");
      AddWeightLine(tables, 7, 3, "100");
      Recipe(tables, 7).ration_target = "5000";
      Recipe(tables, 7).adjust_batch_index = "15";
    }
  }

  void ExpectRefusal(const std::string& words) const {
    try {
      BuildRecipeDownload(tables, batch_target);
      FAIL() << "no refusal";
    } catch (const RecipeTextError& error) {
      EXPECT_EQ(error.what(), words);
    }
  }

  RecipeTables tables = NewTables();
  bool batch_target = false;
};

TEST_F(RecipeDownloadText, HasIngredientsRecipesAndPensInTheirSections) {
  tables = SmallYard();
  EXPECT_EQ(File(), kSmallYardFile);
}

TEST_F(RecipeDownloadText, EmptyDatabaseGivesThreeHeadersAndNoLines) {
  EXPECT_EQ(File(), "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n\r\n[REC]\r\n\r\n\r\n[PEN]\r\n\r\n\r\n");
}

TEST_F(RecipeDownloadText, UnitIsLForPoundsAndKOtherwise) {
  for (const auto& [unit, first] :
       {std::pair{"LB", "{DATA_IN},L\r\n"}, {"KG", "{DATA_IN},K\r\n"}, {"", "{DATA_IN},K\r\n"}}) {
    tables.unit = unit;
    EXPECT_EQ(File().substr(0, 13), first);
  }
}

TEST_F(RecipeDownloadText, IngredientWithANameButNoDescriptionIsMissingWithItsNumber) {
  UseIngredient(tables, 1, "CORN");
  Ingredient(tables, 2).name = "HAY";
  UseIngredient(tables, 3, "SALT");
  EXPECT_EQ(Ingredients(), "1,CORN,0\r\n3,SALT,0\r\n");
}

TEST_F(RecipeDownloadText, IngredientWithADescriptionIsWrittenByItsDefaultName) {
  Ingredient(tables, 100).description = "Corn";
  EXPECT_EQ(Ingredients(), "100,ING100,0\r\n");
}

TEST_F(RecipeDownloadText, NumbersArePositionsNotIds) {
  UseIngredient(tables, 9, "CORN");
  UseRecipe(tables, 9, "MIX", "W");
  AddWeightLine(tables, 9, 9, "5");
  Pen(tables, 9).name = "NORTH";
  tables.ingredients.erase(tables.ingredients.begin());
  tables.recipes.erase(tables.recipes.begin());
  tables.pens.erase(tables.pens.begin() + 8, tables.pens.end());
  tables.pens.front() = {.id = 9, .name = "NORTH"};
  EXPECT_EQ(Ingredients(), "8,CORN,0\r\n");
  EXPECT_EQ(Recipes(), "8,MIX,0,5,0,CORN;5\r\n");
  EXPECT_EQ(Pens(), "1,NORTH,0\r\n");
}

TEST_F(RecipeDownloadText, CommaInANameIsWrittenUnchanged) {
  UseIngredient(tables, 1, "A,B");
  Pen(tables, 2).name = "C;D";
  EXPECT_EQ(Ingredients(), "1,A,B,0\r\n");
  EXPECT_EQ(Pens(), "2,C;D,0\r\n");
}

TEST_F(RecipeDownloadText, TextIsOneBytePerCharacter) {
  UseIngredient(tables, 1, "F\u00C8VE \u20AC");
  EXPECT_EQ(Ingredients(), "1,F\xC8VE \x80,0\r\n");
}

TEST_F(RecipeDownloadText, CharacterOutsideWindows1252IsRefused) {
  UseIngredient(tables, 4, "\u041E\u0412\u0401\u0421");
  ExpectRefusal(
      "Ingredient 4 (\u041E\u0412\u0401\u0421) has a character that cannot be sent: "
      "\"\u041E\u0412\u0401\u0421\" is not of the character set Windows-1252.");
  UseIngredient(tables, 4, "OATS");
  Pen(tables, 12).name = "\u2192";
  ExpectRefusal(
      "Pen 12 (\u2192) has a character that cannot be sent: \"\u2192\" is not of the character set "
      "Windows-1252.");
}

TEST_F(RecipeDownloadText, CharacterOfARecordThatIsNotWrittenIsIgnored) {
  Ingredient(tables, 4).name = "\u041E\u0412\u0401\u0421";
  Recipe(tables, 4).name = "\u041E\u0412\u0401\u0421";
  EXPECT_THAT(Ingredients(), IsEmpty());
}

TEST_F(RecipeDownloadText, RecipeWithoutATypeIsNotWritten) {
  UseRecipe(tables, 1, "MIX", "!");
  AddWeightLine(tables, 1, 1, "100");
  UseRecipe(tables, 2, "OTHER", "X");
  AddWeightLine(tables, 2, 1, "100");
  const RecipeDownload download = BuildRecipeDownload(tables, false);
  EXPECT_THAT(Section(download.text, "[REC]"), IsEmpty());
  EXPECT_THAT(download.recomputed_lines, IsEmpty());
}

TEST_F(RecipeDownloadText, RecipeWithoutADescriptionIsNotWritten) {
  UseRecipe(tables, 1, "MIX", "W");
  Recipe(tables, 1).description = "";
  Recipe(tables, 1).head_count = 90;
  AddWeightLine(tables, 1, 1, "100");
  const RecipeDownload download = BuildRecipeDownload(tables, false);
  EXPECT_THAT(Section(download.text, "[REC]"), IsEmpty());
  EXPECT_THAT(download.recomputed_lines, IsEmpty());
  EXPECT_THAT(download.emptied_head_counts, IsEmpty());
}

TEST_F(RecipeDownloadText, WeightRecipeSendsDryMatterWithTheOptionOff) {
  EnterRecipe("W");
  EXPECT_EQ(Recipes(), "7,MIX,0,2100,0,CORN,HAY,SUPP;1200,800,100\r\n");
}

TEST_F(RecipeDownloadText, WeightRecipeSendsBatchTargetsWithTheOptionOn) {
  EnterRecipe("W");
  batch_target = true;
  EXPECT_EQ(Recipes(), "7,MIX,0,5250,0,CORN,HAY,SUPP;3043,1984,223\r\n");
}

TEST_F(RecipeDownloadText, SelfAdjustingRecipeFollowsTheOptionToo) {
  EnterRecipe("%");
  EXPECT_EQ(Recipes(), "7,MIX,2,2100,0,CORN,HAY,SUPP;1200,800,100\r\n");
  batch_target = true;
  EXPECT_EQ(Recipes(), "7,MIX,2,5250,0,CORN,HAY,SUPP;3043,1984,223\r\n");
}

TEST_F(RecipeDownloadText, PercentRecipeFollowsTheOptionToo) {
  EnterRecipe("P");
  EXPECT_EQ(Recipes(), "7,MIX,3,0,0,CORN,HAY,SUPP;0,0,0\r\n");
  batch_target = true;
  EXPECT_EQ(Recipes(), "7,MIX,3,12000,0,CORN,HAY,SUPP;7619,3576,805\r\n");
}

TEST_F(RecipeDownloadText, HeadCountRecipeSendsAsFedWeightsWhateverTheOption) {
  EnterRecipe("H");
  Recipe(tables, 7).head_count = 250;
  for (const bool option : {false, true}) {
    batch_target = option;
    EXPECT_EQ(Recipes(), "7,MIX,1,2353,250,CORN,HAY,SUPP;1364,889,100\r\n");
  }
}

TEST_F(RecipeDownloadText, RecipesAreRecomputedFirst) {
  EnterRecipe("W");
  for (RecipeLineRecord& line : tables.lines) {
    line.dry_matter = "1";
    line.batch_target = "1";
    line.ration_percent = "1";
  }
  batch_target = true;
  EXPECT_EQ(Recipes(), "7,MIX,0,5250,0,CORN,HAY,SUPP;3043,1984,223\r\n");
}

TEST_F(RecipeDownloadText, LinesKeepTheirGridsOrder) {
  UseIngredient(tables, 1, "CORN");
  UseIngredient(tables, 2, "HAY");
  UseRecipe(tables, 3, "B", "W");
  UseRecipe(tables, 10, "J", "W");
  AddWeightLine(tables, 10, 2, "1");
  AddWeightLine(tables, 3, 2, "2");
  AddWeightLine(tables, 10, 1, "3");
  AddWeightLine(tables, 3, 2, "4");
  EXPECT_EQ(Recipes(), "3,B,0,6,0,HAY,HAY;2,4\r\n10,J,0,4,0,HAY,CORN;1,3\r\n");
}

TEST_F(RecipeDownloadText, IngredientNotInUseIsNamedInARecipe) {
  Ingredient(tables, 4).name = "OATS";
  UseRecipe(tables, 1, "MIX", "W");
  AddWeightLine(tables, 1, 4, "10");
  EXPECT_EQ(Recipes(), "1,MIX,0,10,0,OATS;10\r\n");
}

TEST_F(RecipeDownloadText, UnknownIngredientHasAnEmptyName) {
  UseRecipe(tables, 1, "MIX", "W");
  AddWeightLine(tables, 1, 4, "10");
  AddWeightLine(tables, 1, 4, "20");
  AddWeightLine(tables, 1, 4, "30");
  tables.lines[0].ingredient = "101";
  tables.lines[1].ingredient = "";
  EXPECT_EQ(Recipes(), "1,MIX,0,60,0,,,ING004;10,20,30\r\n");
}

TEST_F(RecipeDownloadText, RecipeWithoutLinesHasNoLineEndAndTheNextFollows) {
  UseRecipe(tables, 1, "EMPTY", "W");
  Recipe(tables, 1).ration_target = "5000";
  UseRecipe(tables, 2, "BARE", "H");
  Recipe(tables, 2).head_count = 60;
  UseRecipe(tables, 3, "MIX", "W");
  AddWeightLine(tables, 3, 4, "10");
  for (const bool option : {false, true}) {
    batch_target = option;
    Recipe(tables, 3).ration_target = "10";
    EXPECT_EQ(Recipes(), "1,EMPTY,0,0,0,2,BARE,1,0,60,3,MIX,0,10,0,ING004;10\r\n");
  }
}

TEST_F(RecipeDownloadText, LineEndBeforeThePensEndsALastRecipeWithoutLines) {
  UseRecipe(tables, 7, "EMPTY", "P");
  EXPECT_EQ(File(),
            "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n\r\n[REC]\r\n\r\n7,EMPTY,3,0,0,\r\n[PEN]\r\n\r\n\r\n");
}

TEST_F(RecipeDownloadText, PenIsWrittenByItsAmountOrItsName) {
  Pen(tables, 7).feed_amount = "1";
  Pen(tables, 8).description = "described only";
  Pen(tables, 9).name = "PEN9";
  Pen(tables, 10).name = "PEN009";
  Pen(tables, 400).feed_amount = "999999";
  EXPECT_EQ(Pens(), "7,PEN007,1\r\n9,PEN9,0\r\n10,PEN009,0\r\n400,PEN400,999999\r\n");
}

TEST_F(RecipeDownloadText, EmptyFeedAmountOfARenamedPenIsWrittenAs0) {
  Pen(tables, 3).name = "NORTH";
  Pen(tables, 3).feed_amount = "";
  Pen(tables, 4).feed_amount = "";
  EXPECT_EQ(Pens(), "3,NORTH,0\r\n");
}

TEST_F(RecipeDownloadText, FeedAmountIsWrittenUnchanged) {
  Pen(tables, 3).feed_amount = " 0150.7";
  EXPECT_EQ(Pens(), "3,PEN003, 0150.7\r\n");
}

TEST_F(RecipeDownloadText, FeedAmountThatRoundsTo0OrIsNotANumberIsOmitted) {
  Pen(tables, 3).feed_amount = "0.5";
  Pen(tables, 4).feed_amount = "-3";
  Pen(tables, 5).feed_amount = "much";
  Pen(tables, 6).feed_amount = "0.6";
  EXPECT_EQ(Pens(), "6,PEN006,0.6\r\n");
}

TEST_F(RecipeDownloadText, RecomputedLinesAreThoseThatDifferFromTheStoredOnes) {
  EnterRecipe("W");
  const RecipeDownload first = BuildRecipeDownload(tables, false);
  EXPECT_EQ(first.recomputed_lines.size(), 3U);
  EXPECT_EQ(first.recomputed_lines[1].dry_matter, "889");
  EXPECT_EQ(first.recomputed_lines[1].ration_percent, "40.000");
  EXPECT_EQ(first.recomputed_lines[1].batch_target, "1984");
  tables.lines = first.recomputed_lines;
  EXPECT_THAT(BuildRecipeDownload(tables, true).recomputed_lines, IsEmpty());
  tables.lines[1].batch_target = "1983";
  const RecipeDownload again = BuildRecipeDownload(tables, true);
  EXPECT_THAT(again.recomputed_lines, ElementsAre(first.recomputed_lines[1]));
}

TEST_F(RecipeDownloadText, HeadCountIsResetInWrittenRecipesExceptThoseByHeadCount) {
  int id = 0;
  for (const char* type : {"W", "H", "%", "P", "!"}) {
    UseRecipe(tables, ++id, "MIX", type);
    Recipe(tables, id).head_count = 100 + id;
  }
  UseRecipe(tables, 6, "MIX", "W");
  const RecipeDownload download = BuildRecipeDownload(tables, false);
  std::vector<int> ids;
  for (const RecipeRecord& recipe : download.emptied_head_counts) {
    ids.push_back(recipe.id);
    EXPECT_EQ(recipe.head_count, 0);
    EXPECT_EQ(recipe.name, "MIX");
  }
  EXPECT_THAT(ids, ElementsAre(1, 3, 4));
}

TEST_F(RecipeDownloadText, HighestRecipeInUseIsTheLastWithADescription) {
  EXPECT_EQ(BuildRecipeDownload(tables, false).highest_in_use, 0);
  UseRecipe(tables, 3, "MIX", "W");
  UseRecipe(tables, 40, "UNTYPED", "!");
  UseRecipe(tables, 41, "UNUSED", "W");
  Recipe(tables, 41).description = "";
  EXPECT_EQ(BuildRecipeDownload(tables, false).highest_in_use, 40);
}

TEST_F(RecipeDownloadText, RecipeThatCannotBeComputedIsNamed) {
  UseRecipe(tables, 12, "HEAVY", "W");
  AddWeightLine(tables, 12, 1, "2147483647");
  AddWeightLine(tables, 12, 2, "1");
  ExpectRefusal(
      "Recipe 12 (HEAVY) cannot be computed. Overflow: the sum of 'Target' is outside the range of "
      "32-bit whole numbers.");
  tables.lines.clear();
  Recipe(tables, 12).adjust_batch_index = "41";
  EXPECT_THROW(BuildRecipeDownload(tables, false), RecipeTextError);
}

TEST_F(RecipeDownloadText, RecipeThatCannotBeComputedIsIgnoredIfItIsNotWritten) {
  UseRecipe(tables, 12, "HEAVY", "!");
  AddWeightLine(tables, 12, 1, "2147483647");
  AddWeightLine(tables, 12, 2, "1");
  EXPECT_THAT(Recipes(), IsEmpty());
}

TEST_F(RecipeDownloadText, ReportsItsProgressInOrder) {
  std::vector<std::string> lines;
  BuildRecipeDownload(tables, false, [&](std::string_view line) { lines.emplace_back(line); });
  EXPECT_THAT(lines, ElementsAre("Formatting ingredient data...", "done!",
                                 "Formatting recipe data...", "done!", "Formatting pen data...",
                                 "pen formatting done!", "Recipe file complete!"));
}

}  // namespace
}  // namespace vrx::testing
