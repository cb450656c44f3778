#include "feed/record_edits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST(IngredientEdit, AnOwnNameBecomesTheDescription) {
  IngredientRecord record = FreshIngredient();
  EXPECT_THAT(ApplyEdit({.name = "barley"}, true, record), IsEmpty());
  EXPECT_EQ(record.name, "bARLEY");
  EXPECT_EQ(record.description, "bARLEY");
}

TEST(IngredientEdit, TheDefaultNameLeavesItOutOfUse) {
  IngredientRecord record = FreshIngredient();
  ApplyEdit({.name = "ing005", .hand_add = true}, true, record);
  EXPECT_EQ(record.name, "ING005");
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
  EXPECT_EQ(record.description, "CORN");
}

TEST(IngredientEdit, TellsWhatWasNormalised) {
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

TEST(PenEdit, AnOwnNameBecomesTheDescription) {
  PenRecord record = FreshPen();
  ApplyEdit({.name = "b12"}, true, record);
  EXPECT_EQ(record.description, "b12");
}

TEST(PenEdit, FeedAloneKeepsTheDefaultName) {
  PenRecord record = FreshPen();
  ApplyEdit({.feed_amount = "00120"}, true, record);
  EXPECT_EQ(record.name, "PEN012");
  EXPECT_EQ(record.description, "");
  EXPECT_EQ(record.feed_amount, "120");
}

TEST(RecipeEdit, ANameIsNotTakenAsDescription) {
  RecipeRecord record = FreshRecipe("W");
  ApplyEdit({.name = "steers"}, true, record);
  EXPECT_EQ(record.name, "STEERS");
  EXPECT_EQ(record.description, "");
}

TEST(RecipeEdit, WeightTypesCloseTheHeadCount) {
  for (const std::string type : {"W", "%", "P"}) {
    RecipeRecord record = FreshRecipe(type);
    EXPECT_THROW(ApplyEdit({.head_count = "250"}, true, record), FieldRefusal) << type;
    ApplyEdit({.ration_target = "5000", .adjust_batch_index = 15}, true, record);
    EXPECT_EQ(record.ration_target, "5000");
    EXPECT_EQ(record.adjust_batch_index, "15");
  }
}

TEST(RecipeEdit, TheHeadCountTypeClosesTheRationTarget) {
  RecipeRecord record = FreshRecipe("H");
  EXPECT_THROW(ApplyEdit({.ration_target = "5000"}, true, record), FieldRefusal);
  ApplyEdit({.head_count = "250", .adjust_batch_index = 40}, true, record);
  EXPECT_EQ(record.head_count, 250);
  EXPECT_EQ(record.adjust_batch_index, "40");
}

TEST(RecipeEdit, AnUntypedRecipeClosesEveryInput) {
  RecipeRecord record = FreshRecipe("!");
  EXPECT_THROW(ApplyEdit({.head_count = "1"}, true, record), FieldRefusal);
  EXPECT_THROW(ApplyEdit({.ration_target = "1"}, true, record), FieldRefusal);
  EXPECT_THROW(ApplyEdit({.adjust_batch_index = 20}, true, record), FieldRefusal);
}

TEST(RecipeEdit, TheTypeOfTheSameEditOpensItsInputs) {
  RecipeRecord record = FreshRecipe("!");
  ApplyEdit({.batch_type = "H", .head_count = "1001"}, true, record);
  EXPECT_EQ(record.batch_type, "H");
  EXPECT_EQ(record.head_count, 100);
}

TEST(RecipeEdit, TheRefusalNamesInputAndType) {
  RecipeRecord record = FreshRecipe("P");
  try {
    ApplyEdit({.head_count = "10"}, true, record);
    FAIL() << "not refused";
  } catch (const FieldRefusal& refusal) {
    EXPECT_STREQ(refusal.what(), "The 'HeadCount' field is closed in a recipe of type \"P\".");
  }
}

}  // namespace
}  // namespace vrx
