#include "presenter/recent_databases.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenter/lifecycle_fixture.h"
#include "support/stored_user_settings.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecentDatabasesTest : public LifecycleFixture {
 protected:
  RecentDatabasesTest() {
    settings_.SetAutoloadRecipeDBOn(true);
    settings_.SetAutoloadTransDBOn(true);
    store_.values = {{"MRU_RecipePathName", recipes_.string()},
                     {"MRU_RecipeFileName", "YARD.RDB"},
                     {"MRU_TransPathName", transactions_.string()},
                     {"MRU_TransFileName", "Y2026.TDB"}};
  }

  Diary Bindings() const {
    Diary bindings;
    for (const std::string& entry : diary_) {
      if (entry.starts_with("bind ")) {
        bindings.push_back(entry);
      }
    }
    return bindings;
  }

  fs::path recipes_ = MakeUserFile("YARD.RDB", kRecipe);
  fs::path transactions_ = MakeUserFile("Y2026.TDB", kTransaction);
  StoredUserSettings store_;
  RecentDatabases recent_{store_, settings_, databases_};
};

TEST_F(RecentDatabasesTest, OpenAtTheFirstActivateRecipesFirstAndNeverDuringLoad) {
  recent_.Load();
  EXPECT_TRUE(recent_.AutoloadRecipePending());
  EXPECT_TRUE(recent_.AutoloadTransPending());
  EXPECT_THAT(diary_, IsEmpty());
  recent_.Activate();
  EXPECT_THAT(Bindings(), ElementsAre("bind recipe YARD.RDB", "bind transaction Y2026.TDB"));
  EXPECT_EQ(databases_.Recipe().path, recipes_);
  EXPECT_EQ(databases_.Recipe().name, "YARD.RDB");
  EXPECT_EQ(databases_.Recipe().unit, "LB");
  EXPECT_FALSE(recent_.AutoloadRecipePending());
  EXPECT_FALSE(recent_.AutoloadTransPending());
}

TEST_F(RecentDatabasesTest, ALaterActivateOpensNothing) {
  recent_.Load();
  recent_.Activate();
  diary_.clear();
  recent_.Activate();
  EXPECT_THAT(diary_, IsEmpty());
}

TEST_F(RecentDatabasesTest, AnActivateDuringTheOpenOpensNothingTwice) {
  recent_.Load();
  pump_.After(Milliseconds(10), [&] { recent_.Activate(); });
  recent_.Activate();
  EXPECT_THAT(Bindings(), ElementsAre("bind recipe YARD.RDB", "bind transaction Y2026.TDB"));
}

TEST_F(RecentDatabasesTest, AFileThatIsGoneIsNotLoadedAndStaysNamedWithoutAMessage) {
  fs::remove(recipes_);
  recent_.Load();
  recent_.Activate();
  EXPECT_THAT(Bindings(), ElementsAre("bind transaction Y2026.TDB"));
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_EQ(databases_.Recipe().path, recipes_);
  EXPECT_EQ(databases_.Recipe().name, "YARD.RDB");
  databases_.CloseRecipeDatabase();
  EXPECT_EQ(databases_.Recipe().name, "");
}

TEST_F(RecentDatabasesTest, NothingIsLoadedWithTheOptionOff) {
  settings_.SetAutoloadRecipeDBOn(false);
  settings_.SetAutoloadTransDBOn(false);
  recent_.Load();
  recent_.Activate();
  EXPECT_THAT(Bindings(), IsEmpty());
  EXPECT_EQ(databases_.Transaction().name, "Y2026.TDB");
}

TEST_F(RecentDatabasesTest, NothingIsLoadedWithoutAName) {
  store_.values["MRU_RecipeFileName"] = "";
  store_.values.erase("MRU_TransFileName");
  recent_.Load();
  EXPECT_FALSE(recent_.AutoloadRecipePending());
  EXPECT_FALSE(recent_.AutoloadTransPending());
}

TEST_F(RecentDatabasesTest, ARefusedFileIsReportedAndTheOtherOneStillOpens) {
  Alter(recipes_, "UPDATE BrantockDatabase SET dBType = 'OTHER'");
  recent_.Load();
  recent_.Activate();
  EXPECT_THAT(BoxTitles(), ElementsAre("Invalid Database"));
  EXPECT_EQ(BoundName(kRecipe), "QXNULRDB.MDB");
  EXPECT_EQ(BoundName(kTransaction), "Y2026.TDB");
}

TEST_F(RecentDatabasesTest, ASaveAsLeavesNothingToRemember) {
  chooser_.Choose(recipes_);
  databases_.BrowseRecipeDatabase();
  chooser_.Choose(app_folder_.DefaultAppPath() / "COPY.RDB");
  databases_.SaveAsRecipeCommand();
  EXPECT_EQ(databases_.Recipe().name, "");
  EXPECT_TRUE(databases_.Recipe().path.empty());
}

}  // namespace
}  // namespace vrx::testing
