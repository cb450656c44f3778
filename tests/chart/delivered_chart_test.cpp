#include <chrono>
#include <cmath>
#include <vector>

#include <gmock/gmock.h>

#include "base/date.h"
#include "chart/charts.h"
#include "chart/drawn_shapes.h"
#include "chart/sample_charts.h"

namespace vrx::testing {
namespace {

using std::chrono::year;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

DeliveredChart FiveDays() {
  return {.units = "KG",
          .days = {{.date = year(2026) / 1 / 12, .called = 100, .delivered = 100},
                   {.date = year(2026) / 1 / 13, .called = 200, .delivered = 50},
                   {.date = year(2026) / 1 / 14, .missed = true},
                   {.date = year(2026) / 1 / 15, .called = 100, .delivered = 100, .mean7 = 75},
                   {.date = year(2026) / 1 / 16, .called = 100, .delivered = 100, .mean7 = 80}}};
}

// The lines of one ink in parts that are joined.
int PartsOf(const Picture& picture, Ink ink) {
  int parts = 0;
  for (const Shape& shape : picture.shapes) {
    const auto* path = std::get_if<PathShape>(&shape.what);
    if (shape.layer == Layer::kMark && path != nullptr && path->line == ink && !path->fill) {
      for (int i = 0; i < path->path.elementCount(); ++i) {
        parts += path->path.elementAt(i).isMoveTo() ? 1 : 0;
      }
    }
  }
  return parts;
}

TEST(DeliveredPicture, BarsAreDeliveriesAndMarksWhatWasCalled) {
  const Picture picture = PictureOf(FiveDays(), kPictureSize, Look{});
  const auto bars = BoxesOf(picture, Ink::kFirst);
  const auto called = SymbolsOf(picture, Symbol::kDiamond, Ink::kSecond);
  ASSERT_THAT(bars, SizeIs(4));
  ASSERT_THAT(called, SizeIs(4));
  EXPECT_NEAR(bars[0].height(), 2 * bars[1].height(), 1e-6);
  EXPECT_NEAR(called[0].y(), bars[0].top(), 1e-6);
  EXPECT_NEAR(called[0].x(), bars[0].center().x(), 1e-6);
  EXPECT_NEAR(bars[1].bottom() - called[1].y(), 4 * bars[1].height(), 1e-6);
  EXPECT_THAT(TextsOf(picture), Contains("Weight (kg)"));
}

TEST(DeliveredPicture, AMissedDayHasACrossAndInterruptsTheLine) {
  DeliveredChart chart = FiveDays();
  EXPECT_THAT(SymbolsOf(PictureOf(chart, kPictureSize, Look{}), Symbol::kCross, Ink::kSecond),
              SizeIs(1));
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Contains("Missed day"));
  EXPECT_EQ(PartsOf(PictureOf(chart, kPictureSize, Look{}), Ink::kSecond), 2);
  EXPECT_EQ(PartsOf(PictureOf(chart, kPictureSize, Look{}), Ink::kText), 1);
  chart.days[2] = {.date = chart.days[2].date, .called = 10, .delivered = 10};
  EXPECT_THAT(TextsOf(PictureOf(chart, kPictureSize, Look{})), Not(Contains("Missed day")));
  EXPECT_EQ(PartsOf(PictureOf(chart, kPictureSize, Look{}), Ink::kSecond), 1);
}

TEST(DeliveredPicture, AnyPlaceOfADayLeadsToIt) {
  const Picture picture = PictureOf(FiveDays(), kPictureSize, Look{});
  const auto bars = BoxesOf(picture, Ink::kFirst);
  EXPECT_EQ(HitAt(picture, {bars[1].center().x(), picture.plot.top() + 3})->index, 1U);
  const double missed = SymbolsOf(picture, Symbol::kCross, Ink::kSecond).front().x();
  EXPECT_EQ(HitAt(picture, {missed, picture.plot.center().y()})->index, 2U);
}

TEST(DeliveredPicture, ADaysLabelIsBelowItsBar) {
  const Picture picture = PictureOf(FiveDays(), kPictureSize, Look{});
  for (const Shape& shape : picture.shapes) {
    const auto* text = std::get_if<TextShape>(&shape.what);
    if (text != nullptr && text->text == QLatin1String("13-Jan")) {
      EXPECT_NEAR(text->at.x(), BoxesOf(picture, Ink::kFirst)[1].center().x(), 1);
      return;
    }
  }
  FAIL() << "no label";
}

TEST(DeliveredPicture, WeightsBelowZeroHangFromTheLine) {
  DeliveredChart chart = FiveDays();
  chart.days[1].delivered = -50;
  const auto bars = BoxesOf(PictureOf(chart, kPictureSize, Look{}), Ink::kFirst);
  EXPECT_NEAR(bars[1].top(), bars[0].bottom(), 1e-6);
}

TEST(DeliveredPicture, ThreeYearsFitTheWidth) {
  const DeliveredChart chart = SampleDelivered(1100);
  const Picture picture = PictureOf(chart, kPictureSize, Look{});
  EXPECT_THAT(picture.hits, SizeIs(1100));
  EXPECT_EQ(HitAt(picture, picture.hits[500].area.center())->index, 500U);
}

TEST(DeliveredPicture, DaysWithoutAnyWeightAreNothingToShow) {
  const DeliveredChart chart{.days = {{.date = year(2026) / 1 / 12, .missed = true},
                                      {.date = year(2026) / 1 / 13, .called = NAN}}};
  EXPECT_THAT(PictureOf(chart, kPictureSize, Look{}).hits, IsEmpty());
}

TEST(DeliveredPicture, IsMadeOfTheLinesOfOnePen) {
  Delivered delivered;
  delivered.notes.units = "KG";
  const Date day = year(2026) / 1 / 12;
  delivered.lines = {{.pen = "101", .date = day, .called = 7, .delivered = 8, .mean7 = 9},
                     {.pen = "102", .date = day, .called = 1, .delivered = 1},
                     {.pen = "101", .date = year(2026) / 1 / 13, .missed = true}};
  const DeliveredChart chart = DeliveredChartOf(delivered, "101");
  EXPECT_EQ(chart.units, "KG");
  ASSERT_THAT(chart.days, SizeIs(2));
  EXPECT_EQ(chart.days[0].date, day);
  EXPECT_EQ(chart.days[0].called, 7);
  EXPECT_EQ(chart.days[0].delivered, 8);
  EXPECT_EQ(chart.days[0].mean7, 9);
  EXPECT_FALSE(chart.days[0].missed);
  EXPECT_TRUE(chart.days[1].missed);
}

}  // namespace
}  // namespace vrx::testing
