#include "legacy/field_value.h"

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/date.h"

namespace vrx::testing {
namespace {

double StoredSingle(float single) {
  const FieldRule rule{.column = "Ing01Wt", .kind = FieldKind::kReal};
  Repairs repairs;
  return std::get<double>(ConvertField(rule, single, {}, repairs));
}

TEST(FieldValue, StoresASingleAsItsDecimalOfSevenDigits) {
  EXPECT_EQ(StoredSingle(37.9F), 37.9);
  EXPECT_EQ(StoredSingle(0.1F), 0.1);
  EXPECT_EQ(StoredSingle(1234.567F), 1234.567);
  EXPECT_EQ(StoredSingle(-2.5F), -2.5);
  EXPECT_EQ(StoredSingle(0.0F), 0.0);
  EXPECT_EQ(StoredSingle(1e20F), 1e20);
}

TEST(FieldValue, StoresEveryWeightOfAScaleAsItWasWritten) {
  for (int tenths = 0; tenths < 200000; ++tenths) {
    const double written = tenths / 10.0;
    ASSERT_EQ(StoredSingle(static_cast<float>(written)), written) << tenths;
  }
}

TEST(FieldValue, StoresADoubleAsItIs) {
  const FieldRule rule{.column = "Target", .kind = FieldKind::kReal};
  Repairs repairs;
  EXPECT_EQ(std::get<double>(ConvertField(rule, 0.1 + 0.2, {}, repairs)), 0.1 + 0.2);
  EXPECT_TRUE(repairs.empty());
}

TEST(FieldValue, ClampsAWholeNumberAndTellsIt) {
  const FieldRule rule{
      .column = "DryMatter%", .kind = FieldKind::kWhole, .smallest = 0, .largest = 100};
  Repairs repairs;
  EXPECT_EQ(std::get<std::int64_t>(ConvertField(rule, std::int32_t{130}, {}, repairs)), 100);
  EXPECT_THAT(repairs, ::testing::ElementsAre("DryMatter% held 130; 100 was stored"));
}

TEST(JetDate, CountsDaysFrom1899) {
  const auto stored = [](double days) {
    const auto moment = ToMoment({days});
    return StoredText(moment->date) + " " + StoredText(moment->time);
  };
  EXPECT_EQ(stored(0), "1899-12-30 00:00:00");
  EXPECT_EQ(stored(40000.75), "2009-07-06 18:00:00");
  EXPECT_EQ(stored(-1.25), "1899-12-29 06:00:00");
  // To the nearest second.
  EXPECT_EQ(stored(36585.999999), "2000-03-01 00:00:00");
}

TEST(JetDate, KeepsEverySecondOfADay) {
  for (int second = 0; second < 86400; ++second) {
    const auto moment = ToMoment({40000 + second / 86400.0});
    ASSERT_TRUE(moment);
    ASSERT_EQ(moment->time.hour * 3600 + moment->time.minute * 60 + moment->time.second, second);
  }
}

TEST(JetDate, RefusesWhatIsNoDate) {
  EXPECT_FALSE(ToMoment({std::numeric_limits<double>::quiet_NaN()}));
  EXPECT_FALSE(ToMoment({std::numeric_limits<double>::infinity()}));
  EXPECT_FALSE(ToMoment({1e300}));
  EXPECT_FALSE(ToMoment({-800000}));
  EXPECT_FALSE(ToMoment({2958466}));  // 10000-01-01
  EXPECT_TRUE(ToMoment({2958465}));
}

}  // namespace
}  // namespace vrx::testing
