#include "insight/batches.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "insight/insight_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

class WholeBatches : public InsightTest {
 protected:
  // A load and a delivery of a batch on one day.
  void Batch(int number, const std::string& day, double loaded, double fed) {
    const std::string more = "'" + day + "', '08:00:00')";
    Store("(" + std::to_string(number) + ", 'STEERS', 'BATCH', '1', 'CORN', NULL, 0, " +
          std::to_string(loaded) + ", 0, " + more);
    Store("(" + std::to_string(number) + ", 'STEERS', 'FEED', '1', NULL, 'A01', 0, 0, " +
          std::to_string(fed) + ", " + more);
  }
  // Rows "L 08:00" and "F 09:00", also "L 2026-01-06 00:10".
  void Rows(int number, const std::vector<std::string>& rows) {
    for (const std::string& row : rows) {
      const bool dated = row.size() > 10;
      const std::string time = row == "L" ? "NULL" : "'" + row.substr(row.size() - 5) + ":00'";
      Store("(" + std::to_string(number) + ", 'STEERS', '" +
            (row[0] == 'L' ? "BATCH', '1', 'CORN', NULL" : "FEED', '1', NULL, 'A01'") +
            ", 0, 1, 1, '" + (dated ? row.substr(2, 10) : "2026-01-05") + "', " + time + ")");
    }
  }
  std::string TimesOf(int number) {
    for (const BatchTimes& batch : ReadTimes(database, {}).batches) {
      if (batch.transaction == number) {
        return batch.left_out ? "left out"
                              : Shown(batch.preparing) + " " + Shown(batch.waiting) + " " +
                                    Shown(batch.feeding);
      }
    }
    return "";
  }
  std::vector<std::string> States(const BalanceQuestion& question) {
    std::vector<std::string> states;
    for (const BalanceLine& line : ReadBalance(database, question).lines) {
      states.push_back(std::to_string(*line.transaction) + " " + std::string(TextOf(line.state)));
    }
    return states;
  }
};

TEST_F(WholeBatches, AreOutOfBalanceBeyondTheLargerLimit) {
  SetUnit("KG");
  Batch(1, "2026-01-05", 1000, 950);     // 5 %, but 50 kg
  Batch(2, "2026-01-05", 1000, 949.9);   // out
  Batch(3, "2026-01-05", 10000, 10200);  // 2 %
  Batch(4, "2026-01-05", 10000, 10200.1);
  Load(5, "CORN", 10, 10);
  Store("(6, 'STEERS', 'FEED', '1', NULL, 'A01', 0, 0, 30, '2026-01-05', '08:00:00')");
  EXPECT_THAT(States({}), ElementsAre("2 out", "4 out", "5 never fed", "6 never loaded"));
  EXPECT_THAT(States({.all = true}), ElementsAre("1 balanced", "2 out", "3 balanced", "4 out",
                                                 "5 never fed", "6 never loaded"));
  EXPECT_THAT(States({.percent = 6, .weight = {10}}), ElementsAre("5 never fed", "6 never loaded"));
  const Balance answer = ReadBalance(database, {});
  EXPECT_EQ(answer.batches, 6);
  EXPECT_EQ(answer.out, 2);
  EXPECT_EQ(answer.never_fed, 1);
  EXPECT_EQ(answer.never_loaded, 1);
  EXPECT_EQ(answer.lines[0].left, 50.1);
  EXPECT_EQ(answer.lines[0].left_percent, 5.01);
  EXPECT_EQ(answer.lines[2].left, 10);
  EXPECT_EQ(answer.lines[2].fed, std::nullopt);
  EXPECT_EQ(answer.lines[3].left, -30);
  EXPECT_EQ(answer.lines[3].loaded, std::nullopt);
  EXPECT_EQ(answer.lines[3].left_percent, std::nullopt);
}

// 50 kg are 110.231... lb.
TEST_F(WholeBatches, HaveTheLimitOfBalanceInKilograms) {
  Batch(1, "2026-01-05", 1000, 889.769);
  Batch(2, "2026-01-05", 1000, 889.768);
  EXPECT_THAT(States({}), ElementsAre("2 out"));
}

TEST_F(WholeBatches, HaveTheLargerLimitAndTheTimeOfTheFirstRow) {
  SetUnit("KG");
  Load(1, "CORN", 1000, 1000, "'1', '2026-01-05', '06:30:00'");
  Load(2, "CORN", 10000, 10000, "'1', '2026-01-05', NULL");
  const Balance answer = ReadBalance(database, {});
  EXPECT_EQ(answer.lines.at(0).limit, 50);
  EXPECT_EQ(answer.lines[0].time, (TimeOfDay{6, 30, 0}));
  EXPECT_EQ(answer.lines.at(1).limit, 200);
  EXPECT_EQ(answer.lines[1].time, std::nullopt);
}

TEST_F(WholeBatches, HaveAMedianOfThirtyDays) {
  Batch(1, "2026-01-01", 100, 99);
  Batch(2, "2026-01-02", 100, 96);
  Batch(3, "2026-01-30", 200, 190);
  Batch(4, "2026-01-31", 100, 110);
  Batch(5, "2026-01-31", 0, 0);
  const std::vector<BalanceDay> days = ReadBalance(database, {}).days;
  ASSERT_EQ(days.size(), 4U);
  EXPECT_EQ(days[0].median, 1);
  EXPECT_EQ(days[1].median, 2.5);
  EXPECT_EQ(days[2].left_percent, 5);
  EXPECT_EQ(days[2].median, 4);  // 1, 4, 5
  EXPECT_EQ(days[3].median, 4);  // 4, 5, -10
  EXPECT_EQ(days[3].left, -10);
}

TEST_F(WholeBatches, HaveTheTimesBetweenTheirRows) {
  Rows(1, {"L 08:00", "L 08:07", "L 08:07", "F 08:20", "F 08:31"});
  Rows(2, {"L 08:00", "F 08:20"});
  Rows(3, {"L 08:00"});
  Rows(4, {"F 08:00", "F 08:05"});
  Rows(5, {"F 08:00", "L 08:05", "F 08:20"});
  EXPECT_EQ(TimesOf(1), "7 13 11");
  EXPECT_EQ(TimesOf(2), "- 20 -");
  EXPECT_EQ(TimesOf(3), "- - -");
  EXPECT_EQ(TimesOf(4), "- - 5");
  EXPECT_EQ(TimesOf(5), "- -5 20");
}

TEST_F(WholeBatches, PassMidnightWithTheDateOfTheFile) {
  Rows(1, {"L 23:50", "L 00:10", "F 00:20"});
  Rows(2, {"L 23:50", "L 2026-01-06 00:10", "F 2026-01-05 00:20"});
  Rows(3, {"L 20:01", "F 08:00"});  // 12 hours and a minute
  Rows(4, {"L 20:00", "F 08:00"});  // 12 hours
  Rows(5, {"L 08:10", "L 08:09"});
  Rows(6, {"L 2026-01-08 20:01", "F 08:00"});
  Rows(7, {"L 08:10", "L"});
  Rows(8, {"L 2025-12-31 23:55", "F 2026-01-01 00:05"});
  EXPECT_EQ(TimesOf(1), "20 10 -");
  EXPECT_EQ(TimesOf(2), "20 10 -");
  EXPECT_EQ(TimesOf(3), "- 719 -");
  EXPECT_EQ(TimesOf(4), "left out");
  EXPECT_EQ(TimesOf(5), "left out");
  EXPECT_EQ(TimesOf(6), "- 719 -");
  EXPECT_EQ(TimesOf(7), "left out");
  EXPECT_EQ(TimesOf(8), "- 10 -");
}

TEST_F(WholeBatches, HaveQuartilesOfTimesByRecipeAndByOperator) {
  Rows(1, {"L 08:00", "L 08:04"});
  Rows(2, {"L 08:00", "L 08:09"});
  Rows(3, {"L 08:00", "L 07:00"});
  Store(
      "(4, 'HEIFER', 'BATCH', '10', 'CORN', NULL, 0, 1, 0, '2026-01-05', '08:00:00'), "
      "(4, 'STEERS', 'BATCH', '2', 'CORN', NULL, 0, 1, 0, '2026-01-05', '08:01:30')");
  const Times by_recipe = ReadTimes(database, {});
  ASSERT_EQ(by_recipe.groups.size(), 2U);
  EXPECT_EQ(by_recipe.groups[0].key, "HEIFER");
  EXPECT_EQ(by_recipe.groups[0].preparing.median, 1.5);
  EXPECT_EQ(by_recipe.groups[1].batches, 2);
  EXPECT_EQ(by_recipe.groups[1].left_out, 1);
  EXPECT_EQ(by_recipe.groups[1].preparing.q1, 5.25);
  EXPECT_EQ(by_recipe.groups[1].preparing.median, 6.5);
  EXPECT_EQ(by_recipe.groups[1].preparing.q3, 7.75);
  EXPECT_EQ(by_recipe.groups[1].waiting.median, std::nullopt);
  const Times by_operator = ReadTimes(database, {.by = TimesKey::kOperator});
  EXPECT_EQ(by_operator.groups[0].key, "1");
  EXPECT_EQ(by_operator.groups[1].key, "10");
}

}  // namespace
}  // namespace vrx::testing
