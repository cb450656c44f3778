#include <cmath>
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
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::SizeIs;

WeightChart ThreeWeights() {
  return {.units = "KG", .weights = {{"HAY", 25}, {"CORN", 60}, {"SALT", 15}, {"WATER", 0}}};
}

TEST(WeightPicture, TheLargestIsFirstAndSharesAddUp) {
  const Picture picture = PictureOf(ThreeWeights(), kPictureSize, Look{});
  std::vector<std::string> rows;
  for (const std::string& text : TextsOf(picture)) {
    if (text == "CORN" || text == "HAY" || text == "SALT" || text == "WATER" ||
        text.ends_with(" %")) {
      rows.push_back(text);
    }
  }
  EXPECT_THAT(rows, ElementsAre("CORN", "60 %", "HAY", "85 %", "SALT", "100 %"));
  EXPECT_THAT(TextsOf(picture), Contains("Too much and too little (kg)"));
}

TEST(WeightPicture, BarsAndSharesHaveOneScale) {
  const Picture picture = PictureOf(ThreeWeights(), kPictureSize, Look{});
  const auto bars = BoxesOf(picture, Ink::kFirst);
  const auto shares = SymbolsOf(picture, Symbol::kDiamond, Ink::kSecond);
  ASSERT_THAT(bars, SizeIs(3));
  ASSERT_THAT(shares, SizeIs(3));
  EXPECT_NEAR(bars[0].width() / bars[1].width(), 60.0 / 25, 1e-6);
  EXPECT_NEAR(shares[0].x(), bars[0].right(), 1e-6);
  EXPECT_NEAR(shares[1].x() - shares[0].x(), bars[1].width(), 1e-6);
  EXPECT_NEAR(shares[2].x() - shares[1].x(), bars[2].width(), 1e-6);
}

TEST(WeightPicture, ARowLeadsToItsIngredient) {
  const Picture picture = PictureOf(ThreeWeights(), kPictureSize, Look{});
  const auto bars = BoxesOf(picture, Ink::kFirst);
  EXPECT_EQ(HitAt(picture, bars[0].center())->index, 1U);
  EXPECT_EQ(HitAt(picture, {picture.plot.right() - 2, bars[2].center().y()})->index, 2U);
}

TEST(WeightPicture, WhatDoesNotFitIsOneHatchedBarWithAllOfTheRest) {
  const WeightChart chart = SampleWeights(60);
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  std::size_t ingredients = 0;
  for (const Hit& hit : picture.hits) {
    ingredients += hit.count;
  }
  EXPECT_EQ(ingredients, 60U);
  const std::size_t rest = picture.hits.back().count;
  EXPECT_GT(rest, 1U);
  EXPECT_THAT(TextsOf(picture),
              IsSupersetOf({std::to_string(rest) + " others", std::string("100 %")}));
  EXPECT_THAT(BoxesOf(picture, Ink::kFirst), SizeIs(picture.hits.size() - 1));
}

TEST(WeightPicture, WeightsThatAreNoDeviationAreLeftOut) {
  const WeightChart chart{.units = "LB",
                          .weights = {{"A", 0}, {"B", -3}, {"C", NAN}, {"D", INFINITY}}};
  EXPECT_THAT(PictureOf(chart, kPictureSize, Look{}).hits, IsEmpty());
}

TEST(WeightPicture, IsMadeOfAnAnswer) {
  Accuracy accuracy;
  accuracy.notes.units = "KG";
  accuracy.groups = {{.key = {"CORN"}, .figures = {.gross = 12.5}},
                     {.key = {"HAY"}},
                     {.key = {std::nullopt}, .figures = {.gross = 3}}};
  const WeightChart chart = WeightChartOf(accuracy);
  EXPECT_EQ(chart.units, "KG");
  ASSERT_THAT(chart.weights, SizeIs(2));
  EXPECT_EQ(chart.weights[0].gross, 12.5);
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Contains("(none)"));
}

}  // namespace
}  // namespace vrx::testing
