#include <algorithm>
#include <filesystem>
#include <sstream>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "ctl/ctl_fixture.h"
#include "ctl_fixture.h"
#include "history/data_group.h"
#include "support/database_files.h"
#include "support/small_history.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using Json = nlohmann::ordered_json;

class ShowCommands : public CtlTest {
 protected:
  ShowCommands() {
    for (const std::string& path : {transactions, recipes}) {
      std::filesystem::remove(path);
    }
    SmallHistory(folder, "YARD.TDB");
    SmallRecipes(folder, "YARD.RDB");
    MarkAsUsers(transactions, "USER_TRANS_DB");
    MarkAsUsers(recipes, "USER_RECIPE_DB");
  }

  static void MarkAsUsers(const std::string& path, const std::string& type) {
    OpenDatabase(path, Access::kWrite).exec("UPDATE BrantockDatabase SET dBType = '" + type + "'");
  }

  int Show(int group, std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"show", transactions, "--group", std::to_string(group)});
    return Run(more);
  }

  std::vector<std::string> Lines() const {
    std::istringstream text(out);
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
      lines.push_back(line);
    }
    return lines;
  }

  std::string transactions = (folder / "YARD.TDB").string();
  std::string recipes = (folder / "YARD.RDB").string();
};

TEST_F(ShowCommands, GroupsListsTheThirteenByTheirIndex) {
  ASSERT_EQ(Run({"groups"}), 0) << err;
  EXPECT_EQ(out,
            "Index\tData Group\n0\tTransactions (all)\n1\tTransactions (batched/fed)\n"
            "2\tTransactions (by date)\n3\tRecipes (all)\n4\tRecipe (by name...)\n"
            "5\tRecipe (Ingredient Accum)\n6\tIngredients (all)\n7\tIngredient (by name...)\n"
            "8\tPens Fed (all)\n9\tPen Fed (by name...)\n10\tPen (Ingredient Accum)\n"
            "11\tUser (by transactions)\n12\tUser (by batched/fed)\n");
  ASSERT_EQ(Run({"groups", "--json"}), 0);
  EXPECT_EQ(Json::parse(out)[4], (Json{{"Index", 4}, {"Data Group", "Recipe (by name...)"}}));
}

TEST_F(ShowCommands, ShowsTheRowsOfTheGridWithAllGroupsOpen) {
  ASSERT_EQ(Show(8), 0) << err;
  EXPECT_THAT(
      Lines(),
      ElementsAre(
          "kind\tdepth\tcaption\tTransaction\tRecipe\tFeed Wt\tTarget Wt\tUser ID\tTime\tDate",
          "group\t1\tPen:A01\t\t\t\t\t\t\t",
          "record\t2\t\t1\tSTEERS\t810.5\t800\t2\t02:05 PM\t15-Mar-11",
          "record\t2\t\t2\tHEIFER\t495.25\t500\t\t09:30 AM\t15-Mar-11",
          "total\t1\t\tTotal:\t\t1305.75\t1300\t\t\t", "group\t1\tPen:A02\t\t\t\t\t\t\t",
          "record\t2\t\t1\tSTEERS\t780\t800\t2\t02:20 PM\t15-Mar-11",
          "record\t2\t\t3\tSTEERS\t0\t300\t10\t10:00 AM\t15-Mar-11",
          "total\t1\t\tTotal:\t\t780\t1100\t\t\t"));
}

// Runs as the user nobody, because a superuser may write everywhere.
TEST_F(ShowCommands, AWriteProtectedDatabaseIsShown) {
  const TempFolder archive;
  std::filesystem::copy_file(transactions, archive / "YARD.TDB");
  transactions = (archive / "YARD.TDB").string();
  std::filesystem::permissions(folder.Path(), std::filesystem::perms::all);
  const WithoutWritePermission protection(archive.Path());
  EXPECT_EQ(Show(8, {"--limit", "2"}), 0) << err;
  EXPECT_EQ(Lines().size(), 3U);
}

TEST_F(ShowCommands, CollapsedShowsTheOutermostGroupsAlone) {
  ASSERT_EQ(Show(2, {"--collapsed"}), 0) << err;
  EXPECT_THAT(Lines(), ElementsAre(StartsWith("kind\tdepth\tcaption\tRecipe\tBatch Wt\t"),
                                   "group\t1\tDate:\t\t\t\t\t\t\t\t",
                                   "group\t1\tDate:14-Mar-11\t\t\t\t\t\t\t\t",
                                   "group\t1\tDate:15-Mar-11\t\t\t\t\t\t\t\t"));
}

TEST_F(ShowCommands, TheLimitCountsRowsOfEveryKind) {
  ASSERT_EQ(Show(8), 0);
  const std::vector<std::string> all = Lines();
  for (std::size_t limit = 0; limit <= all.size(); ++limit) {
    ASSERT_EQ(Show(8, {"--limit", std::to_string(limit)}), 0) << err;
    const std::size_t shown = std::min(limit + 1, all.size());
    EXPECT_EQ(Lines(),
              std::vector<std::string>(all.begin(), all.begin() + static_cast<int>(shown)));
  }
}

TEST_F(ShowCommands, CsvQuotesWhereNeeded) {
  OpenDatabase(transactions, Access::kWrite)
      .exec("UPDATE Transactions SET Pen = 'A,\"1\"' WHERE Pen = 'A01'");
  ASSERT_EQ(Show(8, {"--csv", "--limit", "2"}), 0) << err;
  EXPECT_EQ(out,
            "kind,depth,caption,Transaction,Recipe,Feed Wt,Target Wt,User ID,Time,Date\r\n"
            "group,1,\"Pen:A,\"\"1\"\"\",,,,,,,\r\n"
            "record,2,,1,STEERS,810.5,800,2,02:05 PM,15-Mar-11\r\n");
}

TEST_F(ShowCommands, IngredientColumnsBearTheNamesOfTheRecipeDatabase) {
  ASSERT_EQ(Show(10, {"--recipes", recipes, "--limit", "2"}), 0) << err;
  EXPECT_THAT(Lines(),
              ElementsAre("kind\tdepth\tcaption\tPen\tRecipe\tTarget Wt\tFeed Wt\tCORN\tHAY",
                          "group\t1\tPen:A01\t\t\t\t\t\t",
                          "record\t2\t\tA01\tSTEERS\t800\t810.5\t486.3\t324.2"));
}

TEST_F(ShowCommands, WithoutARecipeDatabaseTheIngredientColumnsAreHidden) {
  ASSERT_EQ(Show(0, {"--limit", "0"}), 0) << err;
  EXPECT_EQ(out,
            "kind\tdepth\tcaption\tTransaction\tRecipe\tType\tBatch Wt\tIngredient\tFeed Wt\tPen\t"
            "Target Wt\tUser ID\tTime\tDate\tIng% Of Batch\n");
}

TEST_F(ShowCommands, AGroupByNameShowsThatName) {
  ASSERT_EQ(Show(9, {"--name", "A02", "--recipes", recipes, "--collapsed"}), 0) << err;
  EXPECT_THAT(Lines(), ElementsAre("kind\tdepth\tcaption\tRecipe\tTarget Wt\tFeed Wt\tUser ID\t"
                                   "Time\tDate",
                                   "group\t1\tPen:A02\t\t\t\t\t\t"));
  ASSERT_EQ(Show(7, {"--name", "O'NEIL", "--recipes", recipes}), 0) << err;
  EXPECT_EQ(Lines().size(), 1U);
}

TEST_F(ShowCommands, AGroupByNameWithoutNameOrRecipesIsAWrongUsage) {
  for (const int group : {4, 7, 9}) {
    EXPECT_EQ(Show(group), 2);
    EXPECT_THAT(err, HasSubstr("needs --name and --recipes"));
    EXPECT_EQ(Show(group, {"--name", "A02"}), 2);
    EXPECT_EQ(Show(group, {"--recipes", recipes}), 2);
    EXPECT_THAT(out, IsEmpty());
  }
}

TEST_F(ShowCommands, TheGroupIsReadAsDecimalDigits) {
  ASSERT_EQ(Show(10), 0) << err;
  const std::string group_ten = out;
  ASSERT_EQ(Run({"show", transactions, "--group", "010"}), 0) << err;
  EXPECT_EQ(out, group_ten);
  EXPECT_EQ(Run({"show", transactions, "--group", "0x3"}), 2);
}

TEST_F(ShowCommands, WrongUsagesAreRefused) {
  EXPECT_EQ(Show(13), 2);
  EXPECT_EQ(Show(-1), 2);
  EXPECT_EQ(Show(3, {"--name", "STEERS"}), 2);
  EXPECT_EQ(Show(3, {"--limit", "-1"}), 2);
  EXPECT_EQ(Show(3, {"--limit", "many"}), 2);
  EXPECT_EQ(Run({"show", transactions}), 2);
  EXPECT_EQ(Run({"show", "--group", "3"}), 2);
}

TEST_F(ShowCommands, AFileOfTheOtherKindIsRefused) {
  transactions = recipes;
  EXPECT_EQ(Show(3), 1);
  EXPECT_EQ(err,
            "Invalid Database: The database file (YARD.RDB) that you specified, is not a valid "
            "VRX-2260 transaction database.\ncause: YARD.RDB is marked USER_RECIPE_DB\n");
  transactions = (folder / "YARD.TDB").string();
  EXPECT_EQ(Show(3, {"--recipes", transactions}), 1);
  EXPECT_THAT(err, HasSubstr("is not a valid VRX-2260 recipe database"));
  EXPECT_THAT(out, IsEmpty());
}

TEST_F(ShowCommands, AMissingFileIsReportedAndNotCreated) {
  std::filesystem::remove(transactions);
  EXPECT_EQ(Show(3), 1);
  EXPECT_THAT(err, HasSubstr("cause: "));
  EXPECT_FALSE(std::filesystem::exists(transactions));
}

TEST_F(ShowCommands, TheDatabasesAreOnlyRead) {
  const std::string before = ReadAll(transactions);
  const std::string recipes_before = ReadAll(recipes);
  for (int group = 0; group < kDataGroupCount; ++group) {
    std::vector<std::string> more{"--recipes", recipes};
    if (!FindDataGroup(group)->named_column.empty()) {
      more.insert(more.end(), {"--name", "CORN"});
    }
    ASSERT_EQ(Show(group, more), 0) << err;
    EXPECT_THAT(err, IsEmpty());
  }
  EXPECT_TRUE(ReadAll(transactions) == before);
  EXPECT_TRUE(ReadAll(recipes) == recipes_before);
}

}  // namespace
}  // namespace vrx::testing
