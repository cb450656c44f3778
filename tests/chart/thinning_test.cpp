#include "chart/thinning.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>
#include <variant>
#include <vector>

#include <gmock/gmock.h>

#include "chart/charts.h"
#include "chart/drawn_shapes.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Le;
using ::testing::SizeIs;

using Points = std::vector<std::pair<double, double>>;

// The points of a path; those that it moves to are in `moves`.
Points PointsOf(const QPainterPath& path, std::vector<int>* moves = nullptr) {
  Points points;
  for (int i = 0; i < path.elementCount(); ++i) {
    points.emplace_back(path.elementAt(i).x, path.elementAt(i).y);
    if (moves != nullptr && path.elementAt(i).isMoveTo()) {
      moves->push_back(i);
    }
  }
  return points;
}

QPainterPath Through(const Points& points) {
  QPainterPath path;
  for (const auto& [x, y] : points) {
    path.elementCount() == 0 ? path.moveTo(x, y) : path.lineTo(x, y);
  }
  return path;
}

DeliveredChart ManyDays(int days) {
  DeliveredChart chart{.units = "KG"};
  for (int i = 0; i < days; ++i) {
    chart.days.push_back({.date = Date(std::chrono::sys_days(std::chrono::year(1990) / 1 / 1) +
                                       std::chrono::days(i)),
                          .called = 1000.0 + i % 7,
                          .delivered = i == days / 2 ? 2000.0 : 1000.0 + i % 5,
                          .mean7 = 1000.0 + i % 3,
                          .missed = false});
  }
  return chart;
}

// The boxes of the band of the limits; that of the legend is no part of it.
std::vector<QRectF> BandOf(const Picture& picture) {
  std::vector<QRectF> boxes;
  for (const Shape& shape : picture.shapes) {
    const auto* const path = std::get_if<PathShape>(&shape.what);
    if (path == nullptr || path->fill != Ink::kBand ||
        !picture.plot.intersects(path->path.boundingRect())) {
      continue;
    }
    for (const QPolygonF& box : path->path.toSubpathPolygons()) {
      boxes.push_back(box.boundingRect());
    }
  }
  return boxes;
}

int LinePointsOf(const Picture& picture) {
  int points = 0;
  for (const Shape& shape : picture.shapes) {
    const auto* const path = std::get_if<PathShape>(&shape.what);
    if (shape.layer == Layer::kMark && path != nullptr && !path->fill) {
      points += path->path.elementCount();
    }
  }
  return points;
}

TEST(Thinning, KeepsALineWhosePointsAreApart) {
  const Points points = {{0, 5}, {1, 7}, {2, 3}, {2.5, 9}, {3, 1}};
  EXPECT_EQ(PointsOf(ThinnedLine(Through(points))), points);
}

TEST(Thinning, KeepsTheHighestAndTheLowestPointOfAColumn) {
  const QPainterPath path = Through({{0, 5}, {0.2, 6}, {0.4, 1}, {0.6, 9}, {0.9, 6}, {1, 4}});
  EXPECT_THAT(PointsOf(ThinnedLine(path)),
              ElementsAre(std::pair(0.4, 1.0), std::pair(0.6, 9.0), std::pair(1.0, 4.0)));
}

TEST(Thinning, KeepsAGapBetweenColumnsAndClosesOneWithin) {
  QPainterPath path(QPointF(0, 5));
  path.lineTo(0.1, 6);
  path.moveTo(0.2, 7);
  path.lineTo(1, 5);
  path.moveTo(3, 5);
  path.lineTo(4, 5);
  std::vector<int> moves;
  EXPECT_THAT(PointsOf(ThinnedLine(path), &moves), SizeIs(5));
  EXPECT_THAT(moves, ElementsAre(0, 3));
}

TEST(Thinning, SamplesADashedLineOnlyWhereItsPointsAreHidden) {
  const Points apart = {{0, 5}, {1, 7}, {2, 3}, {5, 9}};
  EXPECT_EQ(PointsOf(SampledLine(Through(apart))), apart);
  const QPainterPath crowded =
      Through({{0, 5}, {0.1, 5}, {0.2, 6}, {0.3, 5}, {0.4, 1}, {3.9, 9}, {4, 6}, {9, 5}});
  EXPECT_THAT(PointsOf(SampledLine(crowded)),
              ElementsAre(std::pair(0.0, 5.0), std::pair(4.0, 6.0), std::pair(9.0, 5.0)));
}

TEST(Thinning, LeavesAnEmptyPathEmpty) {
  EXPECT_TRUE(ThinnedLine({}).isEmpty());
  EXPECT_TRUE(SampledLine({}).isEmpty());
}

TEST(Thinning, KeepsBoxesAsWideAsAColumn) {
  const std::vector<QRectF> boxes = {{0, 0, 1, 5}, {0.5, 0, 1, 7}};
  EXPECT_EQ(ThinnedBoxes(boxes, true), boxes);
}

TEST(Thinning, JoinsNarrowBoxesThatBeginInOneColumn) {
  const std::vector<QRectF> boxes = {{0, 2, 0.5, 8}, {0.5, 4, 0.5, 6}, {1, 3, 0.5, 7}};
  EXPECT_THAT(ThinnedBoxes(boxes, true), ElementsAre(QRectF(0, 2, 1, 8), QRectF(1, 3, 0.5, 7)));
  EXPECT_THAT(ThinnedBoxes(boxes, false), ElementsAre(QRectF(0, 4, 1, 6), QRectF(1, 3, 0.5, 7)));
}

TEST(Thinning, APictureOfACenturyHasNoMoreShapesThanColumnsAndKeepsItsDays) {
  const DeliveredChart chart = ManyDays(40'000);
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  const auto bars = BoxesOf(picture, Ink::kFirst);
  EXPECT_THAT(bars, SizeIs(Le(static_cast<std::size_t>(picture.plot.width()) + 1)));
  EXPECT_LT(LinePointsOf(picture), 3 * picture.plot.width());
  EXPECT_THAT(picture.hits, SizeIs(chart.days.size()));
  double highest = picture.plot.bottom();
  for (const QRectF& bar : bars) {
    highest = std::min(highest, bar.top());
  }
  EXPECT_NEAR(picture.plot.bottom() - highest, picture.plot.height(), picture.plot.height() / 8);
}

// What is within the band must be balanced on each of its days.
TEST(Thinning, ACenturyOfBatchesHasTheSmallestLimitOfItsColumns) {
  BalanceChart chart{.units = "KG"};
  for (int day = 0; day < 40'000; ++day) {
    chart.batches.push_back(
        {.day = day + 0.5, .left = 0, .limit = day % 10 == 0 ? 10.0 : 50.0, .transaction = day});
  }
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  chart.batches = {chart.batches.front(), chart.batches.back()};
  chart.batches.back().limit = 50;  // the axis is that of the largest limit
  const Picture two = PictureOf(chart, kPictureSize, Look{});
  const auto boxes = BandOf(picture);
  EXPECT_THAT(boxes, SizeIs(Le(static_cast<std::size_t>(picture.plot.width()) + 1)));
  ASSERT_FALSE(BandOf(two).empty());
  for (const QRectF& box : boxes) {
    EXPECT_NEAR(box.height(), BandOf(two).front().height(), 1e-6);
  }
}

}  // namespace
}  // namespace vrx::testing
