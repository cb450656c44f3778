#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "chart/charts.h"
#include "chart/drawn_shapes.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

std::vector<DeviationRange> CountInRanges(const std::vector<double>& percents, double limit) {
  DeviationCounts counts(limit);
  for (const double percent : percents) {
    counts.Add(percent);
  }
  return counts.Ranges();
}

std::int64_t CountOf(const std::vector<DeviationRange>& ranges, double from, double to) {
  for (const DeviationRange& range : ranges) {
    if (range.from == from && range.to == to) {
      return range.count;
    }
  }
  return -1;
}

TEST(DeviationRanges, WhatIsAtTheLimitIsNotWithinIt) {
  std::vector<double> percents{-2, -1.9, 0, 1.9, 2, 3.9};
  const auto ranges = CountInRanges(percents, 2);
  EXPECT_EQ(CountOf(ranges, -2.5, -2), 1);
  EXPECT_EQ(CountOf(ranges, -2, -1.5), 1);
  EXPECT_EQ(CountOf(ranges, 0, 0.5), 1);
  EXPECT_EQ(CountOf(ranges, 1.5, 2), 1);
  EXPECT_EQ(CountOf(ranges, 2, 2.5), 1);
}

TEST(DeviationRanges, TheEndsOfALimitThatIsNoBinaryNumberAreExact) {
  std::vector<double> percents{-1.7, 1.7, 0.6};
  const auto ranges = CountInRanges(percents, 1.7);
  std::int64_t within = 0;
  for (const DeviationRange& range : ranges) {
    within += range.from >= -1.7 - 1e-9 && range.to <= 1.7 + 1e-9 ? range.count : 0;
  }
  EXPECT_EQ(within, 1);
}

TEST(DeviationRanges, HaveNoGapsAndCountEveryLoadOnce) {
  std::vector<double> percents;
  for (int i = -5000; i <= 5000; ++i) {
    percents.push_back(0.0013 * i + (i % 1000 == 0 ? 2.0 * i : 0));
  }
  percents.push_back(NAN);
  for (const double limit : {0.1, 2.0, 3.3, 50.0}) {
    const auto ranges = CountInRanges(percents, limit);
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
      sum += ranges[i].count;
      EXPECT_LT(ranges[i].from, ranges[i].to);
      if (i > 0) {
        EXPECT_EQ(ranges[i].from, ranges[i - 1].to);
      }
    }
    EXPECT_EQ(sum, 10001) << limit;
    EXPECT_LE(ranges.size(), 52U) << limit;
  }
}

TEST(DeviationRanges, FarOnesAreInOpenRanges) {
  std::vector<double> percents(200, 1);
  percents[0] = 500;
  const auto ranges = CountInRanges(percents, 2);
  EXPECT_EQ(ranges.back().to, INFINITY);
  EXPECT_EQ(ranges.back().count, 1);
  EXPECT_TRUE(std::isfinite(ranges.front().from));
}

TEST(DeviationRanges, OfNothingAreNone) {
  EXPECT_THAT(CountInRanges({}, 2), IsEmpty());
  EXPECT_THAT(CountInRanges({NAN}, 2), IsEmpty());
}

DistributionChart ThreeRanges() {
  return {.ranges = {{-4, -2, 10}, {-2, 0, 20}, {0, 2, 40}, {2, INFINITY, 4}}, .median = 1};
}

TEST(DistributionPicture, BarsHaveTheHeightOfTheirCounts) {
  const Picture picture = PictureOf(ThreeRanges(), kPictureSize, Look{});
  const auto within = BoxesOf(picture, Ink::kFirst);
  const auto beyond = BoxesOf(picture, Ink::kSecond);
  ASSERT_THAT(within, SizeIs(2));
  ASSERT_THAT(beyond, SizeIs(1));
  EXPECT_NEAR(within[1].height(), 2 * within[0].height(), 1e-6);
  EXPECT_NEAR(beyond[0].height(), within[0].height() / 2, 1e-6);
  EXPECT_EQ(within[0].bottom(), within[1].bottom());
  EXPECT_LT(beyond[0].right(), within[0].left());
}

TEST(DistributionPicture, TheLegendSaysTheMedianAndWhatIsHatched) {
  DistributionChart chart = ThreeRanges();
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Contains("Median 1.0 %"));
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Contains("Beyond the axis"));
  chart.ranges.pop_back();
  chart.median.reset();
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Not(Contains("Beyond the axis")));
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Not(Contains("Median 1.0 %")));
}

TEST(DistributionPicture, PointingAboveABarFindsItsRange) {
  const Picture picture = PictureOf(ThreeRanges(), kPictureSize, Look{});
  const QRectF bar = BoxesOf(picture, Ink::kSecond).front();
  EXPECT_EQ(HitAt(picture, {bar.center().x(), picture.plot.top() + 1})->index, 0U);
  EXPECT_EQ(HitAt(picture, BoxesOf(picture, Ink::kFirst)[1].center())->index, 2U);
}

TEST(DistributionPicture, RangesWithoutLoadsAreNothingToShow) {
  const DistributionChart chart{.ranges = {{-2, 0, 0}, {0, 2, 0}}};
  EXPECT_THAT(PictureOf(chart, kPictureSize, Look{}).hits, IsEmpty());
}

TEST(DistributionPicture, ACountIsAWholeNumber) {
  const DistributionChart chart{.ranges = {{0, 2, 1}}};
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Contains("1"));
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Not(Contains("0.5")));
}

}  // namespace
}  // namespace vrx::testing
