#include "chart/scale.h"

#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace vrx::testing {
namespace {

using std::chrono::year;
using ::testing::ElementsAre;

std::vector<std::string> TickTexts(const std::vector<Tick>& ticks) {
  std::vector<std::string> texts;
  for (const Tick& tick : ticks) {
    texts.push_back(tick.below.empty() ? tick.text : tick.text + '/' + tick.below);
  }
  return texts;
}

double Day(int y, unsigned month, unsigned day) {
  return DayNumber(year(y) / static_cast<int>(month) / static_cast<int>(day));
}

TEST(Scale, PutsItsEndsAndMiddleWhereTheyBelong) {
  const Scale scale{.from = -2, .to = 6, .low = 100, .high = 20};
  EXPECT_EQ(scale.At(-2), 100);
  EXPECT_EQ(scale.At(2), 60);
  EXPECT_EQ(scale.At(6), 20);
}

TEST(Scale, StepsAreOneTwoOrFiveTimesAPowerOfTen) {
  EXPECT_DOUBLE_EQ(NiceStep(10, 10), 1);
  EXPECT_DOUBLE_EQ(NiceStep(10, 9), 2);
  EXPECT_DOUBLE_EQ(NiceStep(10, 5), 2);
  EXPECT_DOUBLE_EQ(NiceStep(10, 4), 5);
  EXPECT_DOUBLE_EQ(NiceStep(10, 1), 10);
  EXPECT_DOUBLE_EQ(NiceStep(0.7, 7), 0.1);
  EXPECT_DOUBLE_EQ(NiceStep(86000, 6), 20000);
}

TEST(Scale, NumberTicksHaveTheDecimalsThatTheyNeed) {
  EXPECT_THAT(TickTexts(NumberTicks(-2, 2, 4)), ElementsAre("-2", "-1", "0", "1", "2"));
  EXPECT_THAT(TickTexts(NumberTicks(0, 1.05, 3)), ElementsAre("0.0", "0.5", "1.0"));
  EXPECT_THAT(TickTexts(NumberTicks(0.01, 0.06, 3)), ElementsAre("0.02", "0.04", "0.06"));
  EXPECT_THAT(TickTexts(NumberTicks(-30, 4600, 3)), ElementsAre("0", "2000", "4000"));
}

TEST(Scale, NumberTicksIncludeEndsThatAreMultiples) {
  EXPECT_THAT(TickTexts(NumberTicks(0.1, 0.3, 2)), ElementsAre("0.1", "0.2", "0.3"));
}

TEST(Scale, DayNumbersCountFromTheFirstOf1970) {
  EXPECT_EQ(Day(1970, 1, 1), 0);
  EXPECT_EQ(Day(2026, 1, 12), 20465);
  EXPECT_EQ(DateOfDay(20465.99), year(2026) / 1 / 12);
  EXPECT_EQ(DateOfDay(-0.5), year(1969) / 12 / 31);
}

TEST(Scale, HoursNameTheirDayOnce) {
  EXPECT_THAT(TickTexts(DayTicks(20465.25, 20466.25, 4, TickSpan::kHours)),
              ElementsAre("06:00/12-Jan-26", "12:00", "18:00", "00:00/13-Jan-26", "06:00"));
}

TEST(Scale, DaysNameTheirYearOnce) {
  EXPECT_THAT(TickTexts(DayTicks(Day(2025, 12, 30), Day(2026, 1, 2), 4, TickSpan::kHours)),
              ElementsAre("30-Dec/2025", "31-Dec", "01-Jan/2026", "02-Jan"));
}

TEST(Scale, WeeksBeginOnMondays) {
  EXPECT_THAT(TickTexts(DayTicks(Day(2026, 1, 7), Day(2026, 2, 4), 5, TickSpan::kHours)),
              ElementsAre("12-Jan/2026", "19-Jan", "26-Jan", "02-Feb"));
}

TEST(Scale, MonthsAndYearsBeginOnTheirFirst) {
  const std::vector<Tick> quarters =
      DayTicks(Day(2025, 8, 2), Day(2026, 7, 30), 5, TickSpan::kDays);
  EXPECT_THAT(TickTexts(quarters), ElementsAre("Oct/2025", "Jan/2026", "Apr", "Jul"));
  EXPECT_EQ(quarters.front().value, Day(2025, 10, 1));
  EXPECT_THAT(TickTexts(DayTicks(Day(2003, 5, 1), Day(2026, 1, 1), 5, TickSpan::kDays)),
              ElementsAre("2005", "2010", "2015", "2020", "2025"));
}

TEST(Scale, NothingShorterThanADayIsMarkedForDays) {
  EXPECT_THAT(TickTexts(DayTicks(20465, 20466, 10, TickSpan::kDays)),
              ElementsAre("12-Jan/2026", "13-Jan"));
}

TEST(Scale, AnyPeriodHasFewTicks) {
  for (double days = 0.05; days < 1e6; days *= 1.37) {
    for (const int most : {2, 5, 12}) {
      const auto ticks = DayTicks(20000.3, 20000.3 + days, most, TickSpan::kHours);
      EXPECT_LE(ticks.size(), static_cast<std::size_t>(most) + 2) << days;
      if (most >= 5 && days > 0.5 && days < 4e5) {
        EXPECT_GE(ticks.size(), 1U) << days;
      }
    }
  }
}

TEST(Scale, TheReachLeavesOutTheFewThatAreFarOut) {
  std::vector<double> usual(99, 3);
  usual.push_back(-40);
  EXPECT_EQ(ReachOf(usual, 1), 4);  // 3.6 rounded up
}

TEST(Scale, TheReachIncludesTheFarthestThatIsNearTheOthers) {
  std::vector<double> values{1, 2, 3, -4};
  EXPECT_EQ(ReachOf(values, 1), 4);
  std::vector<double> none;
  EXPECT_EQ(ReachOf(none, 5), 5);
  std::vector<double> small{0.1};
  EXPECT_EQ(ReachOf(small, 5), 5);
}

}  // namespace
}  // namespace vrx::testing
