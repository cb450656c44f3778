#include <array>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "base/number.h"
#include "database/connection.h"
#include "feed/ration.h"
#include "feed/ration_cells.h"
#include "feed/soft_number.h"

namespace vrx::testing {
namespace {

std::string SlowAsFedWeight(std::uint64_t target, std::uint64_t dry_matter) {
  const Binary share = Quotient(FromWhole(dry_matter), FromWhole(100), kDoubleBits);
  const Binary factor = Quotient(FromWhole(1), share, kDoubleBits);
  return std::to_string(Whole(Product(factor, FromWhole(target), kDoubleBits)));
}

TEST(LineDryMatterProperty, IsTheRoundedChainOfADivisionAndAMultiplication) {
  std::mt19937 random(31);
  std::uniform_int_distribution<std::uint64_t> any_target(0, 999999);
  for (std::uint64_t dry_matter = 1; dry_matter <= 100; ++dry_matter) {
    for (std::uint64_t round = 0; round < 700; ++round) {
      const std::uint64_t target = round < 400 ? round : any_target(random);
      RecipeLineRecord line = WeightLine(std::to_string(target), std::to_string(dry_matter));
      RecalcLineDryMatter("W", line);
      ASSERT_EQ(line.dry_matter, SlowAsFedWeight(target, dry_matter))
          << target << " at " << dry_matter;
    }
  }
}

// Away from exact halves the order of the operations does not matter.
TEST(LineDryMatterProperty, IsTheNearestWholeNumberOfTheExactQuotient) {
  std::mt19937 random(32);
  std::uniform_int_distribution<std::int64_t> any_target(0, 999999);
  std::uniform_int_distribution<std::int64_t> any_figure(1, 100);
  int checked = 0;
  for (int round = 0; round < 50000; ++round) {
    const std::int64_t target = any_target(random);
    const std::int64_t figure = any_figure(random);
    const std::int64_t doubled = target * 200;
    if (doubled % figure == 0 && (doubled / figure) % 2 != 0) {
      continue;
    }
    RecipeLineRecord line = WeightLine(std::to_string(target), std::to_string(figure));
    RecalcLineDryMatter("H", line);
    ASSERT_EQ(line.dry_matter, std::to_string((doubled + figure) / (2 * figure)));
    ++checked;
  }
  EXPECT_GT(checked, 40000);
}

// Every percentage that can be typed, against its hundredths as whole numbers.
TEST(LineDryMatterProperty, OfAPercentIsTheQuotientOfWholeNumbers) {
  for (std::int64_t hundredths = 0; hundredths <= 10000; ++hundredths) {
    const std::string rest = std::to_string(hundredths % 100);
    const std::string percent =
        std::to_string(hundredths / 100) + "." + (rest.size() == 1 ? "0" : "") + rest;
    for (const std::int64_t figure : {1, 7, 16, 35, 64, 80, 88, 99, 100}) {
      RecipeLineRecord line = PercentLine(percent, std::to_string(figure));
      RecalcLineDryMatter("P", line);
      const std::int64_t base = hundredths * 100;
      std::int64_t expected = base / figure;
      const std::int64_t twice_rest = base % figure * 2;
      expected += twice_rest > figure || (twice_rest == figure && expected % 2 != 0) ? 1 : 0;
      ASSERT_EQ(line.dry_matter, std::to_string(expected)) << percent << " at " << figure;
    }
  }
}

Ration RandomRation(std::mt19937& random, const std::string& batch_type) {
  std::uniform_int_distribution<int> count(1, kMaxRecipeLines);
  std::uniform_int_distribution<int> weight(1, 9999);
  std::uniform_int_distribution<int> figure(0, 100);
  std::uniform_int_distribution<int> hundredths(1, 10000);
  Ration ration = RationOf(batch_type, {});
  const int lines = count(random);
  for (int line = 0; line < lines; ++line) {
    RecipeLineRecord added =
        WeightLine(std::to_string(weight(random)), std::to_string(figure(random)));
    added.ingredient_percent = Format(hundredths(random) / 100.0, "0.00");
    ration.lines.push_back(added);
  }
  return ration;
}

TEST(RecipeProperty, BatchTargetsMissTheAdjustedTargetByHalfAUnitALineAtMost) {
  std::mt19937 random(33);
  std::uniform_int_distribution<int> target(0, 99999);
  std::uniform_int_distribution<int> adjust(0, 40);
  for (int round = 0; round < 3000; ++round) {
    constexpr std::array<const char*, 3> kTypes = {"W", "%", "P"};
    Ration ration = RandomRation(random, kTypes.at(static_cast<std::size_t>(round) % 3));
    ration.recipe.ration_target = std::to_string(target(random));
    ration.recipe.adjust_batch_index = std::to_string(adjust(random));
    const RecipeTotals totals = RecalcRecipe(ration);
    const int missed = TextToLong(totals.row.batch_target) - GetAdjustedRationTarget(ration.recipe);
    ASSERT_LE(2 * std::abs(missed), static_cast<int>(ration.lines.size()));
  }
}

TEST(RecipeProperty, AHundredHeadWithoutAdjustmentBatchWhatIsFed) {
  std::mt19937 random(34);
  for (int round = 0; round < 2000; ++round) {
    Ration ration = RandomRation(random, "H");
    ration.recipe.head_count = 100;
    RecalcRecipe(ration);
    for (const RecipeLineRecord& line : ration.lines) {
      ASSERT_EQ(line.batch_target, line.dry_matter);
    }
  }
}

TEST(RecipeProperty, RecomputingChangesNothingMore) {
  std::mt19937 random(35);
  for (int round = 0; round < 500; ++round) {
    Ration ration = RandomRation(random, round % 2 == 0 ? "W" : "P");
    ration.recipe.ration_target = "8000";
    const TotalsRow first = RecalcRecipe(ration).row;
    const Ration before = ration;
    ASSERT_EQ(RecalcRecipe(ration).row, first);
    for (const auto field : {&RecipeLineRecord::dry_matter, &RecipeLineRecord::ration_percent,
                             &RecipeLineRecord::batch_target}) {
      ASSERT_EQ(Cells(ration, field), Cells(before, field));
    }
  }
}

// The sample site's figures were computed by the program that generated it.
TEST(SampleSite, HoldsTheFiguresThatItsRecipesCompute) {
  SQLite::Database database =
      OpenDatabase(std::string(VRX_BIN_DIR) + "/sample_site/SITE.RDB", Access::kRead);
  for (int id = 1; id <= 9; ++id) {
    const Ration stored = {.recipe = ReadRecipe(database, id),
                           .lines = ReadRecipeLines(database, id)};
    ASSERT_FALSE(stored.lines.empty()) << id;
    Ration computed = stored;
    for (RecipeLineRecord& line : computed.lines) {
      line.dry_matter = line.ration_percent = line.batch_target = "";
    }
    RecalcRecipe(computed);
    for (const auto field : {&RecipeLineRecord::dry_matter, &RecipeLineRecord::ration_percent,
                             &RecipeLineRecord::batch_target}) {
      EXPECT_EQ(Cells(computed, field), Cells(stored, field)) << id;
    }
  }
}

}  // namespace
}  // namespace vrx::testing
