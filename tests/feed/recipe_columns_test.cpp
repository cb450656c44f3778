#include "feed/recipe_columns.h"

#include <gtest/gtest.h>

#include "feed/record_fields.h"

namespace vrx::testing {
namespace {

std::string Refusal(LineColumn column, std::string_view typed) {
  try {
    return "taken: " + EnterLineCell(column, typed);
  } catch (const FieldRefusal& refusal) {
    return refusal.what();
  }
}

TEST(LineKey, ATargetTakesDigitsUpToSix) {
  EXPECT_EQ(FilterLineKey(LineColumn::kTarget, "", '0'), '0');
  EXPECT_EQ(FilterLineKey(LineColumn::kTarget, "12345", '9'), '9');
  EXPECT_EQ(FilterLineKey(LineColumn::kTarget, "123456", '9'), 0);
  for (const char key : std::string_view(".,-+ xE\t")) {
    EXPECT_EQ(FilterLineKey(LineColumn::kTarget, "1", key), 0) << key;
  }
}

TEST(LineKey, APercentageStaysValidWithEveryKey) {
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredientPercent, "10", '0'), '0');
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredientPercent, "10", '1'), 0);  // 101
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredientPercent, "33", '.'), '.');
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredientPercent, "33.3", '3'), '3');
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredientPercent, "33.33", '3'), 0);
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredientPercent, "100.0", '0'), '0');
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredientPercent, "100.0", '1'), 0);
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredientPercent, "1", 'e'), 0);
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredientPercent, "", '.'), 0);
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredientPercent, "1.", '.'), 0);
}

TEST(LineKey, ABackspacePassesInAFullCell) {
  EXPECT_EQ(FilterLineKey(LineColumn::kTarget, "123456", kBackspaceKey), kBackspaceKey);
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredientPercent, "33.33", kBackspaceKey), kBackspaceKey);
}

TEST(LineKey, AnIngredientIsChosenAndNeverTyped) {
  EXPECT_EQ(FilterLineKey(LineColumn::kIngredient, "", '1'), 0);
  EXPECT_EQ(Refusal(LineColumn::kIngredient, "1"),
            "The 'Ingredient' field takes an ingredient from the list: not '1'.");
}

TEST(LineCell, HoldsWhatWasTyped) {
  EXPECT_EQ(EnterLineCell(LineColumn::kTarget, "007"), "007");
  EXPECT_EQ(EnterLineCell(LineColumn::kTarget, "999999"), "999999");
  EXPECT_EQ(EnterLineCell(LineColumn::kIngredientPercent, "62.50"), "62.50");
  EXPECT_EQ(EnterLineCell(LineColumn::kIngredientPercent, "100.00"), "100.00");
  EXPECT_EQ(EnterLineCell(LineColumn::kIngredientPercent, ""), "");
}

TEST(LineCell, GivesAPercentageItsTwoDecimals) {
  EXPECT_EQ(EnterLineCell(LineColumn::kIngredientPercent, "60"), "60.00");
  EXPECT_EQ(EnterLineCell(LineColumn::kIngredientPercent, "7."), "7.00");
  EXPECT_EQ(EnterLineCell(LineColumn::kIngredientPercent, "12.5"), "12.50");
  EXPECT_EQ(EnterLineCell(LineColumn::kIngredientPercent, "007.5"), "7.50");
  EXPECT_EQ(PercentText("33.335"), "33.34");
  EXPECT_EQ(PercentText("half"), "half");
  EXPECT_EQ(PercentText(""), "");
}

TEST(LineCell, NamesTheAllowedTextIfAKeyWouldBeDropped) {
  EXPECT_EQ(Refusal(LineColumn::kTarget, "12x"),
            "The 'Target' field takes digits, at most 6: not '12x'.");
  EXPECT_EQ(Refusal(LineColumn::kTarget, "1234567"),
            "The 'Target' field takes digits, at most 6: not '1234567'.");
  const std::string percent =
      "The 'Ingredient%' field takes a percentage from 0 to 100 with at most two decimals: not '";
  for (const std::string typed : {"33.333", "100.01", "101", "-1", "1e1", ".5", "5,5", "\b"}) {
    EXPECT_EQ(Refusal(LineColumn::kIngredientPercent, typed), percent + typed + "'.");
  }
}

}  // namespace
}  // namespace vrx::testing
