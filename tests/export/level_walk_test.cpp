#include "export/level_walk.h"

#include <random>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "export/export_fixture.h"
#include "export/specified_levels.h"
#include "support/rival_writer.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::StartsWith;

std::vector<std::string> Names(std::span<const WalkedField> fields) {
  std::vector<std::string> names;
  for (const WalkedField& field : fields) {
    names.push_back(field.name);
  }
  return names;
}

class LevelWalks : public ::testing::Test {
 protected:
  LevelWalk WalkOf(int group, std::string_view name = {}) const {
    const ExportPlan& plan = *FindExportPlan(group);
    return {site_.Database(), plan,
            *ExportColumn(site_.Names())
                 .IntializeExportColumn(plan.column_group, VisibleColumnsOf(group)),
            name};
  }

  std::vector<std::string> Walked(int group, std::string_view name = {}) const {
    WalkLog log;
    WalkOf(group, name).Walk(log);
    return log.Lines();
  }

  void ExpectAsTold(int group, std::string_view name) const {
    EXPECT_EQ(Walked(group, name),
              SpecifiedWalk(site_.Database(), group, Names(WalkOf(group).Fields()), name))
        << "group " << group;
  }

  ExportFixture site_;
};

TEST_F(LevelWalks, OpensLevelsFromTheOutsideInWithTheSumsOnTheInnermost) {
  site_.Store({{.transaction = 17, .target = 500, .batch = 500.5}});
  EXPECT_THAT(Walked(1), ElementsAre("open 0 Transaction 17",
                                     "open 1 Type BATCH Batch_Weight=500.5 Target_Weight=500",
                                     "record STARTER|500.5|NULL|0|NULL|500|7|06:10:00|2011-03-14",
                                     "close 1", "close 0"));
}

TEST_F(LevelWalks, AnEmptyTableHasNoGroupsAndNoRecords) {
  for (int group = 0; group < 13; ++group) {
    EXPECT_THAT(Walked(group), ElementsAre()) << "group " << group;
  }
}

TEST_F(LevelWalks, ANameThatNoRowHasGivesNothing) {
  site_.StoreYard();
  for (const int group : {4, 7, 9}) {
    EXPECT_THAT(Walked(group, "Select..."), ElementsAre()) << "group " << group;
  }
}

TEST_F(LevelWalks, TheFieldsOfARecordAreTheDictionarysWithoutTheExcludedOnes) {
  EXPECT_THAT(Names(WalkOf(5).Fields()), ElementsAre("Ingredient", "ActualBatch"));
  EXPECT_THAT(Names(WalkOf(10).Fields()), ElementsAre("Pen", "Recipe", "Target", "ActualFeed",
                                                      "Ing01Wt", "Ing02Wt", "Ing03Wt"));
  EXPECT_EQ(WalkOf(0).Fields().size(), 15U);
  EXPECT_EQ(WalkOf(2).Fields().back().name, "Time");
  EXPECT_EQ(WalkOf(2).Fields().back().content, ColumnContent::kTime);
}

TEST_F(LevelWalks, ATransactionOnTwoDatesIsCompleteUnderBoth) {
  site_.Store({{.transaction = 17, .batch = 1, .date = "2011-03-14"},
               {.transaction = 17, .batch = 2, .date = "2011-03-15"}});
  const std::string first = "record STARTER|1|NULL|0|NULL|0|7|06:10:00";
  const std::string second = "record STARTER|2|NULL|0|NULL|0|7|06:10:00";
  const std::string type = "open 2 Type BATCH Batch_Weight=3 Target_Weight=0";
  EXPECT_THAT(Walked(2), ElementsAre("open 0 Date 2011-03-15", "open 1 Transaction 17", type, first,
                                     second, "close 2", "close 1", "close 0",
                                     "open 0 Date 2011-03-14", "open 1 Transaction 17", type, first,
                                     second, "close 2", "close 1", "close 0"));
}

TEST_F(LevelWalks, WithoutAUserTheSumsAreThoseOfTheWholeTransaction) {
  site_.Store({{.transaction = 17, .user = "", .batch = 1, .feed = 10},
               {.transaction = 17, .user = "7", .batch = 2, .feed = 20}});
  const std::vector<std::string> lines = Walked(11);
  EXPECT_EQ(lines[0], "open 0 User_Id (none)");
  EXPECT_EQ(lines[1], "open 1 Transaction 17 Batch_Weight=3 Feed_Weight=30");
  EXPECT_EQ(lines[5], "open 0 User_Id 7");
  EXPECT_EQ(lines[6], "open 1 Transaction 17 Batch_Weight=2 Feed_Weight=20");
}

TEST_F(LevelWalks, ByUserAndTypeTheSumsTakeInAllOfTheUserAndAllOfTheType) {
  site_.Store({{.user = "", .target = 500, .batch = 500},
               {.user = "7", .target = 500, .batch = 500.5},
               {.type = "FEED", .user = "7", .target = 30, .feed = 20},
               {.type = "FEED", .user = "8", .target = 3, .feed = 2}});
  const std::vector<std::string> lines = Walked(12);
  EXPECT_THAT(lines, Contains("open 1 Type BATCH Batch_Weight=1000.5 Target_Weight=1000"));
  EXPECT_THAT(lines, Contains("open 1 Type BATCH Batch_Weight=1000.5 Target_Weight=1030"));
  EXPECT_THAT(lines, Contains("open 1 Type FEED Feed_Weight=22 Target_Weight=533"));
  EXPECT_THAT(lines, Contains("open 1 Type FEED Feed_Weight=22 Target_Weight=33"));
}

TEST_F(LevelWalks, AUserOfMinusOneIsAmongTheRowsWithoutAUser) {
  site_.Store({{.transaction = 1, .user = "-1", .batch = 1},
               {.transaction = 2, .user = "", .batch = 2},
               {.transaction = 3, .user = "7", .batch = 3}});
  const std::vector<std::string> lines = Walked(11);
  EXPECT_EQ(lines[0], "open 0 User_Id (none)");
  EXPECT_THAT(lines[1], StartsWith("open 1 Transaction 1 "));
  EXPECT_THAT(lines[4], StartsWith("open 1 Transaction 2 "));
  EXPECT_EQ(lines[8], "open 0 User_Id 7");
}

TEST_F(LevelWalks, ARecipeOfNoNameHasNothingBelow) {
  site_.Store({{.recipe = "", .batch = 1}, {.recipe = "STARTER"}});
  const std::vector<std::string> lines = Walked(3);
  EXPECT_EQ(lines[0], "open 0 Recipe NULL");
  EXPECT_EQ(lines[1], "close 0");
  EXPECT_EQ(lines[2], "open 0 Recipe STARTER");
}

TEST_F(LevelWalks, ByIngredientRecordsOfAnyTypeCount) {
  site_.Store({{.ingredient = "CORN", .target = 1, .batch = 1},
               {.type = "FEED", .ingredient = "CORN", .target = 2, .batch = 2}});
  EXPECT_EQ(Walked(6)[0], "open 0 Ingredient CORN Batch_Weight=3 Target_Weight=3");
  EXPECT_EQ(Walked(6).size(), 4U);
}

TEST_F(LevelWalks, ARowWithoutADateIsRefusedByDateOnly) {
  site_.Store({{.transaction = 17, .date = ""}});
  WalkLog log;
  EXPECT_THROW(WalkOf(2).Walk(log), Error);
  EXPECT_EQ(Walked(1).size(), 5U);
}

TEST_F(LevelWalks, AGroupThatShowsNoColumnsIsAnError) {
  site_.StoreYard();
  EXPECT_THROW(LevelWalk(site_.Database(), *FindExportPlan(0), {}, ""), Error);
  EXPECT_THROW(LevelWalk(site_.Database(), *FindExportPlan(1),
                         {{"Transaction", "Transaction"}, {"Type", "Type"}}, ""),
               Error);
}

TEST_F(LevelWalks, EveryGroupOfTheYardMatchesTheSpecifiedQueries) {
  site_.StoreYard();
  for (int group = 0; group < 13; ++group) {
    ExpectAsTold(group, YardNameOf(group));
  }
}

// Another program's store during the walk.
class StoringVisitor : public WalkLog {
 public:
  explicit StoringVisitor(const ExportFixture& site) : site_(site) {}

  void Record(std::span<const CellView> cells) override {
    WalkLog::Record(cells);
    try {
      site_.Store({{.transaction = 99}});
      stored_ = true;
    } catch (const SQLite::Exception&) {
      ++refused_;
    }
  }

  bool Stored() const { return stored_; }
  int Refused() const { return refused_; }

 private:
  const ExportFixture& site_;
  bool stored_ = false;
  int refused_ = 0;
};

TEST_F(LevelWalks, NothingIsStoredBetweenTwoRecordsAndAnythingAfterTheLast) {
  site_.Store({{.transaction = 1}, {.transaction = 2}});
  LevelWalk walk = WalkOf(1);
  StoringVisitor visitor(site_);
  walk.Walk(visitor);
  EXPECT_FALSE(visitor.Stored());
  EXPECT_EQ(visitor.Refused(), 2);
  EXPECT_NO_THROW(site_.Store({{.transaction = 99}}));
}

TEST_F(LevelWalks, NothingIsStoredBetweenTwoQueries) {
  site_.StoreYard();
  for (const int group : {1, 4, 7, 12}) {
    RivalWriter rival;
    LevelWalk walk = WalkOf(group, YardNameOf(group));
    WalkLog log;
    rival.Start(site_.Database(), "INSERT INTO Transactions ([Transaction]) VALUES (99)");
    walk.Walk(log);
    rival.Stop();
    EXPECT_GT(rival.Tries(), 0) << group;
    EXPECT_EQ(rival.Stored(), 0) << group;
  }
}

class ThrowingVisitor : public WalkLog {
 public:
  void Record(std::span<const CellView> /*cells*/) override { throw Error("the disk is full"); }
};

TEST_F(LevelWalks, WhatAVisitorThrowsComesOutAndLeavesTheDatabaseFree) {
  site_.StoreYard();
  LevelWalk walk = WalkOf(1);
  ThrowingVisitor visitor;
  EXPECT_THROW(walk.Walk(visitor), Error);
  EXPECT_NO_THROW(site_.Store({{.transaction = 99}}));
  WalkLog log;
  walk.Walk(log);
  EXPECT_THAT(log.Lines(), Contains("open 0 Transaction 99"));
}

// Few values, so that they meet; eighths, so that a plain sum is exact in any order.
std::vector<SiteRow> RandomRows(std::mt19937& random, bool with_dates_only) {
  const auto pick = [&](std::initializer_list<const char*> values) {
    return std::string(*(values.begin() + random() % values.size()));
  };
  const auto weight = [&] { return static_cast<double>(random() % 8000) / 8; };
  std::vector<SiteRow> rows(random() % 60);
  for (SiteRow& row : rows) {
    row = {.transaction = static_cast<int>(random() % 6) + 1,
           .recipe = pick({"", "A", "a", "B", "O'NEIL"}),
           .type = pick({"BATCH", "FEED", "BATCH", "FEED", "TEST", ""}),
           .user = pick({"", "-1", "2", "10", "9", "-5", "X"}),
           .ingredient = pick({"", "", "CORN", "HAY"}),
           .pen = pick({"", "", "PEN 1", "PEN 2"}),
           .target = weight(),
           .batch = weight(),
           .time = pick({"", "06:10:00", "23:59:59", "00:00:00"}),
           .date = pick(
               {"2011-03-14", "2011-03-15", "2010-12-31", with_dates_only ? "2011-03-14" : ""}),
           .feed = weight(),
           .percent = {},
           .weights = {weight()}};
  }
  return rows;
}

TEST_F(LevelWalks, RandomTablesMatchTheSpecifiedQueries) {
  std::mt19937 random(73);
  for (int round = 0; round < 60; ++round) {
    const int by_date = round % 2;
    site_.Alter("DELETE FROM Transactions");
    site_.Store(RandomRows(random, by_date == 1));
    site_.Alter(
        "UPDATE Transactions SET ActualFeed = NULL WHERE ActualBatch > 700;"
        "UPDATE Transactions SET [Transaction] = NULL WHERE Target > 950;"
        "UPDATE Transactions SET Recipe = '' WHERE Target < 20");
    for (int group = 0; group < 13; ++group) {
      if (group != 2 || by_date == 1) {
        ExpectAsTold(group, group == 4 ? "O'NEIL" : YardNameOf(group));
      }
    }
  }
}

}  // namespace
}  // namespace vrx::testing
