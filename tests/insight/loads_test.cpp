#include "insight/loads.h"

#include <string>

#include <gmock/gmock.h>

#include "insight/insight_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using SingleLoads = InsightTest;

TEST_F(SingleLoads, OfNothingAreNone) {
  const Loads loads = ReadLoads(database, {});
  EXPECT_EQ(loads.n, 0);
  EXPECT_THAT(loads.dots, IsEmpty());
  EXPECT_THAT(loads.ranges, IsEmpty());
  EXPECT_THAT(loads.largest, IsEmpty());
}

TEST_F(SingleLoads, HaveTheMomentAndTheRowOfEachDeviation) {
  Load(1, "CORN", 1000, 1015, "'1', '2026-01-05', '12:00:00'");
  Load(2, "CORN", 1000, 990, "'1', '2026-01-06', NULL");
  const Loads loads = ReadLoads(database, {});
  ASSERT_THAT(loads.dots, SizeIs(2));
  EXPECT_EQ(loads.dots[0].day, 20458.5);  // days since 1970
  EXPECT_EQ(loads.dots[0].percent, 1.5);
  EXPECT_EQ(loads.dots[0].record, 1);
  EXPECT_EQ(loads.dots[1].day, 20459);
  EXPECT_EQ(loads.dots[1].percent, -1);
}

TEST_F(SingleLoads, ForgottenOnesAreListedAndAreNoDeviation) {
  Load(1, "CORN", 1000, 1015);
  Load(1, "HAY", 300, 0);
  Load(1, "SALT", 0, 4);
  const Loads loads = ReadLoads(database, {});
  EXPECT_EQ(loads.n, 1);
  EXPECT_EQ(loads.not_loaded_count, 1);
  ASSERT_THAT(loads.not_loaded, SizeIs(1));
  EXPECT_EQ(loads.not_loaded[0].ingredient, "HAY");
  EXPECT_EQ(loads.not_loaded[0].target, 300);
  EXPECT_EQ(loads.not_loaded[0].operator_id, "1");
  EXPECT_THAT(loads.dots, SizeIs(1));
}

TEST_F(SingleLoads, TheFiveLargestGoByWeightAndEqualOnesByTheirPlace) {
  for (const int difference : {3, -80, 7, 80, 0, 200, -12, 9}) {
    Load(1, "CORN" + std::to_string(difference), 1000, 1000 + difference);
  }
  std::vector<double> differences;
  for (const LoadLine& line : ReadLoads(database, {}).largest) {
    differences.push_back(line.difference);
  }
  EXPECT_THAT(differences, ElementsAre(200, -80, 80, -12, 9));
}

TEST_F(SingleLoads, AreThoseOfTheIngredientOrThePen) {
  Load(1, "CORN", 1000, 1015);
  Load(1, "HAY", 300, 330);
  Store(
      "(1, 'STEERS', 'FEED', '2', NULL, 'A01', 700, 0, 690, '2026-01-05', '09:00:00'),"
      "(1, 'STEERS', 'FEED', '2', NULL, 'A02', 600, 0, 655, '2026-01-05', '09:05:00')");
  const Loads hay = ReadLoads(database, {.about = {.ingredient = "HAY"}});
  ASSERT_THAT(hay.largest, SizeIs(1));
  EXPECT_EQ(hay.largest[0].percent, 10);
  const Loads pen = ReadLoads(database, {.about = {.pen = "A02"}, .deliveries = true});
  ASSERT_THAT(pen.largest, SizeIs(1));
  EXPECT_EQ(pen.largest[0].pen, "A02");
  EXPECT_EQ(pen.largest[0].difference, 55);
}

TEST_F(SingleLoads, RangesCountEveryLoadAndWhatIsAtTheLimitIsNotWithinIt) {
  for (const double actual : {980.0, 981.0, 1000.0, 1019.9, 1020.0, 5000.0}) {
    Load(1, "CORN", 1000, actual);
  }
  std::int64_t within = 0;
  std::int64_t all = 0;
  for (const DeviationRange& range : ReadLoads(database, {}).ranges) {
    all += range.count;
    within += range.from >= -2 && range.to <= 2 ? range.count : 0;
  }
  EXPECT_EQ(all, 6);
  EXPECT_EQ(within, 3);
}

}  // namespace
}  // namespace vrx::testing
