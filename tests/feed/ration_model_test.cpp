// Compares every computed cell of random recipes with a second implementation in whole numbers and
// with the exact quotients.
#include "feed/ration_model.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>

#include <gtest/gtest.h>

#include "feed/batch_type.h"
#include "feed/ration.h"
#include "feed/ration_cells.h"
#include "feed/soft_number.h"

namespace vrx::testing {
namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::uint64_t kHundred = 100;

Wide WidePowerOfTen(int exponent) {
  Wide power = 1;
  for (; exponent > 0; --exponent) {
    power *= 10;
  }
  return power;
}

// Half a unit of the text's last place and five units of the value's seventh significant digit.
::testing::AssertionResult IsNear(const std::string& text, Wide dividend, Wide divisor) {
  const Decimal cell = ReadDecimal(text);
  if (dividend == 0) {
    return cell.digits == 0 ? ::testing::AssertionSuccess()
                            : ::testing::AssertionFailure() << text << " for 0";
  }
  int seventh = 6;  // decimals of that digit
  for (; dividend * WidePowerOfTen(seventh - 6) / divisor == 0; ++seventh) {
  }
  for (; dividend / divisor / WidePowerOfTen(7 - seventh) != 0; --seventh) {
  }
  const int finer = std::max(seventh - cell.decimals, 0);
  const Wide shown = cell.digits * divisor;
  const Wide exact = dividend * WidePowerOfTen(cell.decimals);
  const Wide twice_missed =
      (shown > exact ? shown - exact : exact - shown) * 2 * WidePowerOfTen(finer);
  const Wide half = divisor * WidePowerOfTen(finer);
  const Wide units = 10 * divisor * WidePowerOfTen(cell.decimals - seventh + finer);
  if (twice_missed <= half + units) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << text << " for " << static_cast<std::uint64_t>(dividend)
                                       << " / " << static_cast<std::uint64_t>(divisor);
}

std::uint64_t WholeOf(const std::string& text) { return Whole(ReadDecimal(text)); }

constexpr std::uint64_t kTenThousand = 10000;

std::uint64_t TenThousandths(const std::string& percent) {
  const Decimal decimal = ReadDecimal(percent);
  return static_cast<std::uint64_t>(decimal.digits * WidePowerOfTen(4 - decimal.decimals));
}

class RandomRecipes : public ::testing::Test {
 protected:
  int Pick(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }

  // A recipe of any size of weight. The largest, and percentages of four decimals, cannot be typed
  // but may be stored; only they show where a sum is single.
  Ration Recipe() {
    constexpr std::array<const char*, 5> kTypes = {"W", "H", "%", "P", "!"};
    constexpr std::array<int, 5> kSizes = {3, 400, 9999, 999999, 60000000};
    Ration ration = RationOf(kTypes.at(Index(kTypes.size())), {});
    ration.recipe.head_count = Pick(0, 5) == 0 ? 0 : Pick(0, 1000);
    ration.recipe.ration_target = Number(kSizes.at(Index(kSizes.size())));
    ration.recipe.adjust_batch_index = std::to_string(Pick(0, kAdjustItemCount - 1));
    const int size = kSizes.at(Index(kSizes.size()));
    const int figures = Pick(0, 3) == 0 ? Pick(0, 3) : 100;
    for (int line = Pick(1, kMaxRecipeLines); line > 0; --line) {
      RecipeLineRecord added = WeightLine(Number(size), Number(figures), Pick(0, 3) == 0);
      added.dry_matter = Number(size);
      added.batch_target = Number(size);
      ration.lines.push_back(added);
    }
    FillPercents(ration);
    return ration;
  }

  std::mt19937 random_{20260106};

 private:
  std::size_t Index(std::size_t count) {
    return static_cast<std::size_t>(Pick(0, static_cast<int>(count) - 1));
  }

  // Near both ends, sometimes 0 or empty.
  std::string Number(int most) {
    switch (Pick(0, 9)) {
      case 0:
        return Pick(0, 1) == 0 ? "0" : "";
      case 1:
        return std::to_string(std::max(most - Pick(0, 3), 0));
      default:
        return std::to_string(Pick(0, most));
    }
  }

  // Any percentages, or some that add up to 100.
  void FillPercents(Ration& ration) {
    const int decimals = Pick(0, 3) == 0 ? 4 : 2;
    const int hundred = decimals == 4 ? 1000000 : 10000;
    const bool whole = Pick(0, 1) == 0;
    int left = hundred;
    for (RecipeLineRecord& line : ration.lines) {
      const bool last = &line == &ration.lines.back();
      const int share = whole && last ? left : Pick(0, whole ? left / 2 : hundred);
      left -= share;
      const bool empty = share == 0 && Pick(0, 1) == 0;
      line.ingredient_percent =
          empty ? "" : Fixed({static_cast<std::uint64_t>(share), decimals}, decimals);
    }
  }
};

TEST_F(RandomRecipes, HaveTheCellsOfTheModel) {
  int computed = 0;
  int overflown = 0;
  int open_percents = 0;
  for (int round = 0; round < 20000; ++round) {
    const Ration typed = Recipe();
    const std::optional<ModelOutcome> model = ModelRation(typed);
    Ration ration = typed;
    if (!model) {
      ASSERT_THROW(RecalcRecipe(ration), OverflowError);
      ASSERT_EQ(ration.lines, typed.lines);
      ++overflown;
      continue;
    }
    const RecipeTotals totals = RecalcRecipe(ration);
    const std::string& type = typed.recipe.batch_type;
    ASSERT_EQ(Cells(ration, &RecipeLineRecord::dry_matter), model->dry_matter) << type;
    ASSERT_EQ(Cells(ration, &RecipeLineRecord::ration_percent), model->ration_percent) << type;
    ASSERT_EQ(Cells(ration, &RecipeLineRecord::batch_target), model->batch_target) << type;
    ASSERT_EQ(totals.row.Labels(), model->row.Labels()) << type;
    ASSERT_EQ(totals.enabled, model->enabled) << type;
    ++computed;
    open_percents += type == "P" && totals.enabled.ration_target ? 1 : 0;
  }
  EXPECT_GT(computed, 15000);
  EXPECT_GT(overflown, 20);
  EXPECT_GT(open_percents, 500);
}

TEST_F(RandomRecipes, AreNearTheExactQuotients) {
  for (int round = 0; round < 20000; ++round) {
    Ration ration = Recipe();
    if (!ModelRation(ration)) {
      continue;
    }
    const std::string type = ration.recipe.batch_type;
    const TotalsRow row = RecalcRecipe(ration).row;
    const std::uint64_t dry = WholeOf(row.target);
    const std::uint64_t as_fed = WholeOf(row.dry_matter);
    const bool by_head = type == "H";
    const auto adjusted = static_cast<std::uint64_t>(
        by_head ? GetAdjustedHeadCount(ration.recipe) : GetAdjustedRationTarget(ration.recipe));
    std::uint64_t total = 0;
    std::uint64_t shares = 0;
    std::uint64_t percents = 0;
    for (const RecipeLineRecord& line : ration.lines) {
      total += WholeOf(line.dry_matter_percent) == 0 ? 0 : WholeOf(line.target);
      shares += ReadDecimal(line.ration_percent).digits;
      percents += TenThousandths(line.ingredient_percent);
    }
    for (const RecipeLineRecord& line : ration.lines) {
      const std::uint64_t figure = WholeOf(line.dry_matter_percent);
      const Wide part = figure == 0 ? 0 : WholeOf(line.target);
      ASSERT_TRUE(IsNear(line.ration_percent, part * kHundred, std::max<Wide>(total, 1)));
      if (type == "!") {
        continue;
      }
      const std::uint64_t fed =
          type == "P" ? TenThousandths(line.ingredient_percent) : WholeOf(line.target) * kHundred;
      ASSERT_TRUE(IsNear(line.dry_matter, fed, figure == 0 ? 100 : figure));
      ASSERT_TRUE(IsNear(line.batch_target, Wide{adjusted} * WholeOf(line.dry_matter),
                         by_head ? kHundred : std::max<Wide>(as_fed, 1)));
    }
    ASSERT_TRUE(IsNear(row.dry_matter_percent, as_fed == 0 ? 0 : Wide{dry} * kHundred,
                       std::max<Wide>(as_fed, 1)));
    ASSERT_TRUE(IsNear(row.ration_percent, shares, 1000));
    ASSERT_TRUE(IsNear(row.ingredient_percent, percents, kTenThousand));
  }
}

TEST(AdjustedTarget, IsThatOfTheModelForEveryItemOfTheList) {
  std::mt19937 random(20260107);
  std::uniform_int_distribution<int> any_target(0, 999999);
  for (int index = 0; index < kAdjustItemCount; ++index) {
    const auto factor = static_cast<std::uint64_t>(AdjustItemValue(index));
    for (int round = 0; round < 3000; ++round) {
      const int target = round <= 1000 ? round : any_target(random);
      const auto amount = static_cast<std::uint64_t>(target);
      const RecipeRecord recipe = {.head_count = target,
                                   .ration_target = std::to_string(target),
                                   .adjust_batch_index = std::to_string(index)};
      const std::string adjusted = std::to_string(GetAdjustedRationTarget(recipe));
      ASSERT_EQ(adjusted, std::to_string(ModelAdjusted(amount, index))) << target << " " << index;
      ASSERT_EQ(adjusted, std::to_string(GetAdjustedHeadCount(recipe)));
      ASSERT_TRUE(IsNear(adjusted, Wide{amount} * factor, kHundred));
    }
  }
}

}  // namespace
}  // namespace vrx::testing
