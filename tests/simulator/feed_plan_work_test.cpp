#include <algorithm>
#include <map>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "simulator/feed_plan.h"

namespace vrx::simulator {
namespace {

constexpr std::size_t kRoom = 65535;
constexpr Day kMonday = std::chrono::sys_days{std::chrono::year{2026} / 1 / 5};

FeedPlan Plan(int pens, long amount) {
  FeedPlan plan{.unit = 'L',
                .recipes = {{1, "STEERS", {{1, "CORN", 800, false}, {5, "MINRAL", 20, true}}},
                            {2, "COWS", {{2, "HAY", 1, false}}}},
                .pens = {}};
  for (int pen = 1; pen <= pens; ++pen) {
    plan.pens.push_back({pen, "P" + std::to_string(pen), amount});
  }
  return plan;
}

TEST(FeedingWork, FeedsEachPenOnceADay) {
  FeedingWork work(Plan(20, 700), 1);
  ASSERT_TRUE(work.FeedDay(kMonday, kRoom));
  std::map<std::string, int> fed;
  for (const Weighing& weighing : work.Weighings()) {
    if (!weighing.batched) {
      ++fed[weighing.what];
    }
  }
  EXPECT_EQ(fed.size(), 20U);
  for (const auto& [pen, times] : fed) {
    EXPECT_EQ(times, 1) << pen;
  }
}

TEST(FeedingWork, NoLoadIsMoreThanTheMixerHolds) {
  FeedingWork work(Plan(60, 900), 1);
  ASSERT_TRUE(work.FeedDay(kMonday, kRoom));
  std::map<int, int> batched;
  std::map<int, int> fed;
  for (const Weighing& weighing : work.Weighings()) {
    (weighing.batched ? batched : fed)[weighing.load] += weighing.tenths;
  }
  EXPECT_GE(batched.size(), 5U);
  for (const auto& [load, tenths] : batched) {
    EXPECT_LE(tenths, 111'000) << load;
    EXPECT_LE(fed[load], tenths) << load;
    EXPECT_GT(fed[load], tenths * 9 / 10) << load;
  }
}

TEST(FeedingWork, ThePensGoToTheRecipesInEqualRuns) {
  FeedingWork work(Plan(4, 500), 1);
  ASSERT_TRUE(work.FeedDay(kMonday, kRoom));
  std::map<std::string, std::string> recipes;
  for (const Weighing& weighing : work.Weighings()) {
    recipes[weighing.what] = weighing.recipe;
  }
  EXPECT_EQ(recipes["P1"] + " " + recipes["P2"], "STEERS STEERS");
  EXPECT_EQ(recipes["P3"] + " " + recipes["P4"], "COWS COWS");
}

TEST(FeedingWork, NoMoreIsFedThanWasBatched) {
  for (std::uint32_t seed = 0; seed < 100; ++seed) {
    FeedingWork work(Plan(6, 10), seed);
    ASSERT_TRUE(work.FeedDay(kMonday, kRoom));
    std::map<int, int> held;
    for (const Weighing& weighing : work.Weighings()) {
      EXPECT_GE(weighing.tenths, 0) << seed;
      held[weighing.load] += weighing.batched ? weighing.tenths : -weighing.tenths;
      EXPECT_GE(held[weighing.load], 0) << seed;
    }
  }
}

TEST(FeedingWork, AScaleShowsNoLessThanItsStep) {
  FeedPlan plan = Plan(1, 10);
  plan.recipes = {
      {1, "STEERS", {{1, "CORN", 1, false}, {5, "MINRAL", 1, true}, {2, "HAY", 999, false}}}};
  for (std::uint32_t seed = 0; seed < 50; ++seed) {
    FeedingWork work(plan, seed);
    ASSERT_TRUE(work.FeedDay(kMonday, kRoom));
    EXPECT_GE(work.Weighings()[0].tenths, 50) << seed;
    EXPECT_GE(work.Weighings()[1].tenths, 5) << seed;
  }
}

TEST(FeedingWork, ALoadMayFillTheMixer) {
  for (const auto& [unit, pens, loads] :
       {std::tuple{'L', 11, 1}, {'L', 12, 2}, {'K', 5, 1}, {'K', 6, 2}}) {
    FeedPlan plan = Plan(pens, 1000);
    plan.unit = unit;
    plan.recipes.pop_back();
    FeedingWork work(plan, 1);
    ASSERT_TRUE(work.FeedDay(kMonday, kRoom));
    EXPECT_EQ(work.Weighings().back().load, loads) << unit << pens;
  }
}

TEST(FeedingWork, WritesARecordForEachLoadAndFeed) {
  FeedingWork work(Plan(2, 500), 7);
  ASSERT_TRUE(work.FeedDay(kMonday, kRoom));
  const auto& done = work.Weighings();
  ASSERT_EQ(done.size(), 5U);
  const std::string records = work.Records();
  EXPECT_EQ(records.find("{BAT/FED},L\r\n[BAT],B,1,1,01052026,1,1,5,0,0,"), 0U);
  EXPECT_NE(records.find("\r\nB,2,2,01052026,1,2,0,0,"), std::string::npos);
  EXPECT_NE(records.find("\r\n\r\n[FED],B,1,1,1,06"), std::string::npos);
  const auto weight = [](int tenths) {
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
  };
  EXPECT_NE(records.find(",01052026,500.0," + weight(done[2].tenths) + "\r\nB,2,2,"),
            std::string::npos);
  EXPECT_EQ(records.substr(records.size() - 4), "\r\n\r\n");
}

// A list of a batch record.
std::string List(std::string entries) {
  for (auto count = std::count(entries.begin(), entries.end(), ',') + 1; count < 34; ++count) {
    entries += ",0";
  }
  return entries;
}

// 501 units are 488.8 of CORN and 12.2 of MINRAL. A scale has steps of 5 and, by hand, 0.5 pounds,
// or of 2 and 0.2 kilograms. The seed determines the errors of the work.
TEST(FeedingWork, TheRecordsOfADayAreTheseInEachUnit) {
  FeedPlan plan = Plan(2, 501);
  FeedingWork pounds(plan, 7);
  ASSERT_TRUE(pounds.FeedDay(kMonday, kRoom));
  EXPECT_EQ(pounds.Records(), "{BAT/FED},L\r\n[BAT],B,1,1,01052026,1," + List("1,5") + ";" +
                                  List("0611,0612") + ";" + List("490.0,12.0") + ";" +
                                  List("505.0,12.0") + "\r\nB,2,2,01052026,1," + List("2") + ";" +
                                  List("0615") + ";" + List("500.0") + ";" + List("495.0") +
                                  "\r\n\r\n[FED],B,1,1,1,0614,01052026,501.0,517.0\r\n"
                                  "B,2,2,1,0617,01052026,501.0,490.0\r\n\r\n");
  plan.unit = 'K';
  FeedingWork kilograms(plan, 7);
  ASSERT_TRUE(kilograms.FeedDay(kMonday, kRoom));
  EXPECT_EQ(kilograms.Records(),
            "{BAT/FED},K\r\n[BAT],B,1,1,01052026,1," + List("1,5") + ";" + List("0611,0612") + ";" +
                List("488.0,12.2") + ";" + List("494.0,12.2") + "\r\nB,2,2,01052026,1," +
                List("2") + ";" + List("0615") + ";" + List("502.0") + ";" + List("500.0") +
                "\r\n\r\n[FED],B,1,1,1,0614,01052026,501.0,506.2\r\n"
                "B,2,2,1,0617,01052026,501.0,498.0\r\n\r\n");
}

TEST(FeedingWork, ADayThatJustFitsIsFed) {
  FeedingWork measured(Plan(20, 700), 1);
  ASSERT_TRUE(measured.FeedDay(kMonday, kRoom));
  const std::size_t size = measured.Records().size();
  EXPECT_TRUE(FeedingWork(Plan(20, 700), 1).FeedDay(kMonday, size));
  EXPECT_FALSE(FeedingWork(Plan(20, 700), 1).FeedDay(kMonday, size - 1));
}

TEST(FeedingWork, TheClockStopsAtTheLastMinuteAndBeginsAnewEachDay) {
  FeedingWork work(Plan(1000, 10), 1);
  ASSERT_TRUE(work.FeedDay(kMonday, 1'000'000));
  const std::string first = work.Records();
  int late = 0;
  for (auto at = first.find(",2359,01052026,"); at != std::string::npos;
       at = first.find(",2359,01052026,", at + 1)) {
    ++late;
  }
  EXPECT_GT(late, 100) << "1000 pens take longer than a day";
  ASSERT_TRUE(work.FeedDay(kMonday + std::chrono::days(1), 1'000'000));
  EXPECT_NE(work.Records().find(",06"), std::string::npos);
}

TEST(FeedingWork, ADayThatDoesNotFitIsNotFed) {
  FeedingWork work(Plan(20, 700), 1);
  ASSERT_TRUE(work.FeedDay(kMonday, kRoom));
  const std::string records = work.Records();
  const std::size_t weighings = work.Weighings().size();
  EXPECT_FALSE(work.FeedDay(kMonday + std::chrono::days(1), records.size() + 100));
  EXPECT_EQ(work.Records(), records);
  EXPECT_EQ(work.Weighings().size(), weighings);
}

TEST(FeedingWork, TheLedgerHasALineForEachWeighing) {
  EXPECT_EQ(LedgerOf({{kMonday, 1, "STEERS", true, "CORN", 10855},
                      {kMonday, 1, "STEERS", false, "P1", 50}}),
            "2026-01-05,1,STEERS,BATCH,CORN,1085.5\n2026-01-05,1,STEERS,FEED,P1,5.0\n");
}

}  // namespace
}  // namespace vrx::simulator
