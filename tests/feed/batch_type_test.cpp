#include "feed/batch_type.h"

#include <array>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "base/error.h"

namespace vrx {
namespace {

TEST(BatchTypes, AreInTheOrderOfTheList) {
  struct Item {
    std::string_view code;
    std::string_view text;
  };
  constexpr std::array<Item, 5> kItems = {{{"!", "please select..."},
                                           {"W", "WEIGHT, Std"},
                                           {"H", "HEAD-COUNT"},
                                           {"%", "WEIGHT, Self-Adj"},
                                           {"P", "PERCENT"}}};
  ASSERT_EQ(BatchTypes().size(), kItems.size());
  for (std::size_t index = 0; index < kItems.size(); ++index) {
    EXPECT_EQ(BatchTypes()[index].list_text, kItems[index].text);
    EXPECT_EQ(GetBatchTypeCode(static_cast<int>(index)), kItems[index].code);
    EXPECT_EQ(FindBatchType(kItems[index].code), &BatchTypes()[index]);
  }
}

TEST(BatchTypes, HaveNoCodeOutsideTheList) {
  EXPECT_EQ(GetBatchTypeCode(-1), "");
  EXPECT_EQ(GetBatchTypeCode(5), "");
  for (const char* const code : {"", "w", "X", "WH", " W"}) {
    EXPECT_EQ(FindBatchType(code), nullptr) << code;
  }
}

TEST(BatchTypes, ShowTheInputsOfTheirType) {
  constexpr RecipeInputs kWeight = {
      .head_count = false, .ration_target = true, .adjust_batch = true};
  constexpr RecipeInputs kHead = {.head_count = true, .ration_target = false, .adjust_batch = true};
  EXPECT_EQ(FindBatchType("!")->shown, RecipeInputs{});
  EXPECT_EQ(FindBatchType("W")->shown, kWeight);
  EXPECT_EQ(FindBatchType("H")->shown, kHead);
  EXPECT_EQ(FindBatchType("%")->shown, kWeight);
  EXPECT_EQ(FindBatchType("P")->shown, kWeight);
}

TEST(AdjustList, GoesFrom120To80InStepsOfOne) {
  EXPECT_EQ(kAdjustItemCount, 41);
  for (int index = 0; index <= 40; ++index) {
    EXPECT_EQ(AdjustItemValue(index), 120 - index);
  }
  EXPECT_EQ(AdjustItemValue(kNoAdjustIndex), 100);
}

TEST(AdjustList, WritesTheTensDigitAsABlankBelowTen) {
  EXPECT_EQ(AdjustItemText(0), "+20%");
  EXPECT_EQ(AdjustItemText(1), "+19%");
  EXPECT_EQ(AdjustItemText(10), "+10%");
  EXPECT_EQ(AdjustItemText(11), "+ 9%");
  EXPECT_EQ(AdjustItemText(15), "+ 5%");
  EXPECT_EQ(AdjustItemText(19), "+ 1%");
  EXPECT_EQ(AdjustItemText(20), " 0%(no change)");
  EXPECT_EQ(AdjustItemText(21), "- 1%");
  EXPECT_EQ(AdjustItemText(29), "- 9%");
  EXPECT_EQ(AdjustItemText(30), "-10%");
  EXPECT_EQ(AdjustItemText(40), "-20%");
  std::set<std::string> texts;
  for (int index = 0; index < kAdjustItemCount; ++index) {
    texts.insert(AdjustItemText(index));
  }
  EXPECT_EQ(texts.size(), 41U);
}

TEST(AdjustList, RefusesAnIndexBeyondItsItems) {
  for (const int index : {-1, 41, 100}) {
    EXPECT_THROW(AdjustItemValue(index), Error);
    EXPECT_THROW(AdjustItemText(index), Error);
  }
}

}  // namespace
}  // namespace vrx
