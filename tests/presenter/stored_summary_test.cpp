#include <chrono>

#include <gtest/gtest.h>

#include "base/date.h"
#include "presenter/import.h"

namespace vrx::testing {
namespace {

TEST(StoredSummary, SaysHowManyRecordsAsWhichTransactionsOfWhichDays) {
  const Date first{std::chrono::year{2026}, std::chrono::January, std::chrono::day{9}};
  const Date last{std::chrono::year{2026}, std::chrono::January, std::chrono::day{11}};
  StoreOutcome outcome{.stored = 198, .lowest = 109, .highest = 127};
  outcome.first_date = first;
  outcome.last_date = last;
  EXPECT_EQ(StoredSummary(outcome),
            "Stored 198 records as transactions 109 to 127, of 09-Jan-26 to 11-Jan-26.");
  outcome = {.stored = 1, .repeated = 1, .lowest = 5, .highest = 5};
  outcome.first_date = outcome.last_date = first;
  EXPECT_EQ(StoredSummary(outcome),
            "Stored 1 record as transaction 5, of 09-Jan-26. 1 record was there already.");
  EXPECT_EQ(StoredSummary({.complete = true, .repeated = 6}), "6 records were there already.");
  EXPECT_EQ(StoredSummary({}), "");
}

}  // namespace
}  // namespace vrx::testing
