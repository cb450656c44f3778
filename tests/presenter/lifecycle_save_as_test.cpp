#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenter/lifecycle_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::SizeIs;

class SaveAsFixture : public LifecycleFixture {
 protected:
  SaveAsFixture() {
    chooser_.Choose(recipes_);
    databases_.BrowseRecipeDatabase();
    chooser_.Choose(transactions_);
    databases_.BrowseTransactionDatabase();
    chooser_.dialogs.clear();
    diary_.clear();
  }

  fs::path InData(const std::string& name) const { return app_folder_.DefaultAppPath() / name; }

  fs::path recipes_ = MakeUserFile("YARD.RDB", kRecipe);
  fs::path transactions_ = MakeUserFile("Y2026.TDB", kTransaction);
};

class SaveAsRecipeDB : public SaveAsFixture {};
class SaveAsTransactionDB : public SaveAsFixture {};
class SaveAsRecipeCommand : public SaveAsFixture {};
class SaveAsTransactionCommand : public SaveAsFixture {};

TEST_F(SaveAsRecipeDB, AsksWaitsAndKeepsPathAndName) {
  chooser_.Choose(InData("copy.rdb"));
  EXPECT_TRUE(databases_.SaveAsRecipeDB());
  EXPECT_THAT(diary_, ElementsAre("save dialog", "wait 500"));
  EXPECT_EQ(databases_.SaveAsPath(), InData("copy.rdb"));
  EXPECT_EQ(databases_.SaveAsName(), "COPY.RDB");
  ASSERT_THAT(chooser_.dialogs, SizeIs(1));
  EXPECT_EQ(chooser_.dialogs[0].title, "Save Recipe Database As...");
  EXPECT_EQ(chooser_.dialogs[0].filter, "Recipe Database (*.RDB)|*.RDB|All Files (*.*)|*.*");
  EXPECT_EQ(chooser_.dialogs[0].default_extension, "RDB");
  EXPECT_EQ(chooser_.dialogs[0].flags, 0x40006U);
  EXPECT_EQ(chooser_.dialogs[0].start_folder, "");
}

TEST_F(SaveAsTransactionDB, AsksAndKeepsPathAndNameWithoutWaiting) {
  chooser_.Choose(InData("copy.tdb"));
  EXPECT_TRUE(databases_.SaveAsTransactionDB());
  EXPECT_THAT(diary_, ElementsAre("save dialog"));
  EXPECT_EQ(databases_.SaveAsPath(), InData("copy.tdb"));
  EXPECT_EQ(databases_.SaveAsName(), "COPY.TDB");
  ASSERT_THAT(chooser_.dialogs, SizeIs(1));
  EXPECT_EQ(chooser_.dialogs[0].title, "Save Transaction Database As...");
  EXPECT_EQ(chooser_.dialogs[0].filter, "Transaction Database (*.TDB)|*.TDB|All Files (*.*)|*.*");
  EXPECT_EQ(chooser_.dialogs[0].default_extension, "TDB");
  EXPECT_EQ(chooser_.dialogs[0].flags, 0x40006U);
  EXPECT_EQ(chooser_.dialogs[0].start_folder, "");
}

TEST_F(SaveAsRecipeDB, ACancelIsFalse) {
  chooser_.Cancel();
  EXPECT_FALSE(databases_.SaveAsRecipeDB());
  EXPECT_THAT(diary_, ElementsAre("save dialog"));
  EXPECT_TRUE(databases_.SaveAsPath().empty());
}

TEST_F(SaveAsRecipeDB, RefusesANameOfNineCharacters) {
  chooser_.Choose(InData("NINECHARS.RDB"));
  EXPECT_FALSE(databases_.SaveAsRecipeDB());
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(operator_.boxes[0].title, "Filename Error");
  EXPECT_EQ(operator_.boxes[0].text,
            "NINECHARS.RDB is an invalid filename.\r\nPlease enter a name with a maximum of eight "
            "characters (the file extension is not required).");
  EXPECT_TRUE(databases_.SaveAsPath().empty());
}

TEST_F(SaveAsTransactionDB, TakesANameOfNineCharacters) {
  chooser_.Choose(InData("NINECHARS.TDB"));
  EXPECT_TRUE(databases_.SaveAsTransactionDB());
}

TEST_F(SaveAsRecipeCommand, ClosesCopiesAndOpensTheCopy) {
  window_.views[kRecipe]->exec("UPDATE Recipe SET Name = 'STEERS' WHERE ID = 3");
  const std::string before = ReadAll(recipes_);
  chooser_.Choose(InData("copy.rdb"));
  databases_.SaveAsRecipeCommand();
  EXPECT_THAT(
      diary_,
      ElementsAre("save dialog", "wait 500", "bind recipe QXNULRDB.MDB", "panel recipe 2 []",
                  "panel recipe 4 []", "panel recipe 6 []", "panel recipe 8 []", "unit recipe []",
                  "tab 0 off", "tab 1 off", "tab 2 off", "recipe commands off", "show tab 3",
                  "click tab 3", "wait 50", "busy", "panel recipe 2 [Standby... Loading]",
                  "panel recipe 4 []", "panel recipe 6 []", "panel recipe 8 []",
                  "bind recipe copy.rdb", "unit recipe [LB]", "load id lists",
                  "panel recipe 2 [COPY.RDB]", "panel recipe 4 [LB]", "panel recipe 6 [3/1/2025]",
                  "panel recipe 8 []", "transfer option", "tab 0 on", "tab 1 on", "tab 2 on",
                  "recipe commands on", "check pen capacity", "pen item 1", "ready", "beep"));
  EXPECT_EQ(ReadAll(InData("copy.rdb")), before);
  EXPECT_EQ(ReadAll(recipes_), before);
  EXPECT_THAT(FileNames(app_folder_.DefaultAppPath()),
              ElementsAre("Y2026.TDB", "YARD.RDB", "copy.rdb"));
}

TEST_F(SaveAsRecipeCommand, LeavesPathAndNameEmptyUntilTheNextBrowse) {
  chooser_.Choose(InData("COPY.RDB"));
  databases_.SaveAsRecipeCommand();
  EXPECT_TRUE(databases_.Recipe().path.empty());
  EXPECT_EQ(databases_.Recipe().name, "");
  EXPECT_EQ(databases_.Recipe().unit, "LB");
  EXPECT_EQ(BoundName(kRecipe), "COPY.RDB");
  chooser_.Choose(InData("COPY.RDB"));
  databases_.BrowseRecipeDatabase();
  EXPECT_EQ(databases_.Recipe().name, "COPY.RDB");
}

TEST_F(SaveAsRecipeCommand, ASaveAfterwardsOpensTheCopyAgain) {
  chooser_.Choose(InData("COPY.RDB"));
  databases_.SaveAsRecipeCommand();
  databases_.SaveRecipeDatabase();
  EXPECT_THAT(BoxTitles(), ElementsAre());
  EXPECT_EQ(BoundName(kRecipe), "COPY.RDB");
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("COPY.RDB", "LB", "3/1/2025", ""));
  EXPECT_TRUE(commands_.On("mnuFileCloseRecipeDB"));
}

TEST_F(SaveAsRecipeCommand, ASecondOneCopiesTheCopy) {
  chooser_.Choose(InData("COPY.RDB"));
  databases_.SaveAsRecipeCommand();
  window_.views[kRecipe]->exec("UPDATE Recipe SET Name = 'HEIFER' WHERE ID = 4");
  chooser_.Choose(InData("NEXT.RDB"));
  databases_.SaveAsRecipeCommand();
  EXPECT_THAT(BoxTitles(), ElementsAre());
  EXPECT_EQ(BoundName(kRecipe), "NEXT.RDB");
  EXPECT_THAT(Ask(InData("NEXT.RDB"), "SELECT Name FROM Recipe WHERE ID = 4"),
              ElementsAre("HEIFER"));
}

TEST_F(SaveAsTransactionCommand, GoesOnWithTheCopyOverAnExistingFile) {
  const fs::path old = MakeUserFile("OLDSTUFF9.TDB", kTransaction, "KG");
  chooser_.Choose(old);
  databases_.SaveAsTransactionCommand();
  EXPECT_EQ(ReadAll(old), ReadAll(transactions_));
  EXPECT_EQ(BoundName(kTransaction), "OLDSTUFF9.TDB");
  EXPECT_EQ(databases_.Transaction().unit, "LB");
  EXPECT_EQ(databases_.Transaction().name, "");
  EXPECT_EQ(diary_.back(), "click tab 4");
}

TEST_F(SaveAsTransactionCommand, ACancelLeavesAllOpen) {
  chooser_.Cancel();
  databases_.SaveAsTransactionCommand();
  EXPECT_THAT(diary_, ElementsAre("save dialog"));
  EXPECT_EQ(databases_.Transaction().name, "Y2026.TDB");
}

TEST_F(SaveAsRecipeCommand, OntoItselfKeepsTheFile) {
  const std::string before = ReadAll(recipes_);
  chooser_.Choose(recipes_);
  databases_.SaveAsRecipeCommand();
  EXPECT_EQ(ReadAll(recipes_), before);
  EXPECT_EQ(BoundName(kRecipe), "YARD.RDB");
  EXPECT_THAT(BoxTitles(), ElementsAre());
}

TEST_F(SaveAsRecipeCommand, RefusesTheFileOfTheOtherDatabase) {
  const std::string before = ReadAll(transactions_);
  chooser_.Choose(transactions_);
  databases_.SaveAsRecipeCommand();
  ASSERT_THAT(BoxTitles(), ElementsAre("Save As Recipe Database Error"));
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(operator_.boxes[0].cause, transactions_.string() + " is in use by this program");
  EXPECT_EQ(ReadAll(transactions_), before);
  EXPECT_EQ(BoundName(kTransaction), "Y2026.TDB");
  EXPECT_EQ(BoundName(kRecipe), "QXNULRDB.MDB");
}

TEST_F(SaveAsTransactionCommand, AFolderThatIsMissingEndsClosedUnderItsTitle) {
  chooser_.Choose(InData("none") / "COPY.TDB");
  databases_.SaveAsTransactionCommand();
  EXPECT_THAT(BoxTitles(), ElementsAre("Save As Transaction Database Error"));
  EXPECT_TRUE(databases_.Bound(kTransaction).blank);
  EXPECT_FALSE(commands_.On("mnuFileSaveAsTransactionDB"));
  EXPECT_TRUE(fs::exists(transactions_));
}

TEST_F(SaveAsRecipeCommand, CopiesNothingWhenTheProgramClosesDuringTheDelay) {
  chooser_.Choose(InData("COPY.RDB"));
  pump_.After(Milliseconds(100), [&] { pump_.closing = true; });
  databases_.SaveAsRecipeCommand();
  EXPECT_FALSE(fs::exists(InData("COPY.RDB")));
  EXPECT_EQ(BoundName(kRecipe), "YARD.RDB");
}

}  // namespace
}  // namespace vrx::testing
