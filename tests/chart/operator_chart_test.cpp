#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "chart/charts.h"
#include "chart/drawn_shapes.h"
#include "chart/sample_charts.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::SizeIs;

OperatorChart FourCells() {
  return {.cells = {{"CORN", "10", 50, 90.4},
                    {"CORN", "9", 30, 20},
                    {"HAY", {}, 40, 0},
                    {"HAY", "10", 12, {}}}};
}

std::vector<double> ShadesOf(const Picture& picture) {
  std::vector<double> shades;
  for (const Shape& shape : picture.shapes) {
    const auto* path = std::get_if<PathShape>(&shape.what);
    if (path != nullptr && path->fill == Ink::kShade) {
      shades.push_back(path->opacity);
    }
  }
  return shades;
}

TEST(OperatorPicture, ColumnsAreSortedByNumberWithNoOperatorFirst) {
  const auto texts = TextsOf(PictureOf(FourCells(), kPictureSize, Look{}));
  const auto first = std::ranges::find(texts, "Operator");
  ASSERT_GE(texts.end() - first, 4);
  EXPECT_THAT(std::vector(first, first + 4), ElementsAre("Operator", "(none)", "9", "10"));
}

TEST(OperatorPicture, AShareIsANumberAndAShadeAndFewLoadsAreBlank) {
  const Picture picture = PictureOf(FourCells(), kPictureSize, Look{});
  EXPECT_THAT(TextsOf(picture), Contains("90"));
  EXPECT_THAT(TextsOf(picture), Contains("20"));
  EXPECT_THAT(TextsOf(picture), Contains("0"));
  const auto shades = ShadesOf(picture);  // by row and column
  ASSERT_THAT(shades, SizeIs(3));
  EXPECT_NEAR(shades[0], 0.2 * kMostShade, 1e-9);
  EXPECT_NEAR(shades[1], 0.904 * kMostShade, 1e-9);
  EXPECT_EQ(shades[2], 0);
  EXPECT_THAT(picture.hits, SizeIs(4));  // the blank one too
}

TEST(OperatorPicture, EachCellLeadsToItsEntry) {
  const OperatorChart chart = SampleOperators(5, 30);
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  std::set<std::size_t> found;
  for (const Hit& hit : picture.hits) {
    EXPECT_EQ(HitAt(picture, hit.area.center())->index, hit.index);
    found.insert(hit.index);
  }
  EXPECT_EQ(found.size(), chart.cells.size());
}

TEST(OperatorPicture, ACellIsInTheRowOfItsIngredientAndTheColumnOfItsOperator) {
  const OperatorChart chart = FourCells();
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  const auto area = [&](std::size_t index) {
    return std::ranges::find(picture.hits, index, &Hit::index)->area;
  };
  EXPECT_EQ(area(0).top(), area(1).top());
  EXPECT_EQ(area(2).top(), area(3).top());
  EXPECT_LT(area(0).top(), area(2).top());
  EXPECT_EQ(area(0).left(), area(3).left());
  EXPECT_LT(area(2).left(), area(1).left());
  EXPECT_LT(area(1).left(), area(0).left());
}

TEST(OperatorPicture, ColumnsThatDoNotFitFollowBelowWithTheNames) {
  const OperatorChart chart = SampleOperators(4, 40);
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  const auto texts = TextsOf(picture);
  EXPECT_GT(std::ranges::count(texts, "HAY"), 1);
  EXPECT_EQ(std::ranges::count(texts, "HAY"), std::ranges::count(texts, "Operator"));
  for (const Hit& hit : picture.hits) {
    EXPECT_GE(hit.area.width(), 30);  // a number of three digits fits
  }
}

TEST(OperatorPicture, IsMadeOfAnAnswer) {
  Accuracy accuracy;
  accuracy.limits.percent = 3;
  accuracy.groups = {{.key = {"CORN", std::nullopt}, .figures = {.n = 21, .within = 50}},
                     {.key = {std::nullopt, "7"}, .figures = {.n = 3}}};
  const OperatorChart chart = OperatorChartOf(accuracy);
  EXPECT_EQ(chart.limit, 3);
  ASSERT_THAT(chart.cells, SizeIs(2));
  EXPECT_EQ(chart.cells[0].ingredient, "CORN");
  EXPECT_EQ(chart.cells[0].operator_id, std::nullopt);
  EXPECT_EQ(chart.cells[0].loads, 21);
  EXPECT_EQ(chart.cells[0].share, 50);
  EXPECT_EQ(chart.cells[1].operator_id, "7");
  EXPECT_EQ(chart.cells[1].share, std::nullopt);
}

}  // namespace
}  // namespace vrx::testing
