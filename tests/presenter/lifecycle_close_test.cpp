#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/identity.h"
#include "presenter/lifecycle_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LifecycleOfOpenFiles : public LifecycleFixture {
 protected:
  // Both databases are open, selected by the operator.
  LifecycleOfOpenFiles() {
    chooser_.Choose(recipes_);
    databases_.BrowseRecipeDatabase();
    chooser_.Choose(transactions_);
    databases_.BrowseTransactionDatabase();
    diary_.clear();
  }

  fs::path recipes_ = MakeUserFile("YARD.RDB", kRecipe);
  fs::path transactions_ = MakeUserFile("Y2026.TDB", kTransaction);
};

class CloseRecipeDatabase : public LifecycleOfOpenFiles {};
class CloseTransactionDatabase : public LifecycleOfOpenFiles {};
class SaveDatabase : public LifecycleOfOpenFiles {};
class ReleaseDatabases : public LifecycleOfOpenFiles {};

TEST_F(CloseRecipeDatabase, MovesTheViewsToTheBlankTemplateInOrder) {
  databases_.CloseRecipeDatabase();
  EXPECT_THAT(diary_, ElementsAre("bind recipe QXNULRDB.MDB", "panel recipe 2 []",
                                  "panel recipe 4 []", "panel recipe 6 []", "panel recipe 8 []",
                                  "unit recipe []", "tab 0 off", "tab 1 off", "tab 2 off",
                                  "recipe commands off", "show tab 3", "click tab 3"));
  EXPECT_TRUE(databases_.Recipe().path.empty());
  EXPECT_EQ(databases_.Recipe().name, "");
  EXPECT_EQ(databases_.Recipe().unit, "");
  EXPECT_TRUE(databases_.Bound(kRecipe).blank);
  EXPECT_TRUE(commands_.On("Save"));
  EXPECT_TRUE(commands_.On("mnuFileClose"));
}

TEST_F(CloseTransactionDatabase, MovesTheViewsToTheBlankTemplateInOrder) {
  databases_.CloseTransactionDatabase();
  EXPECT_THAT(diary_,
              ElementsAre("bind transaction QXNULXDB.MDB", "panel transaction 2 []",
                          "panel transaction 4 []", "panel transaction 6 []",
                          "panel transaction 8 []", "unit transaction []", "tab 4 off", "tab 6 off",
                          "tab 7 off", "transaction commands off", "show tab 3", "click tab 3"));
  EXPECT_EQ(databases_.Transaction().name, "");
  EXPECT_EQ(databases_.Recipe().name, "YARD.RDB");
}

TEST_F(CloseRecipeDatabase, WithBothClosedNothingCanBeClosedOrSaved) {
  databases_.CloseRecipeDatabase();
  databases_.CloseTransactionDatabase();
  for (const char* command : {"mnuFileClose", "mnuFileSave", "Save", "mnuFileSaveAs"}) {
    EXPECT_FALSE(commands_.On(command)) << command;
  }
}

TEST_F(CloseRecipeDatabase, LosesNothingThatAViewWrote) {
  window_.views[kRecipe]->exec("UPDATE Recipe SET Name = 'STEERS' WHERE ID = 3");
  databases_.CloseRecipeDatabase();
  EXPECT_THAT(Ask(recipes_, "SELECT Name FROM Recipe WHERE ID = 3"), ElementsAre("STEERS"));
}

TEST_F(CloseRecipeDatabase, TheBlankTemplateIsNotWritten) {
  databases_.CloseRecipeDatabase();
  EXPECT_THROW(window_.views[kRecipe]->exec("UPDATE Pen SET Name = 'X'"), SQLite::Exception);
}

TEST_F(SaveDatabase, ClosesAndOpensTheSameFile) {
  databases_.SaveRecipeDatabase();
  EXPECT_THAT(
      diary_,
      ElementsAre("bind recipe QXNULRDB.MDB", "panel recipe 2 []", "panel recipe 4 []",
                  "panel recipe 6 []", "panel recipe 8 []", "unit recipe []", "tab 0 off",
                  "tab 1 off", "tab 2 off", "recipe commands off", "show tab 3", "click tab 3",
                  "wait 50", "busy", "panel recipe 2 [Standby... Loading]", "panel recipe 4 []",
                  "panel recipe 6 []", "panel recipe 8 []", "bind recipe YARD.RDB",
                  "unit recipe [LB]", "load id lists", "panel recipe 2 [YARD.RDB]",
                  "panel recipe 4 [LB]", "panel recipe 6 [3/1/2025]", "panel recipe 8 []",
                  "transfer option", "tab 0 on", "tab 1 on", "tab 2 on", "recipe commands on",
                  "check pen capacity", "pen item 1", "ready", "beep"));
  EXPECT_EQ(databases_.Recipe().path, recipes_);
  EXPECT_EQ(databases_.Recipe().name, "YARD.RDB");
}

TEST_F(SaveDatabase, TheTransactionSideEndsOnItsTab) {
  databases_.SaveTransactionDatabase();
  EXPECT_EQ(diary_.front(), "bind transaction QXNULXDB.MDB");
  EXPECT_EQ(diary_.back(), "click tab 4");
  EXPECT_EQ(databases_.Transaction().path, transactions_);
  EXPECT_EQ(BoundName(kTransaction), "Y2026.TDB");
}

TEST_F(SaveDatabase, WritesNothing) {
  const std::string before = ReadAll(recipes_);
  databases_.SaveRecipeDatabase();
  EXPECT_EQ(ReadAll(recipes_), before);
}

TEST_F(SaveDatabase, ShowsTheDatesAnew) {
  EXPECT_TRUE(identity_.SetDatabaseDate(recipes_, DateSelector::kModified));
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("YARD.RDB", "LB", "3/1/2025", ""));
  databases_.SaveRecipeDatabase();
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("YARD.RDB", "LB", "3/1/2025", "1/5/2026"));
}

TEST_F(SaveDatabase, ThatCannotBeOpenedAgainStaysOpen) {
  Alter(transactions_, "UPDATE BrantockDatabase SET dBType = 'OTHER'");
  databases_.SaveTransactionDatabase();
  EXPECT_THAT(diary_, ElementsAre("box Invalid Database"));
  EXPECT_EQ(BoundName(kTransaction), "Y2026.TDB");
  EXPECT_EQ(databases_.Transaction().path, transactions_);
  EXPECT_TRUE(commands_.On("mnuFileSaveTransactionDB"));
}

TEST_F(ReleaseDatabases, ReleasesViewsBeforeTheirConnections) {
  databases_.Release();
  EXPECT_THAT(diary_, ElementsAre("release views"));
  EXPECT_EQ(databases_.Bound(kRecipe).connection, nullptr);
  EXPECT_EQ(databases_.Bound(kTransaction).connection, nullptr);
}

}  // namespace
}  // namespace vrx::testing
