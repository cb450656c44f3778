#include "insight/use.h"

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "database/imports.h"
#include "insight/completeness.h"
#include "insight/insight_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

class UseOfIngredients : public InsightTest {
 protected:
  static std::string ErrorOf(const std::function<void()>& work) {
    try {
      work();
    } catch (const QuestionError& failure) {
      return failure.what();
    }
    return "";
  }
};

TEST_F(UseOfIngredients, HasTheCostOfTheDay) {
  Load(1, "CORN", 100, 110, "'1', '2026-01-05', '08:00:00'");
  Load(2, "CORN", 100, 95, "'1', '2026-01-07', '08:00:00'");
  Load(2, "CORN", 0, 10, "'1', '2026-01-07', '08:00:00'");
  Load(2, "HAY", 50, 50, "'1', '2026-01-07', '08:00:00'");
  UseQuestion question{.prices = ParsePrices("ingredient,price,from\r\n"
                                             "CORN,0.2,2026-01-01\r\n"
                                             "CORN,0.3,2026-01-07\r\n"
                                             "HAY,1,2026-01-08\r\n"
                                             "\"OATS, rolled\",1,2026-01-08\r\n",
                                             "prices.csv")};
  EXPECT_THAT(Shown(ReadUse(database, question).lines),
              ElementsAre("CORN 215 cost 53.5 over 2 under 1.5 net 0.5 shrink -",
                          "HAY 50 cost - over - under - net - shrink -"));
  EXPECT_THAT(ReadUse(database, question).unknown, ElementsAre("OATS, rolled"));
  question.about.from = Day("2026-01-07");
  EXPECT_THAT(Shown(ReadUse(database, question).lines)[0],
              "CORN 105 cost 31.5 over 0 under 1.5 net -1.5 shrink -");
}

// 1000 and 400 received, 1300 used, 30 left: 70 of 1400 are gone.
TEST_F(UseOfIngredients, HasTheShrinkOfTheStock) {
  Load(1, "CORN", 1300, 1300, "'1', '2026-01-05', '08:00:00'");
  UseQuestion question{.stock = ParseStock("CORN,2026-01-31,500,300,30\n"
                                           "CORN,2026-01-01,1000,100,900\n"
                                           "CORN,2026-02-01,7,7,7\n",
                                           "stock.csv")};
  question.about.to = Day("2026-01-31");
  EXPECT_THAT(Shown(ReadUse(database, question).lines),
              ElementsAre("CORN 1300 cost - over - under - net - shrink 5"));
  question.stock = {{"CORN", *Day("2026-01-02"), 0, 0, 0}};
  EXPECT_EQ(ReadUse(database, question).lines[0].shrink, std::nullopt);
}

TEST_F(UseOfIngredients, WrongFilesAreErrorsWithTheLine) {
  EXPECT_EQ(ErrorOf([] { (void)ParsePrices("a,b,c\nCORN,cheap,2026-01-01\n", "p.csv"); }),
            "p.csv, line 2: found 'cheap', expected a number from 0.");
  EXPECT_EQ(ErrorOf([] { (void)ParsePrices("CORN,-1,2026-01-01", "p.csv"); }),
            "p.csv, line 1: found '-1', expected a number from 0.");
  EXPECT_EQ(ErrorOf([] { (void)ParseHeadCounts("A01,2026-02-30,5", "h.csv"); }),
            "h.csv, line 1: found '2026-02-30', expected a day as YYYY-MM-DD.");
  EXPECT_EQ(ErrorOf([] { (void)ParseHeadCounts("A01,2026-02-20", "h.csv"); }),
            "h.csv, line 1: found 2 values, expected 3.");
  EXPECT_EQ(ErrorOf([] { (void)ParseStock(",2026-02-20,1,1,1", "s.csv"); }),
            "s.csv, line 1: found '', expected a name.");
  EXPECT_TRUE(ParseStock("", "s.csv").empty());
  const auto heads =
      ParseHeadCounts("\xEF\xBB\xBFpen,from,heads\n\n\"A \"\"1\"\"\",2026-01-05,80", "h");
  ASSERT_EQ(heads.size(), 1U);
  EXPECT_EQ(heads[0].pen, "A \"1\"");
  EXPECT_EQ(heads[0].heads, 80);
}

// Three stores: the second has faults, the third was stored before its dates.
TEST_F(UseOfIngredients, AStatementTellsWhatIsKnownToBeIncomplete) {
  Load(1, "CORN", 10, 10, "'1', '2026-01-02', '08:00:00'");
  MakeImportTables(database);
  const auto add = [&](ImportRecord import, BatchState state, std::optional<std::int32_t> number) {
    AddImport(database, import);
    AddImportedBatches(database, {{.import = import.number,
                                   .transaction = number,
                                   .state = state,
                                   .rows = state == BatchState::kSame ? 0 : 1}});
  };
  Load(2, "CORN", 10, 12, "'1', '2026-01-05', '08:00:00'");
  add({.at = "2026-01-05T20:00:00+01:00",
       .units = "LB",
       .file_low = 1,
       .file_high = 20,
       .first_date = Day("2026-01-05"),
       .last_date = Day("2026-01-05")},
      BatchState::kNew, 2);
  Load(3, "CORN", 10, 12, "'1', '2026-01-09', '08:00:00'");
  add({.at = "2026-01-09T20:00:00+01:00",
       .file = "2.QXT",
       .units = "LB",
       .left_out = 3,
       .not_read = 2,
       .file_low = 25,
       .file_high = 30,
       .missing = "27",
       .first_date = Day("2026-01-04"),
       .last_date = Day("2026-01-10")},
      BatchState::kContinued, 3);
  add({.at = "2026-02-09T20:00:00+01:00", .units = "KG"}, BatchState::kSame, 3);
  EXPECT_THAT(Shown(ReadStatement(database, Day("2026-01-05"), Day("2026-01-31"))),
              ElementsAre("2 imports, 2 batches, 2 loads 24, 0 deliveries -",
                          "not read 2, left out 3, same 0, continued 1, conflicts 0",
                          "never fed 2, out 0, not recorded 0", "missing in 2: 27",
                          "gap 1/2: 21-24", "3 days without 2026-01-06 2026-01-07 2026-01-08",
                          "odd in 2: 2026-01-10 in the future", "odd in 2: 2026-01-04"));
  const Statement all = ReadStatement(database, {}, {});
  EXPECT_EQ(all.imports, 3);
  EXPECT_EQ(all.same, 1);
  EXPECT_EQ(all.not_recorded, 1);
  EXPECT_EQ(all.days_without, 5);
  EXPECT_EQ(all.other_units.size(), 1U);
  EXPECT_EQ(all.notes.left_out.size(), 1U);
}

TEST_F(UseOfIngredients, AStatementListsAHundredDays) {
  Load(1, "CORN", 10, 10, "'1', '2026-01-02', '08:00:00'");
  Load(2, "CORN", 10, 10, "'1', '2027-01-02', '08:00:00'");
  const Statement answer = ReadStatement(database, {}, {});
  EXPECT_EQ(answer.days_without, 364);
  EXPECT_EQ(answer.first_days_without.size(), 100U);
  EXPECT_EQ(answer.not_recorded, 2);
  EXPECT_EQ(answer.imports, 0);
}

}  // namespace
}  // namespace vrx::testing
