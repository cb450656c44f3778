#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "ctl/ctl_fixture.h"
#include "support/database_files.h"
#include "support/small_history.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using Json = nlohmann::ordered_json;

// The small history in pounds: batch 1 of STEERS, batch 2 of HEIFER, a delivery without a load and
// a load without anything.
class InsightCommands : public CtlTest {
 protected:
  InsightCommands() {
    SmallHistory(folder, "YARD.TDB")
        .exec(
            "UPDATE BrantockDatabase SET dBType = 'USER_TRANS_DB'; UPDATE UnitsOfMeasure SET UoM "
            "= 'LB'");
  }

  Json Answer(std::vector<std::string> args) {
    args.insert(args.begin() + 1, transactions);
    args.emplace_back("--json");
    EXPECT_EQ(Run(args), 0) << err;
    return Json::parse(out);
  }
  int Ask(std::vector<std::string> args) {
    args.insert(args.begin() + 1, transactions);
    return Run(args);
  }

  std::string transactions = (folder / "YARD.TDB").string();
};

TEST_F(InsightCommands, AccuracyHasItsKeys) {
  const Json answer = Answer({"accuracy"});
  EXPECT_EQ(answer["units"], "LB");
  EXPECT_EQ(answer["limits"].dump(),
            R"({"percent":2.0,"weight":11.023113109243878,"beyond":137.7889138655485,)"
            R"("division":0.0})");
  ASSERT_EQ(answer["groups"].size(), 3U);
  EXPECT_EQ(answer["groups"][0].dump(),
            R"({"key":{"ingredient":null},"n":0,"notLoaded":{"n":0,"target":null},)"
            R"("withoutTarget":{"n":1,"actual":0.0},"target":null,"actual":null,"net":null,)"
            R"("netPercent":null,"gross":null,"grossPercent":null,"within":null,)"
            R"("weightWithin":null,"withinWeight":null,"beyond":null,"below":null,"median":null,)"
            R"("q1":null,"q3":null,"standardized":null,"marked":null})");
  const Json& corn = answer["groups"][1];
  EXPECT_EQ(corn["key"].dump(), R"({"ingredient":"CORN"})");
  EXPECT_EQ(corn["n"], 2);
  EXPECT_EQ(corn["net"], -2.0);
  EXPECT_EQ(corn["netPercent"], -2.0 / 15);
  EXPECT_EQ(corn["median"], -0.1);
  EXPECT_EQ(answer["total"]["key"].dump(), "{}");
  EXPECT_EQ(answer["total"]["n"], 3);
  EXPECT_EQ(answer["yardstick"]["within"]["yard"], 100.0);
  EXPECT_EQ(answer["yardstick"]["within"]["place"], "above the range");
  EXPECT_EQ(answer["yardstick"]["source"], "M. C. Barry, abstract W324, 2015");
}

TEST_F(InsightCommands, AccuracyIsATableWithPointedHeadings) {
  ASSERT_EQ(Ask({"accuracy", "--by", "recipe,operator", "--csv"}), 0) << err;
  EXPECT_THAT(out,
              ::testing::StartsWith(
                  "key.recipe,key.operator,n,notLoaded.n,notLoaded.target,withoutTarget.n,"
                  "withoutTarget.actual,target,actual,net,netPercent,gross,grossPercent,within,"
                  "weightWithin,withinWeight,beyond,below,median,q1,q3,standardized,marked\r\n"
                  "(none),(none),0,0,,1,0,,,,,,,,,,,,,,,,\r\n"
                  "HEIFER,(none),1,0,,0,,500,500,0,0.0,0,0.0,,,,,,0.0,0.0,0.0,,\r\n"));
  EXPECT_THAT(out, Not(HasSubstr("Total")));
  ASSERT_EQ(Ask({"accuracy"}), 0) << err;
  EXPECT_THAT(out, HasSubstr("\nTotal\t3\t0\t\t1\t0\t2100\t2100.5\t0.5\t0.0\t4.5\t0.2\t100.0"));
  EXPECT_THAT(out, HasSubstr("33 dairy herds, 386,011 loads (M. C. Barry, abstract W324, 2015):\n"
                             "within 2 %: 46.7 % of their loads (herds 10.8 to 80.6, median 42.7); "
                             "this yard 100.0 %, above the range\n"));
  ASSERT_EQ(Ask({"accuracy", "--deliveries"}), 0) << err;
  EXPECT_THAT(out, HasSubstr("key.pen\t"));
  EXPECT_THAT(out, HasSubstr("\nA02\t1\t1\t300\t"));
  EXPECT_THAT(out, Not(HasSubstr("dairy")));
}

TEST_F(InsightCommands, LimitsAreInTheUnitOfTheDatabase) {
  const Json answer = Answer({"accuracy", "--within-percent", "0.2", "--within-weight", "2",
                              "--beyond", "2", "--division", "0.5"});
  EXPECT_EQ(answer["limits"].dump(), R"({"percent":0.2,"weight":2.0,"beyond":2.0,"division":0.5})");
  EXPECT_EQ(answer["total"]["within"], 100.0 / 3);
  EXPECT_EQ(answer["total"]["beyond"], 100.0 / 3);
  EXPECT_TRUE(answer["yardstick"].is_null());
}

TEST_F(InsightCommands, CompositionBalanceAndTimesHaveTheirKeys) {
  const Json composition = Answer({"composition", "--recipe", "STEERS"});
  ASSERT_EQ(composition.size(), 2U);
  EXPECT_EQ(composition[0]["transaction"], 1);
  EXPECT_EQ(composition[0]["ingredient"], "CORN");
  EXPECT_EQ(composition[0]["points"], -0.14448609809434551);
  EXPECT_EQ(Answer({"balance", "--from", "2011-03-15"}).dump(),
            R"([{"transaction":3,"date":"2011-03-15","recipe":"STEERS","operator":"10",)"
            R"("loaded":null,"fed":0.0,"left":0.0,"leftPercent":null,"state":"never loaded"}])");
  EXPECT_EQ(
      Answer({"balance", "--all", "--weight", "4", "--percent", "0", "--to", "2011-03-15"}).dump(),
      R"([{"transaction":1,"date":"2011-03-14","recipe":"STEERS","operator":"2",)"
      R"("loaded":1600.5,"fed":1590.5,"left":10.0,"leftPercent":0.6248047485160887,)"
      R"("state":"out"},)"
      R"({"transaction":2,"date":"2011-03-15","recipe":"HEIFER","operator":null,)"
      R"("loaded":500.0,"fed":495.25,"left":4.75,"leftPercent":0.95,"state":"out"},)"
      R"({"transaction":3,"date":"2011-03-15","recipe":"STEERS","operator":"10",)"
      R"("loaded":null,"fed":0.0,"left":0.0,"leftPercent":null,"state":"never loaded"}])");
  const Json times = Answer({"times", "--recipe", "HEIFER"});
  EXPECT_EQ(times.dump(), R"([{"key":"HEIFER","batches":1,"leftOut":0,)"
                          R"("preparing":{"median":null,"q1":null,"q3":null},)"
                          R"("waiting":{"median":30.0,"q1":30.0,"q3":30.0},)"
                          R"("feeding":{"median":null,"q1":null,"q3":null}}])");
  EXPECT_THAT(err, HasSubstr("resolution is one minute"));
  EXPECT_EQ(Answer({"times", "--batches", "--operator", "10"}).dump(),
            R"([{"transaction":3,"date":"2011-03-15","recipe":"STEERS","operator":"10",)"
            R"("leftOut":false,"preparing":null,"waiting":null,"feeding":null}])");
  ASSERT_EQ(Ask({"times", "--csv", "--by", "operator"}), 0);
  EXPECT_THAT(out, HasSubstr("preparing.median,preparing.q1,preparing.q3,waiting.median"));
}

TEST_F(InsightCommands, WrongUsageIsRefused) {
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"accuracy", "--by", "pen"},
        {"accuracy", "--by", "ingredient", "--deliveries"},
        {"accuracy", "--by", "day,day"},
        {"accuracy", "--by", "colour"},
        {"accuracy", "--by", ""},
        {"accuracy", "--within-percent", "-1"},
        {"accuracy", "--division", "many"},
        {"accuracy", "--from", "2011-02-30"},
        {"balance", "--from", "2011-03-15", "--to", "2011-03-14"},
        {"times", "--by", "pen"},
        {"times", "--weight", "3"}}) {
    EXPECT_EQ(Ask(args), 2) << ::testing::PrintToString(args);
    EXPECT_EQ(out, "");
  }
}

TEST_F(InsightCommands, AnUnknownNameAndAnotherDatabaseFail) {
  EXPECT_EQ(Ask({"accuracy", "--ingredient", "corn"}), 1);
  EXPECT_EQ(err,
            "Error: No record has the ingredient 'corn'. Names that differ by case only: CORN.\n");
  EXPECT_EQ(Run({"balance", NewRecipeDatabase()}), 1);
  EXPECT_EQ(out, "");
  EXPECT_EQ(Run({"times", (folder / "NONE.TDB").string()}), 1);
  const ExclusiveHolder holder(transactions);
  busy_timeout = std::chrono::milliseconds(1);
  EXPECT_EQ(Ask({"composition"}), 1);
  EXPECT_THAT(err, HasSubstr("locked"));
}

TEST_F(InsightCommands, AnEmptyDatabaseHasHeadingsOnly) {
  transactions = NewTransactionDatabase("EMPTY.TDB");
  EXPECT_EQ(Answer({"balance"}).dump(), "[]");
  EXPECT_TRUE(Answer({"accuracy"})["yardstick"].is_null());
  ASSERT_EQ(Ask({"composition"}), 0);
  EXPECT_EQ(out, "transaction\trecipe\tingredient\tpoints\n");
}

}  // namespace
}  // namespace vrx::testing
