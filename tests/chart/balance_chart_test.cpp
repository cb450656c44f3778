#include <cmath>
#include <vector>

#include <gmock/gmock.h>

#include "chart/charts.h"
#include "chart/drawn_shapes.h"
#include "chart/sample_charts.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

BalanceChart FourBatches() {
  return {.units = "LB",
          .batches = {{100.25, 50, 100, BalanceState::kBalanced, 1},
                      {100.75, 150, 100, BalanceState::kOut, 2},
                      {101.5, 5000, 110, BalanceState::kNeverFed, 3},
                      {101.75, -4000, 120, BalanceState::kNeverLoaded, 4}}};
}

TEST(BalancePicture, EachStateHasASymbolOfItsOwn) {
  const Picture picture = PictureOf(FourBatches(), kPictureSize, Look{});
  EXPECT_THAT(SymbolsOf(picture, Symbol::kDot, Ink::kFirst), SizeIs(1));
  EXPECT_THAT(SymbolsOf(picture, Symbol::kDiamond, Ink::kSecond), SizeIs(1));
  EXPECT_THAT(SymbolsOf(picture, Symbol::kSquare, Ink::kSecond), SizeIs(1));
  EXPECT_THAT(SymbolsOf(picture, Symbol::kCross, Ink::kText), SizeIs(1));
}

TEST(BalancePicture, TheLegendNamesTheStatesThatAreMet) {
  BalanceChart chart = FourBatches();
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Contains("Never loaded"));
  chart.batches.resize(2);
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Contains("Out of balance"));
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Not(Contains("Never loaded")));
}

TEST(BalancePicture, WholeBatchesDoNotWidenTheAxis) {
  const Picture picture = PictureOf(FourBatches(), kPictureSize, Look{});
  EXPECT_THAT(TextsOf(picture), Contains("> 200"));
  EXPECT_THAT(TextsOf(picture), Contains("< -200"));
  EXPECT_GT(SymbolsOf(picture, Symbol::kDiamond, Ink::kSecond).front().y(),
            picture.plot.top() + 16);
  EXPECT_LT(SymbolsOf(picture, Symbol::kSquare, Ink::kSecond).front().y(), picture.plot.top() + 16);
}

TEST(BalancePicture, TheBandHasTheSmallestLimitOfEachDay) {
  BalanceChart chart = FourBatches();
  chart.batches.resize(2);
  chart.batches[0].left = 60;
  chart.batches[1] = {100.75, -100, 60, BalanceState::kOut, 2};
  chart.batches.push_back({102.5, 100, 100, BalanceState::kBalanced, 3});
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  const auto dots = SymbolsOf(picture, Symbol::kDot, Ink::kFirst);
  const double low = SymbolsOf(picture, Symbol::kDiamond, Ink::kSecond).front().y();
  for (const Shape& shape : picture.shapes) {
    const auto* path = std::get_if<PathShape>(&shape.what);
    const auto boxes = path == nullptr ? QList<QPolygonF>() : path->path.toSubpathPolygons();
    if (path != nullptr && path->fill == Ink::kBand && boxes.size() == 2) {
      EXPECT_NEAR(boxes[0].boundingRect().top(), dots[0].y(), 1e-6);
      EXPECT_NEAR(boxes[1].boundingRect().top(), dots[1].y(), 1e-6);
      EXPECT_NEAR(boxes[1].boundingRect().bottom(), low, 1e-6);
      return;
    }
  }
  FAIL() << "no band of two days";
}

TEST(BalancePicture, AMarkLeadsToItsBatch) {
  const BalanceChart chart = FourBatches();
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  const QPointF out = SymbolsOf(picture, Symbol::kDiamond, Ink::kSecond).front();
  EXPECT_EQ(chart.batches[HitAt(picture, out)->index].transaction, 2);
}

TEST(BalancePicture, BatchesAtOnePlaceAreOneMarkAndNoneIsLost) {
  const BalanceChart chart = SampleBalance(20000, 400);
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  std::size_t batches = 0;
  for (const Hit& hit : picture.hits) {
    batches += hit.count;
  }
  EXPECT_EQ(batches, 20000U);
  EXPECT_LT(picture.hits.size(), 5000U);
}

TEST(BalancePicture, NumbersThatAreNotFiniteAreLeftOut) {
  BalanceChart chart = FourBatches();
  chart.batches[0].left = NAN;
  chart.batches[1].limit = NAN;
  EXPECT_THAT(PictureOf(chart, kPictureSize, Look{}).hits, SizeIs(3));
  chart.batches = {{NAN, 5, 5, BalanceState::kBalanced, 1}};
  EXPECT_THAT(PictureOf(chart, kPictureSize, Look{}).hits, IsEmpty());
}

TEST(BalancePicture, AMarkHasTheMomentAndTheLimitOfItsBatch) {
  Balance balance;
  balance.notes.units = "KG";
  balance.lines = {{.transaction = 7,
                    .date = std::chrono::year(1970) / 1 / 3,
                    .left = -60,
                    .state = BalanceState::kOut,
                    .time = TimeOfDay{12, 0, 0},
                    .limit = 50},
                   {.transaction = 8, .left = 3}};
  const BalanceChart chart = BalanceChartOf(balance);
  EXPECT_EQ(chart.units, "KG");
  ASSERT_THAT(chart.batches, SizeIs(2));
  EXPECT_EQ(chart.batches[0].day, 2.5);
  EXPECT_EQ(chart.batches[0].left, -60);
  EXPECT_EQ(chart.batches[0].limit, 50);
  EXPECT_EQ(chart.batches[0].transaction, 7);
  EXPECT_EQ(PictureOf(chart, kPictureSize, Look{}).hits.size(), 1U);
}

}  // namespace
}  // namespace vrx::testing
