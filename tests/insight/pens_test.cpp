#include "insight/pens.h"

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>

#include "database/imports.h"
#include "insight/insight_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Pens : public InsightTest {
 protected:
  // A delivery of a batch at "2026-01-05 08:30".
  void Feed(int number, const std::string& pen, const std::string& moment, double actual,
            double target = 0, const std::string& recipe = "STEERS") {
    Store("(" + std::to_string(number) + ", '" + recipe + "', 'FEED', '2', NULL, '" + pen + "', " +
          std::to_string(target) + ", 0, " + std::to_string(actual) + ", '" + moment.substr(0, 10) +
          "', '" + moment.substr(11) + ":00')");
  }
  void LoadAt(int number, const std::string& ingredient, const std::string& day, double actual) {
    Load(number, ingredient, actual, actual, "'1', '" + day + "', '06:00:00'");
  }

  // Accounts for all rows that are stored, by one store of this day.
  void Import(const std::string& day = "2026-01-05",
              const std::function<void(ImportRecord&)>& change = {}) {
    MakeImportTables(database);
    ImportRecord import{.at = day + "T20:00:00+00:00", .units = "LB"};
    import.first_date = import.last_date = Day(day);
    if (change) {
      change(import);
    }
    AddImport(database, import);
    database.exec("INSERT INTO ImportedBatches SELECT " + std::to_string(import.number) +
                  ", 0, [Transaction], 'new', '', '', count(*) - (SELECT ifnull(sum(Rows), 0) FROM "
                  "ImportedBatches AS B WHERE B.[Transaction] = T.[Transaction]) FROM Transactions "
                  "AS T GROUP BY [Transaction]");
  }

  std::string HoldingOf(const std::string& pen, const std::string& on, int days = 2,
                        double division = 0) {
    const Holding answer = ReadHolding(database, {.ingredients = {"MEDICATED"},
                                                  .days = days,
                                                  .on = *Day(on),
                                                  .pen = pen,
                                                  .division = division});
    return Shown(answer.lines).at(0) +
           (answer.lines[0].why.empty() ? "" : ": " + answer.lines[0].why);
  }
};

// 60 of 300 are medicated: a fifth of each delivery, and of the 30 that stayed.
TEST_F(Pens, AnIngredientIsTracedForward) {
  LoadAt(7, "CORN", "2026-01-05", 240);
  LoadAt(7, "MEDICATED", "2026-01-05", 40);
  LoadAt(7, "MEDICATED", "2026-01-05", 20);
  LoadAt(8, "CORN", "2026-01-05", 100);
  Feed(7, "A02", "2026-01-06 00:10", 100);
  Feed(7, "A01", "2026-01-05 23:50", 170);
  EXPECT_THAT(Shown(TraceIngredient(database, {.ingredient = "MEDICATED"}).lines),
              ElementsAre("7 2026-01-06 STEERS 2 A02 MEDICATED 20 20 %",
                          "7 2026-01-05 STEERS 2 A01 MEDICATED 34 20 %",
                          "7 2026-01-05 STEERS 1 stayed MEDICATED 6 20 %"));
}

TEST_F(Pens, ABatchHoldsWhatWasLoadedWhateverItWeighs) {
  LoadAt(1, "MEDICATED", "2026-01-05", 0);
  LoadAt(1, "CORN", "2026-01-05", 100);
  Feed(1, "A01", "2026-01-05 08:00", 100);
  LoadAt(2, "MEDICATED", "2026-01-05", 0);
  Feed(2, "A01", "2026-01-05 09:00", 5);
  EXPECT_THAT(Shown(TraceIngredient(database, {.ingredient = "MEDICATED"}).lines),
              ElementsAre("1 2026-01-05 STEERS 2 A01 MEDICATED 0 0 %",
                          "1 2026-01-05 STEERS 1 stayed MEDICATED 0 0 %",
                          "2 2026-01-05 STEERS 2 A01 MEDICATED - - %",
                          "2 2026-01-05 STEERS 1 stayed MEDICATED - - %"));
}

TEST_F(Pens, APenIsTracedBackward) {
  LoadAt(7, "HAY", "2026-01-05", 100);
  LoadAt(7, "CORN", "2026-01-05", 200);
  Feed(7, "A01", "2026-01-05 08:00", 30);
  Feed(7, "A02", "2026-01-05 08:00", 30);
  Feed(7, "A01", "2026-01-05 08:10", 60);
  Feed(9, "A01", "2026-01-05 08:20", 60);
  EXPECT_THAT(Shown(TracePen(database, {.pen = "A01"}).lines),
              ElementsAre("7 2026-01-05 STEERS 2 A01 CORN 20 66.666666666666671 %",
                          "7 2026-01-05 STEERS 2 A01 HAY 10 33.333333333333336 %",
                          "7 2026-01-05 STEERS 2 A01 CORN 40 66.666666666666671 %",
                          "7 2026-01-05 STEERS 2 A01 HAY 20 33.333333333333336 %",
                          "9 2026-01-05 STEERS 2 A01 - - - %"));
  EXPECT_THROW((void)TracePen(database, {}), QuestionError);
  EXPECT_THROW((void)TraceIngredient(database, {}), QuestionError);
}

// Batch 1 is medicated and left empty; batch 5 is not and does not follow it by number.
class HoldingOfAPen : public Pens {
 protected:
  HoldingOfAPen() {
    LoadAt(1, "MEDICATED", "2026-01-05", 100);
    Feed(1, "A01", "2026-01-05 08:00", 100);
    LoadAt(3, "CORN", "2026-01-05", 100);
    LoadAt(5, "CORN", "2026-01-05", 100);
  }
};

TEST_F(HoldingOfAPen, BeginsWithTheFirstDeliveryWithoutTheIngredient) {
  Import();
  EXPECT_EQ(HoldingOf("A01", "2026-01-05"),
            "A01 2026-01-05T08:00 - - held: no delivery without the ingredient since");
  Feed(5, "A01", "2026-01-06 09:30", 20);
  Feed(5, "A02", "2026-01-06 09:40", 20);
  Import("2026-01-06");
  EXPECT_EQ(HoldingOf("A01", "2026-01-07"),
            "A01 2026-01-05T08:00 2026-01-06T09:30 2026-01-08T09:30 held");
  EXPECT_EQ(HoldingOf("A01", "2026-01-08"),
            "A01 2026-01-05T08:00 2026-01-06T09:30 2026-01-08T09:30 passed");
  EXPECT_EQ(HoldingOf("A02", "2026-01-08"), "A02 - - - not in the records");
  // Later records do not count.
  EXPECT_EQ(HoldingOf("A01", "2026-01-05"),
            "A01 2026-01-05T08:00 - - held: no delivery without the ingredient since");
}

TEST_F(HoldingOfAPen, HasPassedAtTheEndOfTheDay) {
  Feed(5, "A01", "2026-01-06 00:00", 20);
  Import();
  EXPECT_THAT(HoldingOf("A01", "2026-01-07"), HasSubstr("2026-01-08T00:00 passed"));
  EXPECT_THAT(HoldingOf("A01", "2026-01-07", 3), HasSubstr("2026-01-09T00:00 held"));
}

TEST_F(HoldingOfAPen, EqualMinutesAreInStoredOrder) {
  Feed(5, "A01", "2026-01-05 08:00", 20);
  Import();
  EXPECT_THAT(HoldingOf("A01", "2026-01-09"),
              HasSubstr("T08:00 2026-01-05T08:00 2026-01-07T08:00"));
  Feed(1, "A01", "2026-01-05 08:00", 1);
  Import();
  EXPECT_THAT(HoldingOf("A01", "2026-01-09"), HasSubstr(" - - held"));
}

TEST_F(HoldingOfAPen, IsUnknownAfterALeftover) {
  Feed(5, "A01", "2026-01-06 09:30", 20);
  LoadAt(6, "MEDICATED", "2026-01-06", 100);
  Feed(6, "A03", "2026-01-06 10:00", 90);
  LoadAt(9, "CORN", "2026-01-06", 100);
  Feed(9, "A01", "2026-01-06 11:00", 20);
  Feed(9, "A04", "2026-01-06 11:00", 20);
  Import("2026-01-06");
  EXPECT_EQ(HoldingOf("A01", "2026-01-09"),
            "A01 2026-01-05T08:00 2026-01-06T09:30 2026-01-08T09:30 unknown: batch 9 may have had "
            "what was left of batch 6");
  EXPECT_THAT(HoldingOf("A04", "2026-01-09"), HasSubstr("A04 - - - unknown: batch 9"));
  // Within the scale's division nothing is left.
  EXPECT_THAT(HoldingOf("A01", "2026-01-09", 2, 10), HasSubstr("passed"));
  EXPECT_THAT(HoldingOf("A04", "2026-01-09", 2, 9.9), HasSubstr("unknown"));
  // A later delivery empties the wagon, but not as of the day before.
  Feed(6, "A03", "2026-01-07 10:00", 10);
  Import("2026-01-07");
  EXPECT_THAT(HoldingOf("A04", "2026-01-06"), HasSubstr("unknown"));
  EXPECT_EQ(HoldingOf("A04", "2026-01-09"), "A04 - - - not in the records");
}

TEST_F(HoldingOfAPen, IsUnknownWhileAStoreIsIncomplete) {
  Feed(5, "A01", "2026-01-06 09:30", 20);
  Feed(5, "A02", "2026-01-06 09:30", 20);
  Import();
  const std::string dates = "A01 2026-01-05T08:00 2026-01-06T09:30 2026-01-08T09:30 ";
  EXPECT_EQ(HoldingOf("A01", "2026-01-08"), dates + "passed");
  const auto with = [&](const std::string& change) {
    database.exec("SAVEPOINT change; UPDATE Imports SET " + change);
    const std::string line = HoldingOf("A01", "2026-01-08");
    const std::string other = HoldingOf("A02", "2026-01-08");
    database.exec("ROLLBACK TO change; RELEASE change");
    EXPECT_EQ(line.find("unknown") == std::string::npos,
              other.find("unknown") == std::string::npos || change.find("2026-01-04") < 99);
    return line;
  };
  EXPECT_EQ(with("NotRead = 2"), dates + "unknown: import 1 has 2 feed records not read");
  EXPECT_EQ(with("LeftOut = 1"), dates + "unknown: import 1 has 1 row left out");
  EXPECT_EQ(with("Missing = '3-5,9'"), dates + "unknown: import 1 has missing numbers 3-5,9");
  // Days before the last delivery with the ingredient, and after the day that is asked for.
  EXPECT_EQ(
      with("NotRead = 2, At = '2026-01-04', FirstDate = '2026-01-04', LastDate = '2026-01-04'"),
      dates + "passed");
  EXPECT_EQ(with("NotRead = 2, FirstDate = '2026-01-09', LastDate = '2026-01-09'"),
            dates + "passed");
  // What was not read can be as new as the store.
  EXPECT_THAT(with("NotRead = 2, FirstDate = '2026-01-01', LastDate = '2026-01-01'"),
              HasSubstr("unknown"));
}

TEST_F(HoldingOfAPen, IsUnknownWithRowsThatNoStoreAccountsFor) {
  EXPECT_EQ(HoldingOf("A01", "2026-01-08"),
            "A01 2026-01-05T08:00 - - unknown: rows that no import accounts for are stored of "
            "2026-01-05");
  Import();
  EXPECT_THAT(HoldingOf("A01", "2026-01-08"), HasSubstr("held"));
  LoadAt(20, "CORN", "2026-01-04", 1);
  EXPECT_THAT(HoldingOf("A01", "2026-01-08"), HasSubstr("held"));
  LoadAt(21, "CORN", "2026-01-08", 1);
  EXPECT_THAT(HoldingOf("A01", "2026-01-08"), HasSubstr("stored of 2026-01-08"));
  EXPECT_THAT(HoldingOf("A01", "2026-01-07"), HasSubstr("held"));
}

TEST_F(HoldingOfAPen, IsUnknownWithADeliveryWithoutATime) {
  Feed(5, "A01", "2026-01-06 09:30", 20);
  Import();
  database.exec("UPDATE Transactions SET Time = NULL WHERE [Transaction] = 5 AND Type = 'FEED'");
  EXPECT_THAT(HoldingOf("A01", "2026-01-08"), HasSubstr("unknown: a delivery has no date or time"));
}

TEST_F(HoldingOfAPen, NeedsNamesOfTheRecords) {
  EXPECT_THROW((void)HoldingOf("Z99", "2026-01-08"), QuestionError);
  EXPECT_THROW((void)ReadHolding(database, {.ingredients = {"CORN", "medicated"}, .days = 1}),
               QuestionError);
  EXPECT_THROW((void)ReadHolding(database, {.ingredients = {"CORN"}, .days = 0}), QuestionError);
}

TEST_F(Pens, AreDeliveredDayByDay) {
  Feed(1, "A01", "2026-01-01 08:00", 70, 72);
  Feed(1, "A01", "2026-01-01 07:00", 10, 8, "HEIFER");
  Feed(2, "A01", "2026-01-03 07:30", 40, 40);
  Feed(3, "A01", "2026-01-07 07:20", 20, 20);
  EXPECT_THAT(Shown(ReadDelivered(database, {}).lines),
              ElementsAre("A01 2026-01-01 80 80 0 x2 mean - STEERS changed 07:00:00 - head -",
                          "A01 2026-01-02 - - - x0 mean - - - - missed head -",
                          "A01 2026-01-03 40 40 0 x1 mean - STEERS 07:30:00 30 head -",
                          "A01 2026-01-04 - - - x0 mean - - - - missed head -",
                          "A01 2026-01-05 - - - x0 mean - - - - missed head -",
                          "A01 2026-01-06 - - - x0 mean - - - - missed head -",
                          "A01 2026-01-07 20 20 0 x1 mean 20 STEERS 07:20:00 5 head -"));
  // The period chooses lines; means and medians reach back before it.
  EXPECT_THAT(
      Shown(ReadDelivered(database, {.from = Day("2026-01-07"), .to = Day("2026-01-09")}).lines),
      ElementsAre("A01 2026-01-07 20 20 0 x1 mean 20 STEERS 07:20:00 5 head -"));
  EXPECT_THAT(
      Shown(ReadDelivered(database, {.from = Day("2026-01-02"), .to = Day("2026-01-02")}).lines),
      ElementsAre("A01 2026-01-02 - - - x0 mean - - - - missed head -"));
}

TEST_F(Pens, ComparesTheFirstTimeWithFourteenDays) {
  Feed(1, "A01", "2026-01-01 06:00", 10);
  Feed(2, "A01", "2026-01-02 07:00", 10);
  Feed(3, "A01", "2026-01-15 07:10", 10);
  Feed(4, "A01", "2026-01-16 07:10", 10);
  const auto lines = ReadDelivered(database, {}).lines;
  EXPECT_EQ(lines[14].first_shift, 40);  // 06:00 and 07:00
  EXPECT_EQ(lines[15].first_shift, 5);   // 07:00 and 07:10
}

// The days of a period are read without all that was before and after them.
TEST_F(Pens, HaveTheSameLinesOfAPeriodAsOfAllDays) {
  Feed(1, "A01", "2025-01-01 08:00", 10);  // long before
  Feed(2, "A02", "2025-11-20 08:00", 20, 20, "HEIFER");
  Feed(3, "A02", "2025-11-20 09:00", 20, 20, "BULLS");
  Feed(4, "A03", "2025-12-28 06:00", 30);  // within the days of a median
  Feed(5, "A05", "2025-12-01 06:00", 30);  // not fed again
  Feed(5, "A06", "2025-12-01 06:00", 30);  // long before and long after
  for (const std::string day : {"2026-01-04", "2026-01-06"}) {
    Feed(6, "A01", day + " 07:00", 11);
    Feed(7, "A02", day + " 08:00", 22);
    Feed(8, "A03", day + " 09:00", 33);
    Feed(9, "A04", day + " 10:00", 44);  // new
  }
  Feed(10, "A02", "2026-03-01 08:00", 50);
  Feed(10, "A06", "2026-03-01 08:00", 50);
  Feed(10, "A07", "2026-03-01 08:00", 50);  // only after
  const std::vector<DeliveredLine> all = ReadDelivered(database, {}).lines;
  for (const auto& [from, to, lines] :
       {std::tuple("2026-01-03", "2026-12-31", 4 + 58 + 4 + 3 + 58 + 1),
        std::tuple("2026-01-03", "2026-01-07", 4 + 5 + 4 + 3 + 5),
        std::tuple("2026-01-05", "2026-01-05", 5), std::tuple("2026-02-10", "2026-02-11", 4)}) {
    std::vector<DeliveredLine> expected;
    for (const DeliveredLine& line : all) {
      if (line.date >= *Day(from) && line.date <= *Day(to)) {
        expected.push_back(line);
      }
    }
    EXPECT_EQ(expected.size(), static_cast<std::size_t>(lines)) << from;
    const Question about{.from = Day(from), .to = Day(to)};
    EXPECT_EQ(Shown(ReadDelivered(database, about).lines), Shown(expected)) << from;
    EXPECT_THAT(ReadDelivered(database, about, {{"A05", {}, 1}, {"B9", {}, 1}}).unknown_pens,
                ElementsAre("B9"));
  }
}

TEST_F(Pens, AreDeliveredPerHead) {
  Feed(1, "A01", "2026-01-01 06:00", 90);
  Feed(2, "A01", "2026-01-02 06:00", 90);
  Feed(3, "A01", "2026-01-03 06:00", 90);
  const Delivered answer = ReadDelivered(
      database, {},
      {{"A01", *Day("2026-01-03"), 0}, {"A01", *Day("2026-01-02"), 60}, {"B9", {}, 1}});
  EXPECT_EQ(answer.lines[0].per_head, std::nullopt);
  EXPECT_EQ(answer.lines[1].per_head, 1.5);
  EXPECT_EQ(answer.lines[2].per_head, std::nullopt);
  EXPECT_THAT(answer.unknown_pens, ElementsAre("B9"));
}

TEST_F(Pens, AreAddedUpOverDays) {
  Feed(1, "A01", "2026-01-01 06:00", 90.1, 100);
  Feed(2, "A01", "2026-01-01 16:00", 90.2, 100);
  Feed(3, "A01", "2026-01-03 06:00", 0.1, 0, "HEIFER");
  Feed(4, "A02", "2026-01-02 06:00", 50);
  const PenTotals totals = TotalsOf(ReadDelivered(database, {}));
  ASSERT_EQ(totals.pens.size(), 2U);
  const PenTotal& first = totals.pens[0];
  EXPECT_EQ(first.pen, "A01");
  EXPECT_EQ(first.called, 200);
  EXPECT_EQ(first.delivered, 180.4);
  EXPECT_EQ(first.difference, -19.6);
  EXPECT_EQ(first.difference_percent, -9.8);
  EXPECT_EQ(first.feedings, 3);
  EXPECT_EQ(first.days, 2);
  EXPECT_EQ(first.missed_days, 1);
  EXPECT_EQ(first.recipe_changes, 1);
  EXPECT_EQ(totals.pens[1].difference_percent, std::nullopt);
  EXPECT_EQ(totals.all.delivered, 230.4);
  EXPECT_EQ(totals.all.days, 3);
}

TEST_F(Pens, AreNotAddedUpOverMissedDaysOnly) {
  Feed(1, "A01", "2026-01-01 06:00", 90, 100);
  Feed(2, "A01", "2026-01-05 06:00", 90, 100);
  const PenTotals totals =
      TotalsOf(ReadDelivered(database, {.from = Day("2026-01-02"), .to = Day("2026-01-03")}));
  ASSERT_EQ(totals.pens.size(), 1U);
  EXPECT_EQ(totals.pens[0].missed_days, 2);
  EXPECT_EQ(totals.pens[0].delivered, std::nullopt);
  EXPECT_EQ(totals.all.difference, std::nullopt);
  EXPECT_TRUE(TotalsOf({}).pens.empty());
}

}  // namespace
}  // namespace vrx::testing
