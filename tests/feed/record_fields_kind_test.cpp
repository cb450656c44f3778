#include <gtest/gtest.h>

#include "feed/record_fields.h"

namespace vrx {
namespace {

TEST(RecordKinds, AreInTheOrderOfTheTabs) {
  ASSERT_EQ(RecordKinds().size(), 3U);
  for (const RecordKindTraits& traits : RecordKinds()) {
    EXPECT_EQ(&TraitsOf(traits.kind), &traits);
  }
  EXPECT_EQ(TraitsOf(KindOf(IngredientRecord{})).noun, "ingredient");
  EXPECT_EQ(TraitsOf(KindOf(RecipeRecord{})).noun, "recipe");
  EXPECT_EQ(TraitsOf(KindOf(PenRecord{})).count, 400);
}

TEST(DefaultName, HasThreeDigits) {
  EXPECT_EQ(DefaultName(RecordKind::kIngredient, 5), "ING005");
  EXPECT_EQ(DefaultName(RecordKind::kRecipe, 100), "REC100");
  EXPECT_EQ(DefaultName(RecordKind::kPen, 400), "PEN400");
}

TEST(IsActive, AnIngredientOrRecipeByItsDescription) {
  EXPECT_FALSE(IsActive(IngredientRecord{.name = "CORN"}));
  EXPECT_TRUE(IsActive(IngredientRecord{.description = "Corn"}));
  EXPECT_FALSE(IsActive(RecipeRecord{.name = "STEERS", .batch_type = "W"}));
  EXPECT_TRUE(IsActive(RecipeRecord{.description = "Steers"}));
}

TEST(IsActive, APenByItsFeedOrItsDescription) {
  EXPECT_FALSE(IsActive(PenRecord{.name = "A01"}));
  EXPECT_TRUE(IsActive(PenRecord{.name = "PEN120", .feed_amount = "120"}));
  EXPECT_TRUE(IsActive(PenRecord{.description = "North alley", .feed_amount = "0"}));
}

TEST(FormatIdPrefix, RightAlignsTheNumberInThreeCharacters) {
  EXPECT_EQ(FormatIdPrefix(7), "  7: ");
  EXPECT_EQ(FormatIdPrefix(42), " 42: ");
  EXPECT_EQ(FormatIdPrefix(400), "400: ");
}

}  // namespace
}  // namespace vrx
