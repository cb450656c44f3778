#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feed/ration.h"
#include "feed/record_commit.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

IngredientRecord FreshIngredient() { return {.id = 5, .name = "ING005", .description = ""}; }
PenRecord FreshPen() { return {.id = 12, .name = "PEN012", .description = ""}; }
RecipeRecord FreshRecipe(std::string type) {
  return {.id = 3,
          .name = "REC003",
          .description = "",
          .batch_type = std::move(type),
          .ration_target = "0",
          .adjust_batch_index = "20"};
}

TEST(IngredientEdit, ANameAloneLeavesTheDescriptionToTheCommit) {
  IngredientRecord record = FreshIngredient();
  EXPECT_THAT(ApplyEdit({.name = "barley", .hand_add = true}, true, record), IsEmpty());
  EXPECT_EQ(record.name, "bARLEY");
  EXPECT_EQ(record.description, "");
  EXPECT_TRUE(record.hand_add);
}

TEST(IngredientEdit, ADescriptionGivesTheNameWhileAbbreviationIsOn) {
  IngredientRecord record = FreshIngredient();
  ApplyEdit({.description = "Dried Beet Pulp"}, true, record);
  EXPECT_EQ(record.name, "dRIEd ");
  EXPECT_EQ(record.description, "Dried Beet Pulp");
}

TEST(IngredientEdit, ADescriptionLeavesTheNameWhileAbbreviationIsOff) {
  IngredientRecord record = FreshIngredient();
  ApplyEdit({.description = "Corn"}, false, record);
  EXPECT_EQ(record.name, "ING005");
  EXPECT_EQ(record.description, "Corn");
}

TEST(IngredientEdit, ATypedNameOutranksTheAbbreviation) {
  IngredientRecord record = FreshIngredient();
  ApplyEdit({.name = "maize", .description = "Corn flaked"}, true, record);
  EXPECT_EQ(record.name, "MAIZE");
  EXPECT_EQ(record.description, "Corn flaked");
}

TEST(IngredientEdit, AnEmptiedDescriptionNeverEmptiesTheName) {
  IngredientRecord record = {.id = 5, .name = "CORN", .description = "Corn flaked"};
  ApplyEdit({.description = ""}, true, record);
  EXPECT_EQ(record.name, "CORN");
  EXPECT_EQ(record.description, "");
}

TEST(IngredientEdit, ReportsWhatWasNormalized) {
  IngredientRecord record = FreshIngredient();
  EXPECT_THAT(ApplyEdit({.dry_matter_percent = "150"}, true, record),
              ElementsAre("DryMatter%: 150 is out of range, 100 is stored."));
  EXPECT_EQ(record.dry_matter_percent, 100);
}

TEST(IngredientEdit, ARefusalChangesNothing) {
  IngredientRecord record = FreshIngredient();
  EXPECT_THROW(ApplyEdit({.name = "CORN", .dry_matter_percent = "x"}, true, record), FieldRefusal);
  EXPECT_EQ(record.name, "ING005");
  EXPECT_EQ(record.dry_matter_percent, 100);
}

TEST(PenEdit, FeedAloneKeepsTheDefaultName) {
  PenRecord record = FreshPen();
  ApplyEdit({.feed_amount = "00120"}, true, record);
  EXPECT_EQ(record.name, "PEN012");
  EXPECT_EQ(record.description, "");
  EXPECT_EQ(record.feed_amount, "120");
}

std::vector<RecipeLineRecord> OneLine() {
  return {{.target = "100", .dry_matter_percent = "88", .ingredient_percent = "100.00"}};
}

std::string Refusal(const RecipeEdit& edit, const std::vector<RecipeLineRecord>& lines,
                    const std::string& type) {
  RecipeRecord record = FreshRecipe(type);
  try {
    ApplyEdit(edit, lines, true, record);
  } catch (const FieldRefusal& refusal) {
    return refusal.what();
  }
  return "not refused";
}

TEST(RecipeEdit, ANameIsNotTakenAsDescription) {
  RecipeRecord record = FreshRecipe("W");
  ApplyEdit({.name = "steers"}, {}, true, record);
  EXPECT_EQ(record.name, "STEERS");
  EXPECT_EQ(record.description, "");
}

TEST(RecipeEdit, WeightTypesCloseTheHeadCount) {
  for (const std::string type : {"W", "%", "P"}) {
    EXPECT_EQ(Refusal({.head_count = "250"}, OneLine(), type),
              "The 'HeadCount' field is closed in a recipe of type \"" + type + "\".");
    RecipeRecord record = FreshRecipe(type);
    ApplyEdit({.ration_target = "5000", .adjust_batch_index = 15}, OneLine(), true, record);
    EXPECT_EQ(record.ration_target, "5000");
    EXPECT_EQ(record.adjust_batch_index, "15");
  }
}

TEST(RecipeEdit, TheHeadCountTypeClosesTheRationTarget) {
  EXPECT_EQ(Refusal({.ration_target = "5000"}, OneLine(), "H"),
            "The 'RationTarget' field is closed in a recipe of type \"H\".");
  RecipeRecord record = FreshRecipe("H");
  ApplyEdit({.head_count = "250", .adjust_batch_index = 40}, OneLine(), true, record);
  EXPECT_EQ(record.head_count, 250);
  EXPECT_EQ(record.adjust_batch_index, "40");
}

TEST(RecipeEdit, AnUntypedRecipeClosesEveryInput) {
  RecipeRecord record = FreshRecipe("!");
  EXPECT_THROW(ApplyEdit({.head_count = "1"}, OneLine(), true, record), FieldRefusal);
  EXPECT_THROW(ApplyEdit({.ration_target = "1"}, OneLine(), true, record), FieldRefusal);
  EXPECT_THROW(ApplyEdit({.adjust_batch_index = 20}, OneLine(), true, record), FieldRefusal);
}

TEST(RecipeEdit, TheTypeOfTheSameEditOpensItsInputs) {
  RecipeRecord record = FreshRecipe("!");
  ApplyEdit({.batch_type = "H", .head_count = "1001"}, OneLine(), true, record);
  EXPECT_EQ(record.batch_type, "H");
  EXPECT_EQ(record.head_count, 100);
}

TEST(RecipeEdit, AWeightRecipeIsClosedWhileItsTargetsTotalLessThanOne) {
  const std::vector<RecipeLineRecord> unweighed = {{.target = "0"}, {.target = ""}};
  const std::string closed =
      " field is closed: the 'Target' weights of the recipe total less than 1.";
  for (const std::string type : {"W", "%"}) {
    EXPECT_EQ(Refusal({.ration_target = "500"}, unweighed, type), "The 'RationTarget'" + closed);
    EXPECT_EQ(Refusal({.adjust_batch_index = 3}, unweighed, type), "The 'AdjBatTotIndex'" + closed);
  }
  EXPECT_EQ(Refusal({.head_count = "50"}, unweighed, "H"), "The 'HeadCount'" + closed);
  EXPECT_EQ(Refusal({.head_count = "50"}, {}, "H"), "The 'HeadCount'" + closed);
  EXPECT_EQ(Refusal({.head_count = "50"}, {{.target = "1"}}, "H"), "not refused");
}

TEST(RecipeEdit, APercentRecipeIsClosedUntilItTotals100) {
  const std::string closed = " field is closed: Ingredients must total 100% to set Ration Target.";
  const auto lines = [](const std::string& percent) {
    return std::vector<RecipeLineRecord>{{.ingredient_percent = "50.00"},
                                         {.ingredient_percent = percent}};
  };
  EXPECT_EQ(Refusal({.ration_target = "500"}, lines("49.99"), "P"), "The 'RationTarget'" + closed);
  EXPECT_EQ(Refusal({.adjust_batch_index = 3}, lines("50.01"), "P"),
            "The 'AdjBatTotIndex'" + closed);
  EXPECT_EQ(Refusal({.ration_target = "500"}, lines("50.00"), "P"), "not refused");
  EXPECT_EQ(Refusal({.ration_target = "500"}, lines("49.996"), "P"), "not refused");
}

TEST(RecipeEdit, TextsAndTypeNeedNoSums) {
  RecipeRecord record = FreshRecipe("W");
  const std::vector<RecipeLineRecord> too_heavy = {{.target = "2147483647"}, {.target = "1"}};
  ApplyEdit({.name = "steers", .batch_type = "%"}, too_heavy, true, record);
  EXPECT_EQ(record.batch_type, "%");
  EXPECT_THROW(ApplyEdit({.ration_target = "1"}, too_heavy, true, record), OverflowError);
  EXPECT_EQ(record.ration_target, "0");
}

}  // namespace
}  // namespace vrx
