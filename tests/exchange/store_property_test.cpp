#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/number.h"
#include "exchange/store_fixture.h"

namespace vrx::testing {
namespace {

// Weights in tenths, so that rounding errors of sums are far below the last written digit.
std::string RandomWeight(std::mt19937& random) {
  const int tenths = std::uniform_int_distribution<int>(0, 99999)(random);
  return DefaultText(tenths / 10.0);
}

struct Totals {
  double target = 0;
  double batch = 0;
  double feed = 0;
  double ingredients = 0;  // Ing01Wt to Ing32Wt
};

RowCells RandomRow(std::mt19937& random, int transaction, Totals& totals) {
  const auto pick = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  const auto add = [](double& total, const std::string& text) {
    total += ParseNumber(text).value_or(0);
  };
  const std::string weight = RandomWeight(random);
  const bool batch = pick(0, 1) == 0;
  RowCells cells = batch ? BatchCells(transaction, pick(1, 100), pick(1, 100), weight)
                         : FeedCells(transaction, pick(1, 100), pick(1, 400), weight);
  add(batch ? totals.batch : totals.feed, weight);
  add(totals.target, cells[kImportedTarget]);
  cells.erase(kFirstIngredientWeight);
  for (int i = pick(0, 5); i > 0 && !batch; --i) {
    const int ingredient = pick(1, 100);
    cells[kFirstIngredientWeight - 1 + ingredient] = RandomWeight(random);
  }
  for (int column = kFirstIngredientWeight; column < kFirstIngredientWeight + 32; ++column) {
    if (cells.contains(column)) {
      add(totals.ingredients, cells[column]);
    }
  }
  return cells;
}

double Number(const std::string& stored) { return ParseNumber(stored).value_or(0); }

Totals TotalsOf(const std::vector<StoredRow>& rows, std::size_t from) {
  Totals totals;
  for (std::size_t i = from; i < rows.size(); ++i) {
    totals.target += Number(rows[i][6]);
    totals.batch += Number(rows[i][7]);
    totals.feed += Number(rows[i][10]);
    for (std::size_t column = 12; column < 12 + 32; ++column) {
      totals.ingredients += Number(rows[i][column]);
    }
  }
  return totals;
}

TEST(StoreProperty, RandomImportsKeepSumsAndCountsAndShiftNumbersByTheBase) {
  std::mt19937 random(20260105);
  const auto pick = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (int round = 0; round < 12; ++round) {
    SCOPED_TRACE(round);
    StoreFixture site;
    int highest = 0;
    for (int i = pick(0, 5); i > 0; --i) {
      const int number = pick(1, 1000000);
      highest = std::max(highest, number);
      Execute(site.databases.trans_db_path,
              "INSERT INTO Transactions ([Transaction]) VALUES (" + IdText(number) + ")");
    }
    const std::size_t before = site.Stored().size();
    Totals expected;
    std::vector<RowCells> rows;
    std::vector<int> numbers;
    int transaction = pick(1, 10);
    for (int i = pick(1, 80); i > 0; --i) {
      transaction += pick(0, 1);
      numbers.push_back(transaction);
      rows.push_back(RandomRow(random, transaction, expected));
    }
    const StoreOutcome outcome = site.Store(MakeImport(rows));

    EXPECT_TRUE(outcome.complete);
    EXPECT_EQ(outcome.stored, rows.size());
    const std::vector<StoredRow> stored = site.Stored();
    ASSERT_EQ(stored.size(), before + rows.size());
    const Totals totals = TotalsOf(stored, before);
    EXPECT_NEAR(totals.target, expected.target, 1e-6);
    EXPECT_NEAR(totals.batch, expected.batch, 1e-6);
    EXPECT_NEAR(totals.feed, expected.feed, 1e-6);
    EXPECT_NEAR(totals.ingredients, expected.ingredients, 1e-6);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      EXPECT_EQ(stored[before + i][0], IdText(numbers[i] + highest));
    }
  }
}

}  // namespace
}  // namespace vrx::testing
