#include <QPointF>
#include <chrono>
#include <cmath>
#include <vector>

#include <gmock/gmock.h>

#include "chart/charts.h"
#include "chart/drawn_shapes.h"
#include "chart/sample_charts.h"
#include "chart/scale.h"

namespace vrx::testing {
namespace {

using std::chrono::year;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

DeviationChart FourLoads() {
  const double day = DayNumber(year(2026) / 1 / 12);
  return {
      .loads = {{day + 0.25, 0, 11}, {day + 0.25, 2, 12}, {day + 0.75, -2, 13}, {day + 1.5, 4, 14}},
      .days = {{year(2026) / 1 / 12, 0}, {year(2026) / 1 / 13, 4}}};
}

TEST(DeviationPicture, DotsAreAtTheirTimesAndDeviations) {
  const auto dots =
      SymbolsOf(PictureOf(FourLoads(), kPictureSize, Look{}), Symbol::kDot, Ink::kFirst);
  ASSERT_THAT(dots, SizeIs(4));
  EXPECT_EQ(dots[0].x(), dots[1].x());
  EXPECT_NEAR(dots[3].x() - dots[2].x(), 1.5 * (dots[2].x() - dots[0].x()), 1e-6);
  const double two = dots[0].y() - dots[1].y();
  EXPECT_GT(two, 10);
  EXPECT_NEAR(dots[2].y() - dots[0].y(), two, 1e-6);
  EXPECT_NEAR(dots[0].y() - dots[3].y(), 2 * two, 1e-6);
}

TEST(DeviationPicture, TheBandEndsAtTheLimits) {
  const Picture picture = PictureOf(FourLoads(), kPictureSize, Look{});
  const auto dots = SymbolsOf(picture, Symbol::kDot, Ink::kFirst);
  for (const Shape& shape : picture.shapes) {
    const auto* path = std::get_if<PathShape>(&shape.what);
    if (path != nullptr && path->fill == Ink::kBand &&
        path->path.boundingRect().width() == picture.plot.width()) {
      EXPECT_NEAR(path->path.boundingRect().top(), dots[1].y(), 1e-6);
      EXPECT_NEAR(path->path.boundingRect().bottom(), dots[2].y(), 1e-6);
      return;
    }
  }
  FAIL() << "no band";
}

TEST(DeviationPicture, TheMedianIsInTheMiddleOfItsDay) {
  const Picture picture = PictureOf(FourLoads(), kPictureSize, Look{});
  const auto dots = SymbolsOf(picture, Symbol::kDot, Ink::kFirst);
  const auto medians = SymbolsOf(picture, Symbol::kSquare, Ink::kSecond);
  ASSERT_THAT(medians, SizeIs(2));
  EXPECT_NEAR(medians[0].x(), (dots[0].x() + dots[2].x()) / 2, 1e-6);
  EXPECT_NEAR(medians[0].y(), dots[0].y(), 1e-6);
  EXPECT_NEAR(medians[1].x(), dots[3].x(), 1e-6);
  EXPECT_NEAR(medians[1].y(), dots[3].y(), 1e-6);
}

TEST(DeviationPicture, ADotLeadsToItsLoad) {
  const DeviationChart chart = FourLoads();
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  const auto dots = SymbolsOf(picture, Symbol::kDot, Ink::kFirst);
  for (std::size_t i = 0; i < dots.size(); ++i) {
    EXPECT_EQ(HitAt(picture, dots[i])->index, i);
  }
}

TEST(DeviationPicture, AFewFarOutAreInALaneAtTheEdge) {
  DeviationChart chart = SampleDeviations(300, 10);
  for (DeviationLoad& load : chart.loads) {
    load.percent = std::clamp(load.percent, -4.0, 4.0);
  }
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Not(Contains("> 5")));
  chart.loads[7].percent = 900;
  chart.loads[8].percent = 30;
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  EXPECT_THAT(TextsOf(picture), Contains("> 5"));
  EXPECT_THAT(TextsOf(picture), Not(Contains("< -5")));
  const auto dots = SymbolsOf(picture, Symbol::kDot, Ink::kFirst);
  EXPECT_EQ(dots[7].y(), dots[8].y());
  EXPECT_LT(dots[7].y(), picture.plot.top() + 16);
  for (std::size_t i = 9; i < dots.size(); ++i) {
    EXPECT_GT(dots[i].y(), picture.plot.top() + 16);
  }
}

TEST(DeviationPicture, ManyLoadsShareMarksAndNoneIsLost) {
  const DeviationChart chart = SampleDeviations(20000, 60);
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  std::size_t loads = 0;
  for (const Hit& hit : picture.hits) {
    loads += hit.count;
  }
  EXPECT_EQ(loads, chart.loads.size());
  EXPECT_LT(picture.hits.size(), 8000U);
  EXPECT_EQ(SymbolsOf(picture, Symbol::kSquare, Ink::kFirst).size(), picture.hits.size());
}

TEST(DeviationPicture, AMarkOfManyLeadsToTheFarthestLoad) {
  DeviationChart chart = SampleDeviations(2000, 1);
  for (DeviationLoad& load : chart.loads) {
    load = {DayNumber(year(2026) / 1 / 12) + 0.5, 0.001, 0};
  }
  chart.loads[1234].percent = -0.002;
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  ASSERT_THAT(picture.hits, SizeIs(1));
  EXPECT_EQ(picture.hits.front().index, 1234U);
  EXPECT_EQ(picture.hits.front().count, 2000U);
}

TEST(DeviationPicture, AMarkIsLargerWhereMoreLoadsAre) {
  DeviationChart chart = SampleDeviations(0, 1);
  const double day = DayNumber(year(2026) / 1 / 12);
  chart.loads.assign(2000, {day + 0.5, 0, 0});
  chart.loads.push_back({day + 0.1, 3, 0});
  chart.loads.insert(chart.loads.end(), 3, {day + 0.9, -3, 0});
  std::vector<double> sizes;
  for (const Shape& shape : PictureOf(chart, kPictureSize, Look{}).shapes) {
    const auto* dots = std::get_if<DotsShape>(&shape.what);
    if (shape.layer == Layer::kMark && dots != nullptr) {
      sizes.push_back(dots->size);
      EXPECT_THAT(dots->at, SizeIs(1));
    }
  }
  ASSERT_THAT(sizes, SizeIs(3));
  EXPECT_LT(sizes[0], sizes[1]);
  EXPECT_LT(sizes[1], sizes[2]);
}

TEST(DeviationPicture, NumbersThatAreNotFiniteAreLeftOut) {
  DeviationChart chart = FourLoads();
  chart.loads[1].percent = NAN;
  chart.loads[2].day = INFINITY;
  chart.days[0].median = NAN;
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  EXPECT_THAT(SymbolsOf(picture, Symbol::kDot, Ink::kFirst), SizeIs(2));
  EXPECT_THAT(SymbolsOf(picture, Symbol::kSquare, Ink::kSecond), SizeIs(1));
  EXPECT_EQ(picture.hits.back().index, 3U);
  chart.loads = {{NAN, 1, 0}};
  EXPECT_THAT(PictureOf(chart, kPictureSize, Look{}).hits, IsEmpty());
}

TEST(DeviationPicture, IsOfTheLoadsAndTheMediansByDay) {
  Loads loads;
  loads.dots = {{.day = 2.5, .percent = 1}};
  loads.ranges = {{-0.5, 0, 3}};
  Accuracy by_day;
  by_day.limits.percent = 3;
  by_day.groups = {{.key = {"1970-01-03"}, .figures = {.median = 1}}, {.key = {std::nullopt}}};
  by_day.total.median = 0.5;
  const DeviationChart chart = DeviationChartOf(loads, by_day);
  EXPECT_EQ(chart.limit, 3);
  ASSERT_EQ(chart.days.size(), 1U);
  EXPECT_EQ(chart.days[0].date, std::chrono::year(1970) / 1 / 3);
  ASSERT_EQ(chart.loads.size(), 1U);
  const DistributionChart distribution = DistributionChartOf(loads, by_day);
  EXPECT_EQ(distribution.median, 0.5);
  EXPECT_EQ(distribution.ranges.at(0).count, 3);
}

}  // namespace
}  // namespace vrx::testing
