// What there is to find in the month of the sample site, and the command that finds it.

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>

#include "end_to_end/programs_fixture.h"
#include "end_to_end/sample_texts.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::IsEmpty;
using ::testing::Le;

// The records of all files. Two files may have the same one, and it counts once.
struct RecordsOfTheFiles {
  std::size_t batches = 0;
  std::size_t rows = 0;
  std::map<std::string, double> batched = {};  // by ingredient name
  std::map<std::string, double> fed = {};      // by pen name
  double target = 0;
};

// A line is a record, its lists are cut at ";" and ",".
class FileReader {
 public:
  RecordsOfTheFiles Read() {
    for (const auto& file : fs::directory_iterator(SampleTexts())) {
      if (file.path().extension() == ".qxt") {
        ReadFile(ReadAll(file.path()));
      }
    }
    return std::move(all_);
  }

 private:
  void ReadFile(const std::string& text) {
    bool feeds = false;
    for (std::string line : Split(text, '\n')) {
      feeds = feeds || line.starts_with("[FED],");
      if (line.starts_with("[")) {
        line.erase(0, 6);
      }
      if (line.starts_with("B,") && seen_.insert(line.substr(line.find(',', 2))).second) {
        feeds ? TakeFeed(Split(line, ',')) : TakeBatch(Split(line, ';'));
      }
    }
  }
  void TakeFeed(const std::vector<std::string>& fields) {
    all_.fed[pens_.at(fields[2])] += std::stod(fields[7]);
    all_.target += std::stod(fields[6]);
    ++all_.rows;
  }
  void TakeBatch(const std::vector<std::string>& lists) {
    const auto first = Split(lists[0], ',');
    const auto targets = Split(lists[2], ',');
    const auto actuals = Split(lists[3], ',');
    for (std::size_t entry = 0; first.at(5 + entry) != "0"; ++entry) {
      all_.batched[ingredients_.at(first[5 + entry])] += std::stod(actuals[entry]);
      all_.target += std::stod(targets[entry]);
      ++all_.rows;
    }
    ++all_.batches;
  }

  std::map<std::string, std::string> ingredients_ = SampleNames("ingredients.tsv");
  std::map<std::string, std::string> pens_ = SampleNames("pens.tsv");
  std::set<std::string> seen_;  // without the number in the file
  RecordsOfTheFiles all_;
};

std::map<std::string, double> StoredSums(SQLite::Database& database, const std::string& name,
                                         const std::string& weight) {
  std::map<std::string, double> sums;
  SQLite::Statement statement(database, "SELECT " + name + ", SUM(" + weight +
                                            ") FROM Transactions WHERE " + name +
                                            " IS NOT NULL GROUP BY " + name);
  while (statement.executeStep()) {
    sums[statement.getColumn(0).getString()] = statement.getColumn(1).getDouble();
  }
  return sums;
}

class SampleMonth : public ProgramsTest {
 protected:
  // The answer about the month; `words` are the command and its options.
  Json Ask(std::vector<std::string> words) const {
    return AskOf(SitePath("SITE.TDB"), std::move(words));
  }
  Json AskOf(const std::string& database, std::vector<std::string> words) const {
    words.insert(words.begin() + 1, database);
    words.emplace_back("--json");
    const Result result = Ctl(words);
    EXPECT_EQ(result.code, 0) << words[0] << ": " << result.err;
    return Json::parse(result.out);
  }
  // State by pen, of the pens that had the medicated premix or may have had it.
  std::map<std::string, std::string> Holding(const std::string& on) const {
    std::map<std::string, std::string> states;
    for (const Json& pen : Ask({"holding", "--ingredient", "MEdPRM", "--days", "10", "--on", on})) {
      if (pen["state"] != "not in the records") {
        states[pen["pen"]] = pen["state"];
      }
    }
    return states;
  }
};

TEST_F(SampleMonth, HasEveryRecordOfItsFilesOnce) {
  const RecordsOfTheFiles files = FileReader().Read();
  const Json info = Info(SitePath("SITE.TDB"));
  EXPECT_EQ(info["rows"], files.rows);
  EXPECT_EQ(info["transactions"], files.batches);
  EXPECT_EQ(info["firstDate"], "2026-01-01");
  EXPECT_EQ(info["lastDate"], "2026-01-31");
  SQLite::Database database(SitePath("SITE.TDB"));
  EXPECT_EQ(StoredSums(database, "Ingredient", "ActualBatch"), files.batched);
  EXPECT_EQ(StoredSums(database, "Pen", "ActualFeed"), files.fed);
  EXPECT_EQ(database.execAndGet("SELECT SUM(Target) FROM Transactions").getDouble(), files.target);
  // The ingredients fed to a pen add up to its total.
  SQLite::Statement shares(database,
                           "SELECT ActualFeed, Ing01Wt, Ing02Wt, Ing03Wt, Ing04Wt, Ing05Wt, "
                           "Ing06Wt, Ing07Wt, Ing08Wt, Ing09Wt, Ing10Wt, Ing11Wt, Ing12Wt, "
                           "Ing13Wt, Ing14Wt FROM Transactions WHERE Type = 'FEED'");
  while (shares.executeStep()) {
    double sum = 0;
    for (int column = 1; column <= 14; ++column) {
      sum += shares.getColumn(column).getDouble();
    }
    EXPECT_NEAR(sum, shares.getColumn(0).getDouble(), 1.0);
  }
}

TEST_F(SampleMonth, OnlyOneOperatorTakesTheToleranceForTheTarget) {
  std::vector<std::string> operators;
  std::vector<std::string> marked;
  const Json answer = Ask({"accuracy", "--by", "operator"});
  for (const Json& group : answer["groups"]) {
    operators.push_back(group["key"]["operator"]);
    EXPECT_FALSE(group["marked"].is_null());
    if (group["marked"] == true) {
      marked.push_back(operators.back());
    }
  }
  EXPECT_THAT(operators, ElementsAre("1", "2", "3", "4", "5"));
  EXPECT_THAT(marked, ElementsAre("3"));
}

TEST_F(SampleMonth, OneLoadWasForgotten) {
  const Json total = Ask({"accuracy"})["total"];
  EXPECT_EQ(total["notLoaded"], Json::parse(R"({"n":1,"target":210.0})"));
  const Json groups =
      Ask({"accuracy", "--by", "ingredient,operator", "--ingredient", "SOYbML", "--operator", "4",
           "--from", "2026-01-22", "--to", "2026-01-22"})["groups"];
  ASSERT_EQ(groups.size(), 1U);
  EXPECT_EQ(groups[0]["notLoaded"], total["notLoaded"]);
}

TEST_F(SampleMonth, OneBatchIsOutOfBalanceAndOnePenWentShort) {
  const Json balance = Ask({"balance"});
  ASSERT_EQ(balance.size(), 1U);
  EXPECT_EQ(balance[0]["state"], "out");
  EXPECT_EQ(balance[0]["date"], "2026-01-16");
  EXPECT_EQ(balance[0]["recipe"], "GROWER");
  const Json pen = Ask({"delivered", "--pen", "d04", "--from", "2026-01-16", "--to", "2026-01-16"});
  ASSERT_EQ(pen.size(), 1U);
  const double missing = pen[0]["called"].get<double>() - pen[0]["delivered"].get<double>();
  EXPECT_NEAR(missing, balance[0]["left"].get<double>(), 100);
}

TEST_F(SampleMonth, OneDayIsWithoutRecords) {
  EXPECT_EQ(Ask({"completeness"})["daysWithout"], Json::parse(R"({"n":1,"days":["2026-01-08"]})"));
  const Json day = Ask({"delivered", "--from", "2026-01-08", "--to", "2026-01-08"});
  EXPECT_EQ(day.size(), SampleTable("pens.tsv").size());
  for (const Json& pen : day) {
    EXPECT_EQ(pen["missed"], true) << pen;
  }
}

TEST_F(SampleMonth, TheMedicatedPremixWentToThreePensAndWasLeftOverOnce) {
  std::set<std::string> pens;
  std::vector<std::string> left_over;
  for (const Json& line : Ask({"trace", "--ingredient", "MEdPRM"})) {
    if (!line["pen"].is_null()) {
      pens.insert(line["pen"].get<std::string>());
    } else if (line["weight"].get<double>() > 0) {
      left_over.push_back(line["date"]);
    }
  }
  EXPECT_THAT(pens, ElementsAre("A06", "H01", "H02"));
  EXPECT_THAT(left_over, ElementsAre("2026-01-19"));
}

// The batch after the one that was left over went to H03 and H04, which never got the premix.
TEST_F(SampleMonth, HoldingShowsAllStates) {
  EXPECT_EQ(Holding("2026-01-29"), (std::map<std::string, std::string>{{"A06", "passed"},
                                                                       {"H01", "held"},
                                                                       {"H02", "held"},
                                                                       {"H03", "unknown"},
                                                                       {"H04", "unknown"}}));
  EXPECT_EQ(Holding("2026-01-31")["H01"], "passed");
  EXPECT_THAT(Holding("2026-01-11"), IsEmpty());
}

TEST_F(SampleMonth, WhatAModuleStillHeldIsFoundAndNotStoredAgain) {
  std::map<std::string, std::vector<int>> imports;  // rows read, stored and repeated
  for (const Json& import : Ask({"imports"})) {
    const int read = import["RowsRead"];
    const int repeated = import["Repeated"];
    if (repeated != 0 || import["File"] == "DAY20.QXT") {
      imports[import["File"]] = {read, import["Stored"], repeated};
    }
  }
  ASSERT_EQ(imports.size(), 3U);
  const int day = imports["DAY20.QXT"][1];
  EXPECT_THAT(imports["DAY21.QXT"], ElementsAre(day * 2, day, day));
  EXPECT_EQ(imports["DAY27B.QXT"][0], imports["DAY27B.QXT"][1] + imports["DAY27B.QXT"][2]);
  const Json statement = Ask({"completeness"});
  EXPECT_EQ(statement["same"], 14 + 3);
  EXPECT_EQ(statement["continued"], 1);
  EXPECT_EQ(statement["conflicts"], 0);
  EXPECT_EQ(statement["notRecorded"], 0);
  EXPECT_EQ(statement["oddDates"], 0);
}

TEST_F(SampleMonth, AModuleReadInAFeedingIsOutOfBalanceUntilItIsReadAgain) {
  const std::string database = NewTransactionDatabase();
  const auto store = [&](const std::string& file) {
    return Ctl({"store", SitePath(file), "--into", database, "--recipes", SitePath("SITE.RDB"),
                "--repeated", "new"})
        .code;
  };
  ASSERT_EQ(store("day27a.qxt"), 0);
  const Json before = AskOf(database, {"balance"});
  ASSERT_EQ(before.size(), 1U);
  EXPECT_EQ(before[0]["state"], "out");
  EXPECT_EQ(before[0]["transaction"], 4);
  ASSERT_EQ(store("day27b.qxt"), 0);
  EXPECT_THAT(AskOf(database, {"balance"}), IsEmpty());
}

// Of 26 dairies, see the manual: the medians of the site are within what is usual.
TEST_F(SampleMonth, TakesUsualTimes) {
  const Json recipes = Ask({"times"});
  EXPECT_EQ(recipes.size(), SampleTable("recipes.tsv").size());
  for (const Json& recipe : recipes) {
    EXPECT_THAT(recipe["preparing"]["median"].get<double>(), AllOf(Ge(9), Le(27))) << recipe;
    EXPECT_THAT(recipe["waiting"]["median"].get<double>(), AllOf(Ge(2), Le(9))) << recipe;
    EXPECT_THAT(recipe["feeding"]["median"].get<double>(), AllOf(Ge(1.5), Le(11))) << recipe;
  }
}

}  // namespace
}  // namespace vrx::testing
