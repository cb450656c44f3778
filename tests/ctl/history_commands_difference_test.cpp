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

class CommandsWithDifferences : public CtlTest {
 protected:
  CommandsWithDifferences() {
    SmallHistory(folder, "YARD.TDB").exec("UPDATE BrantockDatabase SET dBType = 'USER_TRANS_DB'");
    SmallRecipes(folder, "YARD.RDB").exec("UPDATE BrantockDatabase SET dBType = 'USER_RECIPE_DB'");
  }

  std::string transactions = (folder / "YARD.TDB").string();
  std::string recipes = (folder / "YARD.RDB").string();
};

TEST_F(CommandsWithDifferences, ShowHasThemBehindTheirWeights) {
  ASSERT_EQ(Run({"show", transactions, "--group", "8", "--difference"}), 0) << err;
  EXPECT_THAT(out, HasSubstr("kind\tdepth\tcaption\tTransaction\tRecipe\tFeed Wt\tFeed Diff\t"
                             "Feed Diff %\tTarget Wt\tUser ID\tTime\tDate\n"));
  EXPECT_THAT(out, HasSubstr("record\t2\t\t1\tSTEERS\t810.5\t+10.5\t+1.3\t800\t"));
  EXPECT_THAT(out, HasSubstr("total\t1\t\tTotal:\t\t1305.75\t+5.75\t+0.4\t1300\t"));
  const std::string group = "group\t1\tPen:A01" + std::string(9, '\t') + "\n";
  EXPECT_THAT(out, HasSubstr(group));
}

TEST_F(CommandsWithDifferences, ShowIsWithoutThemUnlessAsked) {
  ASSERT_EQ(Run({"show", transactions, "--group", "0"}), 0) << err;
  EXPECT_THAT(out, Not(HasSubstr("Diff")));
}

TEST_F(CommandsWithDifferences, AClosedGroupHasNoCells) {
  ASSERT_EQ(Run({"show", transactions, "--group", "3", "--collapsed", "--difference"}), 0) << err;
  EXPECT_THAT(out, HasSubstr("group\t1\tRecipe:STEERS" + std::string(13, '\t') + "\n"));
}

TEST_F(CommandsWithDifferences, AreExported) {
  const std::string file = (folder / "pens.csv").string();
  ASSERT_EQ(Run({"export", transactions, "--group", "8", "--recipes", recipes, "--format", "csv",
                 "--out", file, "--difference"}),
            0)
      << err;
  EXPECT_THAT(ReadFileBytes(file, 10'000), HasSubstr("810.5,+10.5,+1.3,800"));
}

TEST_F(CommandsWithDifferences, ArePrintedWithDataGroupsOnly) {
  const std::string file = (folder / "pens.pdf").string();
  EXPECT_EQ(Run({"print", transactions, "--group", "8", "--pdf", file, "--difference", "--from",
                 "2011-03-16"}),
            1);
  EXPECT_EQ(err, "Print Error: There is no transaction data to be printed.\n");
  EXPECT_EQ(Run({"print", "pens", recipes, "--pdf", file, "--difference"}), 2);
  EXPECT_THAT(err, HasSubstr("--difference: goes with a data group only"));
}

}  // namespace
}  // namespace vrx::testing
