#include "insight/load_deviations.h"

#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

#include <gmock/gmock.h>

#include "chart/charts.h"
#include "chart/drawn_shapes.h"
#include "chart/sample_charts.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::size_t kMost = 5000;

std::vector<DeviationLoad> Reduced(const std::vector<DeviationLoad>& loads) {
  DeviationLoads reduced(kMost);
  for (const DeviationLoad& load : loads) {
    reduced.Add(load);
  }
  return reduced.Take();
}

std::int64_t SumOf(const std::vector<DeviationLoad>& loads) {
  std::int64_t sum = 0;
  for (const DeviationLoad& load : loads) {
    sum += load.loads;
  }
  return sum;
}

TEST(DeviationLoadsOfMany, FewStayAsTheyAreInTheOrderOfTime) {
  const auto loads = Reduced({{3.5, 1, 30}, {1.5, -2, 10}, {2.5, 1, 20}});
  ASSERT_THAT(loads, SizeIs(3));
  EXPECT_EQ(loads[0].record, 10);
  EXPECT_EQ(loads[0].percent, -2);
  EXPECT_EQ(loads[1].record, 20);
  EXPECT_EQ(loads[2].day, 3.5);
}

TEST(DeviationLoadsOfMany, AreBoundedAndNoneIsLost) {
  for (const int days : {1, 400, 20000}) {
    const auto many = SampleDeviations(60000, days).loads;
    const auto loads = Reduced(many);
    EXPECT_LE(loads.size(), kMost) << days;
    EXPECT_GT(loads.size(), 100U) << days;
    EXPECT_EQ(SumOf(loads), 60000) << days;
  }
}

TEST(DeviationLoadsOfMany, AnEntryIsTheFarthestOfItsLoads) {
  auto many = SampleDeviations(20000, 30).loads;
  many[777].percent = 345.6;
  many[888].percent = -99;
  std::map<std::int64_t, DeviationLoad> by_record;
  for (const DeviationLoad& load : many) {
    by_record[load.record] = load;
  }
  bool met = false;
  for (const DeviationLoad& load : Reduced(many)) {
    const DeviationLoad& original = by_record.at(load.record);
    EXPECT_EQ(load.percent, original.percent);
    EXPECT_EQ(load.day, original.day);
    met = met || load.percent == 345.6;
  }
  EXPECT_TRUE(met);
}

TEST(DeviationLoadsOfMany, EqualLoadsBecomeOneEntryWithTheFarthest) {
  std::vector<DeviationLoad> many(2 * kMost, {10.5, -1.01, 5});
  many[3] = {10.5, -1.02, 6};
  many[4] = {10.5, 1.01, 7};
  const auto loads = Reduced(many);
  ASSERT_THAT(loads, SizeIs(2));
  EXPECT_EQ(loads[0].record, 6);
  EXPECT_EQ(loads[0].loads, static_cast<std::int64_t>(2 * kMost - 1));
  EXPECT_EQ(loads[1].record, 7);
}

TEST(DeviationLoadsOfMany, NumbersThatAreNotFiniteAreLeftOut) {
  EXPECT_THAT(Reduced({{NAN, 1, 1}, {1, INFINITY, 2}}), IsEmpty());
}

TEST(DeviationLoadsOfMany, APictureOfThemCountsEveryLoad) {
  DeviationChart chart = SampleDeviations(30000, 365);
  const QRectF plot = PictureOf(chart, kPictureSize, Look{}).plot;
  chart.loads = Reduced(chart.loads);
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  EXPECT_EQ(picture.plot, plot);
  std::size_t loads = 0;
  for (const Hit& hit : picture.hits) {
    loads += hit.count;
  }
  EXPECT_EQ(loads, 30000U);
}

TEST(DeviationLoadsOfMany, TwoEntriesOfManyLoadsAreDrawnAsMany) {
  const DeviationChart chart{.loads = {{10.25, 1, 1, 500}, {10.75, -1, 2, 1}}};
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  ASSERT_THAT(picture.hits, SizeIs(2));
  EXPECT_EQ(picture.hits[0].count + picture.hits[1].count, 501U);
}

}  // namespace
}  // namespace vrx::testing
