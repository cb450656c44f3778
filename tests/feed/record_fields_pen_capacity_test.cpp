#include <initializer_list>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "feed/record_fields.h"

namespace vrx {
namespace {

std::vector<PenRecord> Pens(std::initializer_list<std::pair<int, const char*>> fed,
                            std::size_t count = kPenCount) {
  std::vector<PenRecord> pens(count);
  for (const auto& [row, amount] : fed) {
    pens.at(static_cast<std::size_t>(row) - 1).feed_amount = amount;
  }
  return pens;
}

TEST(CheckPenCapacity, TheHighestRangeInUseWins) {
  EXPECT_EQ(CheckPenCapacity(Pens({{150, "500"}, {350, "20"}})), 400);
  EXPECT_EQ(CheckPenCapacity(Pens({{150, "500"}, {250, "20"}})), 300);
}

TEST(CheckPenCapacity, RangesBeginAndEndAtTheirRows) {
  const std::vector<std::pair<int, int>> sizes = {{101, 200}, {200, 200}, {201, 300},
                                                  {300, 300}, {301, 400}, {400, 400}};
  for (const auto& [row, size] : sizes) {
    EXPECT_EQ(CheckPenCapacity(Pens({{row, "1"}})), size) << row;
  }
}

TEST(CheckPenCapacity, TheFirstHundredRowsNeedNoOption) {
  EXPECT_EQ(CheckPenCapacity(Pens({{1, "500"}, {100, "500"}})), std::nullopt);
  EXPECT_EQ(CheckPenCapacity({}), std::nullopt);
}

TEST(CheckPenCapacity, OnlyAWholeNumberAboveZeroIsFeed) {
  for (const char* const amount : {"0", "", "-5", "none", "0.5", "3000000000"}) {
    EXPECT_EQ(CheckPenCapacity(Pens({{150, amount}})), std::nullopt) << amount;
  }
  EXPECT_EQ(CheckPenCapacity(Pens({{150, "0.6"}})), 200);
}

TEST(CheckPenCapacity, CountsRowsOfAFilteredGridAndNotPens) {
  std::vector<PenRecord> rows = Pens({{120, "40"}}, 120);
  rows.back().id = 390;
  EXPECT_EQ(CheckPenCapacity(rows), 200);
}

TEST(PenCapacityWarning, NamesTheSize) {
  EXPECT_EQ(PenCapacityWarning(400),
            " This recipe requires a 400-pen capacity option in the K2260 indicator.");
}

}  // namespace
}  // namespace vrx
