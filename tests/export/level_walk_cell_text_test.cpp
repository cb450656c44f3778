#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "base/date.h"
#include "base/error.h"
#include "base/number.h"
#include "export/level_walk.h"

namespace vrx::testing {
namespace {

using enum ColumnContent;

std::string TextOf(const CellView& value, ColumnContent content = kWeight) {
  std::string text;
  AppendCellText(value, content, text);
  return text;
}

TEST(CellText, WritesNumbersInTheirDefaultForm) {
  EXPECT_EQ(TextOf(500.5), "500.5");
  EXPECT_EQ(TextOf(500.0), "500");
  EXPECT_EQ(TextOf(0.0), "0");
  EXPECT_EQ(TextOf(-0.0), "0");
  EXPECT_EQ(TextOf(-12.025), "-12.025");
  EXPECT_EQ(TextOf(0.05), "0.05");
  EXPECT_EQ(TextOf(1.0 / 3), "0.333333333333333");
  EXPECT_EQ(TextOf(std::int64_t{17}), "17");
}

TEST(CellText, WritesDatesAndTimesInTheirDefaultForm) {
  EXPECT_EQ(TextOf("2011-03-14", kDate), "3/14/2011");
  EXPECT_EQ(TextOf("06:10:00", kTime), "6:10:00 AM");
  EXPECT_EQ(TextOf("00:00:05", kTime), "12:00:05 AM");
  EXPECT_EQ(TextOf("12:00:00", kTime), "12:00:00 PM");
  EXPECT_EQ(TextOf("23:59:59", kTime), "11:59:59 PM");
}

TEST(CellText, KeepsTextThatIsNotAStoredDateOrTime) {
  EXPECT_EQ(TextOf("2011-02-30", kDate), "2011-02-30");
  EXPECT_EQ(TextOf("14.3.2011", kDate), "14.3.2011");
  EXPECT_EQ(TextOf("24:00:00", kTime), "24:00:00");
}

TEST(CellText, LeavesTextsAloneEvenIfTheyLookLikeDatesOrNumbers) {
  EXPECT_EQ(TextOf("2011-03-14", kText), "2011-03-14");
  EXPECT_EQ(TextOf("007.50", kNumber), "007.50");
}

TEST(CellText, IsEmptyForNull) { EXPECT_EQ(TextOf({}), ""); }

TEST(CellText, AppendsToTheText) {
  std::string text = "17,";
  AppendCellText(250.0, kWeight, text);
  EXPECT_EQ(text, "17,250");
}

TEST(CellText, RefusesAnInfiniteNumber) {
  EXPECT_THROW(TextOf(std::numeric_limits<double>::infinity()), ConversionError);
  EXPECT_THROW(TextOf(std::numeric_limits<double>::quiet_NaN()), ConversionError);
}

TEST(CellTextProperty, EveryNumberReadsAsDefaultTextWritesIt) {
  std::mt19937_64 random(20110314);
  std::uniform_int_distribution<std::int64_t> digits(-999'999'999, 999'999'999);
  std::uniform_int_distribution<int> decimals(-8, 9);
  for (int round = 0; round < 200'000; ++round) {
    const double decimal = static_cast<double>(digits(random)) / std::pow(10.0, decimals(random));
    ASSERT_EQ(TextOf(decimal), DefaultText(decimal));
    ASSERT_EQ(TextOf(std::nextafter(decimal, 1e18)), DefaultText(std::nextafter(decimal, 1e18)));
    const auto whole = static_cast<std::int64_t>(random()) >> (round % 64);
    ASSERT_EQ(TextOf(whole), DefaultText(whole));
  }
}

TEST(CellTextProperty, EveryDateOfACenturyReadsAsDefaultTextWritesIt) {
  const std::chrono::sys_days last = std::chrono::year{2060} / 12 / 31;
  for (std::chrono::sys_days day = std::chrono::year{1960} / 1 / 1; day <= last;
       day += std::chrono::days{1}) {
    ASSERT_EQ(TextOf(StoredText(Date(day)), kDate), DefaultText(Date(day)));
  }
}

TEST(CellTextProperty, EveryTimeOfTheDayReadsAsDefaultTextWritesIt) {
  for (int second = 0; second < 24 * 3600; ++second) {
    const TimeOfDay time{second / 3600, second / 60 % 60, second % 60};
    ASSERT_EQ(TextOf(StoredText(time), kTime), DefaultText(time));
  }
}

}  // namespace
}  // namespace vrx::testing
