#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "base/files.h"
#include "ctl/ctl_fixture.h"
#include "support/database_files.h"
#include "support/small_history.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class CommandsOfAPeriod : public CtlTest {
 protected:
  CommandsOfAPeriod() {
    SmallHistory(folder, "YARD.TDB").exec("UPDATE BrantockDatabase SET dBType = 'USER_TRANS_DB'");
    SmallRecipes(folder, "YARD.RDB").exec("UPDATE BrantockDatabase SET dBType = 'USER_RECIPE_DB'");
  }

  int Show(int group, std::vector<std::string> more) {
    more.insert(more.begin(), {"show", transactions, "--group", std::to_string(group)});
    return Run(more);
  }

  std::string transactions = (folder / "YARD.TDB").string();
  std::string recipes = (folder / "YARD.RDB").string();
};

TEST_F(CommandsOfAPeriod, ShowTakesBothDaysIncluded) {
  ASSERT_EQ(Show(3, {"--collapsed", "--from", "2011-03-14", "--to", "2011-03-14"}), 0) << err;
  EXPECT_THAT(out, HasSubstr("group\t1\tRecipe:STEERS"));
  EXPECT_THAT(out, Not(HasSubstr("HEIFER")));
  ASSERT_EQ(Show(3, {"--collapsed", "--from", "2011-03-15"}), 0) << err;
  EXPECT_THAT(out, HasSubstr("Recipe:HEIFER"));
  ASSERT_EQ(Show(3, {"--collapsed", "--to", "2011-03-13"}), 0) << err;
  EXPECT_THAT(out, Not(HasSubstr("Recipe:")));
}

TEST_F(CommandsOfAPeriod, WhatIsLeftOutIsReported) {
  ASSERT_EQ(Show(0, {"--from", "2011-03-14"}), 0);
  EXPECT_EQ(err, "1 record without a readable date is left out.\n");
  ASSERT_EQ(Show(8, {"--from", "2011-03-14"}), 0);
  EXPECT_EQ(err, "");
}

TEST_F(CommandsOfAPeriod, WrongDaysAreWrongUsage) {
  for (const char* const day : {"2011-02-30", "3/14/2011", "today", ""}) {
    EXPECT_EQ(Show(0, {"--from", day}), 2) << day;
    EXPECT_THAT(err, HasSubstr("'" + std::string(day) + "' is not a day, YYYY-MM-DD")) << day;
  }
  EXPECT_EQ(Show(0, {"--from", "2011-03-15", "--to", "2011-03-14"}), 2);
  EXPECT_THAT(err, HasSubstr("2011-03-14 is before 2011-03-15, the first day"));
  EXPECT_EQ(out, "");
}

TEST_F(CommandsOfAPeriod, ExportWritesItsRecordsAndRefusesAnEmptyOne) {
  const std::string file = (folder / "pens.csv").string();
  const auto run = [&](const std::string& from) {
    return Run({"export", transactions, "--group", "8", "--recipes", recipes, "--format", "csv",
                "--out", file, "--from", from});
  };
  ASSERT_EQ(run("2011-03-15"), 0) << err;
  EXPECT_THAT(ReadFileBytes(file, 10'000), HasSubstr("A01"));
  EXPECT_EQ(run("2011-03-16"), 1);
  EXPECT_EQ(err, "Export: No data to export.\n");
}

TEST_F(CommandsOfAPeriod, PrintRefusesItForRecords) {
  const std::string file = (folder / "pens.pdf").string();
  EXPECT_EQ(Run({"print", "pens", recipes, "--pdf", file, "--from", "2011-03-15"}), 2);
  EXPECT_THAT(err, HasSubstr("goes with a data group only"));
  EXPECT_EQ(Run({"print", transactions, "--group", "8", "--pdf", file, "--from", "2011-03-16"}), 1);
  EXPECT_EQ(err, "Print Error: There is no transaction data to be printed.\n");
}

}  // namespace
}  // namespace vrx::testing
