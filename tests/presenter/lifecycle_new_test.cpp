#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenter/lifecycle_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class NewRecipeDatabase : public LifecycleFixture {
 protected:
  fs::path Choose(const std::string& name) {
    fs::path path = app_folder_.DefaultAppPath() / name;
    chooser_.Choose(path);
    return path;
  }
};
class NewTransactionDatabase : public NewRecipeDatabase {};

TEST_F(NewRecipeDatabase, RunsItsStepsInOrder) {
  const fs::path path = Choose("yard.rdb");
  databases_.NewRecipeDatabase();
  EXPECT_THAT(
      diary_,
      ElementsAre("show tab 3", "click tab 3", "save dialog", "wait 1000", "busy",
                  "panel recipe 2 [Standby...]", "panel recipe 4 []", "panel recipe 6 []",
                  "panel recipe 8 []", "bind recipe yard.rdb", "hide pen warning",
                  "unit recipe [LB]", "load id lists", "panel recipe 2 [YARD.RDB]",
                  "panel recipe 6 [1/5/2026]", "panel recipe 4 [LB]", "tab 0 on", "tab 1 on",
                  "tab 2 on", "recipe commands on", "show tab 0", "click tab 0", "ready", "beep"));
  EXPECT_EQ(databases_.Recipe().path, path);
  EXPECT_EQ(databases_.Recipe().name, "YARD.RDB");
  EXPECT_EQ(databases_.Recipe().unit, "LB");
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("YARD.RDB", "LB", "1/5/2026", ""));
  EXPECT_THAT(Ask(path, "SELECT dBType FROM BrantockDatabase"), ElementsAre("USER_RECIPE_DB"));
  EXPECT_THAT(Ask(path, "SELECT Modified FROM History"), ElementsAre("NULL"));
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(NewTransactionDatabase, RunsItsStepsInOrder) {
  const fs::path path = Choose("y2026.tdb");
  settings_.SetSystemUnits("KG");
  databases_.NewTransactionDatabase();
  EXPECT_THAT(diary_, ElementsAre("save dialog", "busy", "panel transaction 2 [Standby...]",
                                  "panel transaction 4 []", "panel transaction 6 []",
                                  "panel transaction 8 []", "bind transaction y2026.tdb",
                                  "unit transaction [KG]", "panel transaction 2 [Y2026.TDB]",
                                  "panel transaction 6 [1/5/2026]", "panel transaction 4 [KG]",
                                  "tab 4 on", "tab 6 on", "tab 7 on", "transaction commands on",
                                  "show tab 4", "click tab 4", "ready"));
  EXPECT_EQ(databases_.Transaction().path, path);
  EXPECT_EQ(databases_.Transaction().name, "Y2026.TDB");
  EXPECT_EQ(databases_.Transaction().unit, "KG");
  EXPECT_THAT(Ask(path, "SELECT dBType FROM BrantockDatabase"), ElementsAre("USER_TRANS_DB"));
  EXPECT_THAT(Ask(path, "SELECT Created FROM History"), ElementsAre("2026-01-05"));
}

TEST_F(NewRecipeDatabase, AsksForAFileInTheDataFolder) {
  chooser_.Cancel();
  databases_.NewRecipeDatabase();
  ASSERT_THAT(chooser_.dialogs, SizeIs(1));
  EXPECT_EQ(chooser_.dialogs[0].title, "Create New Recipe Database File");
  EXPECT_EQ(chooser_.dialogs[0].filter, "Recipe Database (*.RDB)|*.RDB");
  EXPECT_EQ(chooser_.dialogs[0].default_extension, "RDB");
  EXPECT_EQ(chooser_.dialogs[0].flags, 0x40000U);
  EXPECT_EQ(chooser_.dialogs[0].start_folder, common_ / "Brantock" / "VRX-2260");
}

TEST_F(NewTransactionDatabase, AsksForAFileInTheDataFolder) {
  chooser_.Cancel();
  databases_.NewTransactionDatabase();
  ASSERT_THAT(chooser_.dialogs, SizeIs(1));
  EXPECT_EQ(chooser_.dialogs[0].title, "Create New Transaction Database File");
  EXPECT_EQ(chooser_.dialogs[0].filter, "Transaction Database (*.TDB)|*.TDB");
  EXPECT_EQ(chooser_.dialogs[0].default_extension, "TDB");
  EXPECT_EQ(chooser_.dialogs[0].flags, 0x40000U);
  EXPECT_EQ(chooser_.dialogs[0].start_folder, common_ / "Brantock" / "VRX-2260");
}

TEST_F(NewRecipeDatabase, ACancelLeavesTheCommandsOfBothAsTheyAre) {
  databases_.OpenRecipeDatabase(MakeUserFile("OLD.RDB", kRecipe), "OLD.RDB");
  databases_.OpenTransactionDatabase(MakeUserFile("OLD.TDB", kTransaction), "OLD.TDB");
  chooser_.Cancel();
  databases_.NewRecipeDatabase();
  for (const char* command : {"mnuFileCloseRecipeDB", "mnuFileSaveTransactionDB", "mnuFileSave"}) {
    EXPECT_TRUE(commands_.On(command)) << command;
  }
  EXPECT_TRUE(commands_.TabOn(kTabIngredients));
  EXPECT_TRUE(commands_.TabOn(kTabBatchedFed));
  EXPECT_EQ(tabs_.CurrentTab(), kTabDataTransfer);
  EXPECT_EQ(BoundName(kRecipe), "OLD.RDB");
  EXPECT_EQ(BoundName(kTransaction), "OLD.TDB");
}

TEST_F(NewRecipeDatabase, LeavesTheCommandsOfTheOtherDatabaseAsTheyAre) {
  databases_.OpenTransactionDatabase(MakeUserFile("OLD.TDB", kTransaction), "OLD.TDB");
  Choose("YARD.RDB");
  databases_.NewRecipeDatabase();
  EXPECT_TRUE(commands_.On("mnuFileSaveRecipeDB"));
  EXPECT_TRUE(commands_.On("mnuFileSaveTransactionDB"));
  EXPECT_TRUE(commands_.TabOn(kTabBatchedFed));
  EXPECT_TRUE(commands_.TabOn(kTabExport));
  EXPECT_EQ(BoundName(kTransaction), "OLD.TDB");
}

TEST_F(NewTransactionDatabase, LeavesCommandsAndTabAsTheyAreAfterACancel) {
  databases_.OpenRecipeDatabase(MakeUserFile("OLD.RDB", kRecipe), "OLD.RDB");
  diary_.clear();
  chooser_.Cancel();
  databases_.NewTransactionDatabase();
  EXPECT_THAT(diary_, ElementsAre("save dialog"));
}

TEST_F(NewRecipeDatabase, RefusesANameOfNineCharacters) {
  const fs::path path = Choose("NINECHARS.RDB");
  databases_.NewRecipeDatabase();
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(operator_.boxes[0].title, "Filename Error");
  EXPECT_EQ(operator_.boxes[0].text,
            "NINECHARS.RDB is an invalid filename.\r\nPlease enter a name with a maximum of eight "
            "characters (the file extension is not required).");
  EXPECT_THAT(diary_, ElementsAre("show tab 3", "click tab 3", "save dialog", "wait 1000",
                                  "box Filename Error"));
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(NewTransactionDatabase, RefusesANameOfNineCharacters) {
  const fs::path path = Choose("NINECHARS.TDB");
  databases_.NewTransactionDatabase();
  EXPECT_THAT(BoxTitles(), ElementsAre("Filename Error"));
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(NewRecipeDatabase, LeavesAnExistingFileAndTheOpenOneUntouched) {
  const fs::path open = MakeUserFile("OLD.RDB", kRecipe);
  databases_.Recall(kRecipe, open, "OLD.RDB");
  databases_.OpenRecipeDatabase(open, "OLD.RDB");
  const std::string before = ReadAll(open);
  Choose("OLD.RDB");
  databases_.NewRecipeDatabase();
  EXPECT_THAT(BoxTitles(), ElementsAre("File Creation Error"));
  EXPECT_EQ(ReadAll(open), before);
  EXPECT_EQ(databases_.Recipe().path, open);
  EXPECT_EQ(BoundName(kRecipe), "OLD.RDB");
}

TEST_F(NewRecipeDatabase, ReportsThatTheTemplateIsMissing) {
  fs::remove(Template(kRecipe));
  Choose("YARD.RDB");
  databases_.NewRecipeDatabase();
  EXPECT_THAT(BoxTitles(), ElementsAre("File Missing Error"));
  EXPECT_EQ(databases_.Recipe().name, "");
}

TEST_F(NewRecipeDatabase, DeletesTheCopyOfAnAlteredTemplateAndKeepsThePath) {
  fs::permissions(Template(kRecipe), fs::perms::owner_write, fs::perm_options::add);
  Alter(Template(kRecipe), "UPDATE BrantockDatabase SET dBType = 'OTHER'");
  const fs::path path = Choose("YARD.RDB");
  diary_.clear();
  databases_.NewRecipeDatabase();
  EXPECT_THAT(diary_, ElementsAre("show tab 3", "click tab 3", "save dialog", "wait 1000",
                                  "box Invalid Database"));
  EXPECT_FALSE(fs::exists(path));
  EXPECT_EQ(databases_.Recipe().path, path);
  EXPECT_EQ(databases_.Recipe().name, "YARD.RDB");
  EXPECT_EQ(BoundName(kRecipe), "QXNULRDB.MDB");
}

TEST_F(NewRecipeDatabase, ReportsAFailureOfTheViewsAndMovesThemBack) {
  window_.on_rebind = [](DatabaseKind, const BoundDatabase& database) {
    if (!database.blank) {
      throw DatabaseError(10, "the disk is gone");
    }
  };
  Choose("YARD.RDB");
  databases_.NewRecipeDatabase();
  ASSERT_THAT(BoxTitles(), ElementsAre("New Recipe File Error"));
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(operator_.boxes[0].text, "Error: 10");
  EXPECT_EQ(operator_.boxes[0].cause, "the disk is gone");
  EXPECT_EQ(window_.views[kRecipe], databases_.Bound(kRecipe).connection.get());
  EXPECT_EQ(BoundName(kRecipe), "QXNULRDB.MDB");
  EXPECT_FALSE(operator_.busy);
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("", "", "", ""));
  EXPECT_EQ(databases_.Recipe().name, "");
  EXPECT_FALSE(commands_.On("mnuFileCloseRecipeDB"));
}

TEST_F(NewRecipeDatabase, ThatCannotBecomeAUsersFileLeavesTheOpenOneInTheStatusBar) {
  const fs::path open = MakeUserFile("OLD.RDB", kRecipe);
  chooser_.Choose(open);
  databases_.BrowseRecipeDatabase();
  fs::permissions(Template(kRecipe), fs::perms::owner_write, fs::perm_options::add);
  Alter(Template(kRecipe), "DROP TABLE UnitsOfMeasure");
  const fs::path path = Choose("YARD.RDB");
  databases_.NewRecipeDatabase();
  EXPECT_THAT(BoxTitles(), ElementsAre("Database UoM Write Error", "File Creation Error"));
  EXPECT_THAT(operator_.boxes[1].text, HasSubstr(path.string() + " was not made: "));
  EXPECT_FALSE(fs::exists(path));
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("OLD.RDB", "LB", "3/1/2025", ""));
  EXPECT_EQ(databases_.Recipe().path, open);
  EXPECT_FALSE(operator_.busy);
}

TEST_F(NewTransactionDatabase, ReportsAFailureOfTheViewsUnderItsOwnTitle) {
  window_.on_rebind = [](DatabaseKind, const BoundDatabase& database) {
    if (!database.blank) {
      throw DatabaseError(10, "the disk is gone");
    }
  };
  Choose("Y2026.TDB");
  databases_.NewTransactionDatabase();
  EXPECT_THAT(BoxTitles(), ElementsAre("New Transaction File Error"));
}

TEST_F(NewRecipeDatabase, StopsAtTheDelayWhenTheProgramCloses) {
  const fs::path path = Choose("YARD.RDB");
  pump_.After(Milliseconds(100), [&] { pump_.closing = true; });
  databases_.NewRecipeDatabase();
  EXPECT_FALSE(fs::exists(path));
  EXPECT_EQ(diary_.back(), "wait 1000");
  EXPECT_EQ(pump_.Now(), Milliseconds(100));
}

TEST_F(NewRecipeDatabase, ShowsNothingMoreWhenTheProgramClosesWhileListsLoad) {
  Choose("YARD.RDB");
  window_.on_load_id_lists = [&] { pump_.closing = true; };
  databases_.NewRecipeDatabase();
  EXPECT_THAT(std::vector<std::string>(diary_.end() - 2, diary_.end()),
              ElementsAre("load id lists", "ready"));
}

TEST_F(NewRecipeDatabase, WritesOfTheViewsGoIntoTheNewFile) {
  const fs::path path = Choose("YARD.RDB");
  databases_.NewRecipeDatabase();
  window_.views[kRecipe]->exec("UPDATE Pen SET FeedAmount = '7' WHERE ID = 400");
  EXPECT_THAT(Ask(path, "SELECT FeedAmount FROM Pen WHERE ID = 400"), ElementsAre("7"));
}

TEST_F(NewRecipeDatabase, IsSilentWithTheBeeperOff) {
  settings_.SetEnableBeeperOn(false);
  Choose("YARD.RDB");
  databases_.NewRecipeDatabase();
  EXPECT_EQ(operator_.beeps, 0);
}

}  // namespace
}  // namespace vrx::testing
