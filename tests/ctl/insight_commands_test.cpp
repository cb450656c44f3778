#include <fstream>
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
  static void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
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

TEST_F(InsightCommands, DeliveredHasItsKeysAndTakesHeadCounts) {
  const std::string heads = (folder / "heads.csv").string();
  WriteFile(heads, "pen,from,heads\nA01,2011-03-01,10\nB77,2011-03-01,10\n");
  const Json answer = Answer({"delivered", "--heads", heads, "--pen", "A01"});
  EXPECT_EQ(answer.dump(),
            R"([{"pen":"A01","date":"2011-03-15","called":1300.0,"delivered":1305.75,)"
            R"("feedings":2,"mean7":null,"recipe":"STEERS","recipeChanged":true,"first":"09:30",)"
            R"("firstShift":null,"missed":false,"perHead":130.575}])");
  ASSERT_EQ(Ask({"delivered", "--heads", heads}), 0);
  EXPECT_EQ(err, "No record of the answer has the pen 'B77' of the file.\n");
  WriteFile(heads, "A01,2011-03-01,many\n");
  EXPECT_EQ(Ask({"delivered", "--heads", heads}), 1);
  EXPECT_EQ(err, "Error: " + heads + ", line 1: found 'many', expected a number from 0.\n");
  EXPECT_EQ(Ask({"delivered", "--heads", heads + "x"}), 1);
  EXPECT_EQ(out, "");
}

TEST_F(InsightCommands, TraceGoesForwardAndBackward) {
  EXPECT_EQ(Answer({"trace", "--ingredient", "CORN", "--recipe", "HEIFER"}).dump(),
            R"([{"transaction":2,"date":"2011-03-15","recipe":"HEIFER","operator":null,)"
            R"("pen":"A01","weight":495.25,"share":100.0},)"
            R"({"transaction":2,"date":"2011-03-15","recipe":"HEIFER","operator":null,)"
            R"("pen":null,"weight":4.75,"share":100.0}])");
  EXPECT_EQ(Answer({"trace", "--pen", "A01", "--recipe", "HEIFER"}).dump(),
            R"([{"transaction":2,"date":"2011-03-15","recipe":"HEIFER","operator":null,)"
            R"("ingredient":"CORN","weight":495.25}])");
  EXPECT_EQ(Ask({"trace"}), 2);
  EXPECT_EQ(Ask({"trace", "--pen", "A01", "--ingredient", "CORN"}), 2);
}

TEST_F(InsightCommands, HoldingIsAsOfTodayOrAnotherDay) {
  const Json answer = Answer({"holding", "--ingredient", "HAY", "--days", "3"});
  EXPECT_EQ(answer[0].dump(),
            R"({"pen":"A01","last":"2011-03-15T14:05","since":null,"until":null,)"
            R"("state":"unknown","why":"rows that no import accounts for have no date"})");
  EXPECT_THAT(err, HasSubstr("Pens, not animals"));
  EXPECT_EQ(
      Answer({"holding", "--ingredient", "HAY,CORN", "--days", "3", "--on", "2011-03-14"}).size(),
      0U);
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"holding", "--ingredient", "HAY"},
        {"holding", "--days", "3"},
        {"holding", "--ingredient", "HAY", "--days", "0"},
        {"holding", "--ingredient", "HAY", "--days", "3", "--on", "soon"},
        {"holding", "--ingredient", "HAY", "--days", "3", "--recipe", "STEERS"},
        {"holding", "--ingredient", "HAY", "--days", "3", "--from", "2011-03-14"}}) {
    EXPECT_EQ(Ask(args), 2) << ::testing::PrintToString(args);
  }
}

TEST_F(InsightCommands, CompletenessHasItsKeys) {
  EXPECT_EQ(Answer({"completeness", "--from", "2011-03-14", "--to", "2011-03-15"}).dump(),
            R"({"from":"2011-03-14","to":"2011-03-15","imports":0,"batches":3,"loads":3,)"
            R"("deliveries":4,"loaded":2100.5,"fed":2085.75,"notRead":0,"leftOut":0,"missing":[],)"
            R"("gaps":[],"same":0,"continued":0,"conflicts":0,"neverFed":0,"out":0,)"
            R"("daysWithout":{"n":0,"days":[]},"oddDates":0,"otherUnits":[],"notRecorded":7})");
  ASSERT_EQ(Ask({"completeness", "--csv"}), 0);
  EXPECT_THAT(out, HasSubstr("conflicts,neverFed,out,daysWithout.n,daysWithout.days,oddDates,"));
  EXPECT_EQ(Ask({"completeness", "--recipe", "STEERS"}), 2);
}

TEST_F(InsightCommands, ImportsAreListedAndSettled) {
  EXPECT_EQ(Answer({"imports"}).dump(), "[]");
  Alter(transactions, R"(
CREATE TABLE Imports (Number INTEGER PRIMARY KEY AUTOINCREMENT, At TEXT, File TEXT, SHA256 TEXT,
  Units TEXT, RowsRead INTEGER, Stored INTEGER, LeftOut INTEGER, NotRead INTEGER, Repeated INTEGER,
  Batches INTEGER, FileLow INTEGER, FileHigh INTEGER, Missing TEXT, StoredLow INTEGER,
  StoredHigh INTEGER, FirstDate TEXT, LastDate TEXT, Settled TEXT);
CREATE TABLE ImportedBatches (Import INTEGER, FileNumber INTEGER, [Transaction] INTEGER, State TEXT,
  Loads TEXT, Feeds TEXT, Rows INTEGER);
INSERT INTO Imports (At, File, Units, Stored) VALUES ('2011-03-15T20:00:00+01:00', '01.QXT', 'KG', 2);
INSERT INTO ImportedBatches VALUES (1, 1, 2, 'new', '', '', 2))");
  ASSERT_EQ(Ask({"balance", "--recipe", "HEIFER", "--all", "--csv"}), 0);
  EXPECT_EQ(err,
            "Import 1 (01.QXT) is left out: its 2 rows are in KG, the database is in LB. Say with "
            "imports --settle whether to keep or to convert them.\n");
  EXPECT_THAT(out, Not(HasSubstr("HEIFER")));
  const Json settled = Answer({"imports", "--settle", "1", "convert"});
  EXPECT_EQ(settled[0]["Settled"], "convert");
  EXPECT_EQ(settled[0]["Units"], "KG");
  EXPECT_EQ(settled[0]["FileLow"], nullptr);
  EXPECT_EQ(Answer({"balance", "--recipe", "HEIFER", "--all"})[0]["loaded"], 1102.3113109243879);
  EXPECT_EQ(Answer({"completeness"})["otherUnits"].dump(),
            R"([{"import":1,"file":"01.QXT","units":"KG","settled":"convert"}])");
  EXPECT_EQ(Ask({"imports", "--settle", "2", "keep"}), 1);
  EXPECT_EQ(err, "Error: There is no import 2.\n");
  EXPECT_EQ(Ask({"imports", "--settle", "1", "forget"}), 2);
  EXPECT_EQ(Ask({"imports", "--settle", "0", "keep"}), 2);
  EXPECT_EQ(Ask({"imports", "--settle", "1"}), 2);
  EXPECT_EQ(Ask({"imports", "--recipe", "STEERS"}), 2);
}

TEST_F(InsightCommands, UseHasItsKeysAndTakesPricesAndStock) {
  const std::string prices = (folder / "prices.csv").string();
  const std::string stock = (folder / "stock.csv").string();
  WriteFile(prices, "CORN,0.5,2011-01-01\n");
  WriteFile(stock, "CORN,2011-03-01,1000,1000,482\n");
  EXPECT_EQ(Answer({"use", "--prices", prices, "--stock", stock, "--ingredient", "CORN"}).dump(),
            R"([{"ingredient":"CORN","used":1498.0,"cost":749.0,"over":0.0,"under":1.0,)"
            R"("net":-1.0,"shrink":1.0}])");
  ASSERT_EQ(Ask({"use", "--csv"}), 0);
  EXPECT_EQ(out,
            "ingredient,used,cost,over,under,net,shrink\r\n(none),0,,,,,\r\nCORN,1498,,,,,\r\n"
            "HAY,602.5,,,,,\r\n");
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
