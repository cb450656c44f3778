#include "insight/report_period.h"

#include <chrono>
#include <string>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

std::string Parsed(PeriodKind kind, const std::string& text) {
  const auto period = ParsePeriod(kind, text);
  return period ? StoredText(period->from) + " to " + StoredText(period->to) : "none";
}

TEST(ReportPeriods, ADayIsItself) {
  EXPECT_EQ(Parsed(PeriodKind::kDay, "2026-02-28"), "2026-02-28 to 2026-02-28");
  for (const char* const none :
       {"2026-02-29", "2026-2-28", "2026-02", "2026-W05", "", "2026-02-28 "}) {
    EXPECT_EQ(Parsed(PeriodKind::kDay, none), "none") << none;
  }
}

TEST(ReportPeriods, AMonthIsAllItsDays) {
  EXPECT_EQ(Parsed(PeriodKind::kMonth, "2024-02"), "2024-02-01 to 2024-02-29");
  EXPECT_EQ(Parsed(PeriodKind::kMonth, "2026-12"), "2026-12-01 to 2026-12-31");
  for (const char* const none : {"2026-13", "2026-00", "2026-1", "2026", "2026-02-01"}) {
    EXPECT_EQ(Parsed(PeriodKind::kMonth, none), "none") << none;
  }
}

TEST(ReportPeriods, AWeekIsFromMondayToSunday) {
  EXPECT_EQ(Parsed(PeriodKind::kWeek, "2026-W05"), "2026-01-26 to 2026-02-01");
  for (const char* const none : {"2026-W00", "2026-W5", "2026-05", "2026W05", "2026-w05", "W05",
                                 "2026-W99", "2026-W005", "2026-W+5", "2026-W"}) {
    EXPECT_EQ(Parsed(PeriodKind::kWeek, none), "none") << none;
  }
}

TEST(ReportPeriods, TheFirstAndTheLastWeekReachIntoTheOtherYear) {
  EXPECT_EQ(Parsed(PeriodKind::kWeek, "2026-W01"), "2025-12-29 to 2026-01-04");
  EXPECT_EQ(Parsed(PeriodKind::kWeek, "2026-W53"), "2026-12-28 to 2027-01-03");
  EXPECT_EQ(Parsed(PeriodKind::kWeek, "2025-W53"), "none");
  EXPECT_EQ(Parsed(PeriodKind::kWeek, "2025-W52"), "2025-12-22 to 2025-12-28");
  EXPECT_EQ(Parsed(PeriodKind::kWeek, "2027-W01"), "2027-01-04 to 2027-01-10");
}

TEST(ReportPeriods, YearsHaveFourDigits) {
  EXPECT_EQ(Parsed(PeriodKind::kWeek, "9999-W52"), "none");  // ends in the year 10000
  EXPECT_EQ(Parsed(PeriodKind::kMonth, "9999-12"), "9999-12-01 to 9999-12-31");
  EXPECT_EQ(Parsed(PeriodKind::kDay, "0000-01-01"), "none");
}

TEST(ReportPeriods, EveryDayIsInThePeriodOfItsText) {
  using std::chrono::sys_days;
  const sys_days first = std::chrono::year{2019} / 12 / 25;
  for (int i = 0; i < 5000; ++i) {
    const Date day(first + std::chrono::days(i));
    for (const PeriodKind kind : {PeriodKind::kDay, PeriodKind::kWeek, PeriodKind::kMonth}) {
      const ReportPeriod period = PeriodOf(kind, day);
      ASSERT_LE(period.from, day);
      ASSERT_GE(period.to, day);
      const auto parsed = ParsePeriod(kind, TextOf(period));
      ASSERT_TRUE(parsed) << TextOf(period);
      ASSERT_EQ(parsed->from, period.from);
      ASSERT_EQ(parsed->to, period.to);
      const Date next(sys_days(period.to) + std::chrono::days(1));
      ASSERT_EQ(PeriodOf(kind, next).from, next);
    }
  }
}

}  // namespace
}  // namespace vrx::testing
