#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenter/lifecycle_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class BrowseRecipeDatabase : public LifecycleFixture {};
class BrowseTransactionDatabase : public LifecycleFixture {};
class OpenRecipeDatabase : public LifecycleFixture {};
class OpenTransactionDatabase : public LifecycleFixture {};

TEST_F(OpenRecipeDatabase, RunsItsStepsInOrder) {
  const fs::path path = MakeUserFile("yard.rdb", kRecipe, "LB", "'2025-11-20'");
  databases_.OpenRecipeDatabase(path, "YARD.RDB");
  EXPECT_THAT(
      diary_,
      ElementsAre("wait 50", "busy", "panel recipe 2 [Standby... Loading]", "panel recipe 4 []",
                  "panel recipe 6 []", "panel recipe 8 []", "bind recipe yard.rdb",
                  "unit recipe [LB]", "load id lists", "panel recipe 2 [YARD.RDB]",
                  "panel recipe 4 [LB]", "panel recipe 6 [3/1/2025]", "panel recipe 8 [11/20/2025]",
                  "transfer option", "tab 0 on", "tab 1 on", "tab 2 on", "recipe commands on",
                  "check pen capacity", "pen item 1", "ready", "beep"));
  EXPECT_EQ(databases_.Recipe().unit, "LB");
  EXPECT_EQ(tabs_.CurrentTab(), 3);
}

TEST_F(OpenTransactionDatabase, RunsItsStepsInOrderWithoutBusyCursorAndBeep) {
  const fs::path path = MakeUserFile("y2026.tdb", kTransaction, "LB", "'2025-11-20'");
  databases_.OpenTransactionDatabase(path, "Y2026.TDB");
  EXPECT_THAT(diary_,
              ElementsAre("wait 50", "bind transaction y2026.tdb", "unit transaction [LB]",
                          "panel transaction 2 [Y2026.TDB]", "panel transaction 4 [LB]",
                          "panel transaction 6 [3/1/2025]", "panel transaction 8 [11/20/2025]",
                          "tab 4 on", "tab 6 on", "tab 7 on", "transaction commands on", "wait 50",
                          "show tab 4", "click tab 4"));
  EXPECT_EQ(databases_.Transaction().unit, "LB");
}

TEST_F(BrowseRecipeDatabase, SetsAllAsideAsksWaitsAndOpens) {
  const fs::path path = MakeUserFile("yard.rdb", kRecipe);
  chooser_.Choose(path);
  databases_.BrowseRecipeDatabase();
  ASSERT_GE(diary_.size(), 6U);
  EXPECT_THAT(
      Diary(diary_.begin(), diary_.begin() + 6),
      ElementsAre("show tab 3", "click tab 3", "open dialog", "wait 500", "wait 50", "busy"));
  EXPECT_EQ(databases_.Recipe().path, path);
  EXPECT_EQ(databases_.Recipe().name, "YARD.RDB");
  ASSERT_THAT(chooser_.dialogs, SizeIs(1));
  EXPECT_EQ(chooser_.dialogs[0].title, "Open Recipe Database File");
  EXPECT_EQ(chooser_.dialogs[0].filter, "Recipe Database (*.RDB)|*.RDB");
  EXPECT_EQ(chooser_.dialogs[0].default_extension, "RDB");
  EXPECT_EQ(chooser_.dialogs[0].flags, 0x41004U);
  EXPECT_EQ(chooser_.dialogs[0].start_folder, common_ / "Brantock" / "VRX-2260");
}

TEST_F(BrowseTransactionDatabase, AsksAtOnceAndOpens) {
  const fs::path path = MakeUserFile("y2026.tdb", kTransaction);
  chooser_.Choose(path);
  databases_.BrowseTransactionDatabase();
  ASSERT_GE(diary_.size(), 3U);
  EXPECT_THAT(Diary(diary_.begin(), diary_.begin() + 3),
              ElementsAre("open dialog", "wait 50", "bind transaction y2026.tdb"));
  EXPECT_EQ(databases_.Transaction().path, path);
  EXPECT_EQ(databases_.Transaction().name, "Y2026.TDB");
  ASSERT_THAT(chooser_.dialogs, SizeIs(1));
  EXPECT_EQ(chooser_.dialogs[0].title, "Open Transaction Database File");
  EXPECT_EQ(chooser_.dialogs[0].filter, "Transaction Database (*.TDB)|*.TDB");
  EXPECT_EQ(chooser_.dialogs[0].default_extension, "TDB");
  EXPECT_EQ(chooser_.dialogs[0].flags, 0x41004U);
}

TEST_F(BrowseRecipeDatabase, ACancelLeavesTheCommandsOfBothAsTheyAre) {
  databases_.OpenRecipeDatabase(MakeUserFile("YARD.RDB", kRecipe), "YARD.RDB");
  databases_.OpenTransactionDatabase(MakeUserFile("OLD.TDB", kTransaction), "OLD.TDB");
  chooser_.Cancel();
  databases_.BrowseRecipeDatabase();
  for (const char* command : {"mnuFileClose", "mnuFileSave", "Save", "mnuFileSaveAs",
                              "mnuEditRecipe", "mnuViewTransactionFile"}) {
    EXPECT_TRUE(commands_.On(command)) << command;
  }
  EXPECT_EQ(BoundName(kRecipe), "YARD.RDB");
  EXPECT_EQ(BoundName(kTransaction), "OLD.TDB");
}

TEST_F(BrowseRecipeDatabase, LeavesTheTabsAndCommandsOfTheTransactionDatabaseAsTheyAre) {
  databases_.OpenTransactionDatabase(MakeUserFile("OLD.TDB", kTransaction), "OLD.TDB");
  chooser_.Choose(MakeUserFile("YARD.RDB", kRecipe));
  databases_.BrowseRecipeDatabase();
  for (const int tab :
       {kTabIngredients, kTabRecipes, kTabPens, kTabBatchedFed, kTabExport, kTabInsight}) {
    EXPECT_TRUE(commands_.TabOn(tab)) << tab;
  }
  EXPECT_TRUE(commands_.On("mnuFileSaveTransactionDB"));
  EXPECT_TRUE(commands_.On("mnuViewTransactionFile"));
}

TEST_F(BrowseTransactionDatabase, ACancelChangesNothing) {
  chooser_.Cancel();
  databases_.BrowseTransactionDatabase();
  EXPECT_THAT(diary_, ElementsAre("open dialog"));
  EXPECT_EQ(databases_.Transaction().name, "");
}

TEST_F(BrowseRecipeDatabase, ARefusedFileChangesNothingAndTheNextSaveKeepsTheOpenOne) {
  const fs::path open = MakeUserFile("YARD.RDB", kRecipe);
  chooser_.Choose(open);
  databases_.BrowseRecipeDatabase();
  chooser_.Choose(MakeUserFile("WRONG.RDB", kTransaction));
  databases_.BrowseRecipeDatabase();
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(operator_.boxes[0].title, "Invalid Database");
  EXPECT_EQ(operator_.boxes[0].text,
            "The database file (WRONG.RDB) that you specified, is not a valid VRX-2260 recipe "
            "database.");
  EXPECT_EQ(databases_.Recipe().path, open);
  EXPECT_EQ(databases_.Recipe().name, "YARD.RDB");
  EXPECT_EQ(databases_.Recipe().unit, "LB");
  EXPECT_EQ(BoundName(kRecipe), "YARD.RDB");
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("YARD.RDB", "LB", "3/1/2025", ""));
  EXPECT_TRUE(commands_.On("mnuFileCloseRecipeDB"));
  EXPECT_TRUE(commands_.TabOn(kTabRecipes));

  databases_.SaveRecipeDatabase();
  EXPECT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(BoundName(kRecipe), "YARD.RDB");
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("YARD.RDB", "LB", "3/1/2025", ""));
}

TEST_F(OpenTransactionDatabase, RefusesAFileOfTheOtherType) {
  databases_.OpenTransactionDatabase(MakeUserFile("YARD.RDB", kRecipe), "YARD.RDB");
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].text,
            "The database file (YARD.RDB) that you specified, is not a valid VRX-2260 transaction "
            "database.");
  EXPECT_THAT(diary_, ElementsAre("wait 50", "box Invalid Database"));
}

TEST_F(OpenRecipeDatabase, RefusesABlankTemplate) {
  databases_.OpenRecipeDatabase(Template(kRecipe), "QXNULRDB.MDB");
  EXPECT_THAT(BoxTitles(), ElementsAre("Invalid Database"));
}

TEST_F(OpenRecipeDatabase, WarnsOfTheOtherUnitAndOpensAnyway) {
  databases_.OpenRecipeDatabase(MakeUserFile("YARD.RDB", kRecipe, "KG"), "YARD.RDB");
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(operator_.boxes[0].buttons, Buttons::kOk);
  EXPECT_EQ(operator_.boxes[0].title, "Weight Units Error");
  EXPECT_EQ(operator_.boxes[0].text,
            "The weight units-of-measure of the database file you have selected is not the same as "
            "the current system setting. If you continue, this will likely result in invalid "
            "weight totals being calculated.");
  EXPECT_EQ(databases_.Recipe().unit, "KG");
  EXPECT_EQ(BoundName(kRecipe), "YARD.RDB");
  EXPECT_TRUE(commands_.On("mnuFileCloseRecipeDB"));
}

TEST_F(OpenTransactionDatabase, WarnsOfTheOtherUnitBeforeTheDates) {
  databases_.OpenTransactionDatabase(MakeUserFile("Y.TDB", kTransaction, "KG"), "Y.TDB");
  ASSERT_GE(diary_.size(), 7U);
  EXPECT_THAT(Diary(diary_.begin() + 4, diary_.begin() + 7),
              ElementsAre("panel transaction 4 [KG]", "box Weight Units Error",
                          "panel transaction 6 [3/1/2025]"));
}

TEST_F(OpenRecipeDatabase, TakesANameOfAnyLength) {
  const fs::path path = MakeUserFile("LONGERTHANEIGHT.RDB", kRecipe);
  databases_.OpenRecipeDatabase(path, "LONGERTHANEIGHT.RDB");
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(OpenRecipeDatabase, MovesFromOneFileToTheNextWithoutClosing) {
  databases_.OpenRecipeDatabase(MakeUserFile("A.RDB", kRecipe), "A.RDB");
  diary_.clear();
  databases_.OpenRecipeDatabase(MakeUserFile("B.RDB", kRecipe), "B.RDB");
  EXPECT_THAT(diary_, Contains("bind recipe B.RDB"));
  EXPECT_THAT(diary_, ::testing::Not(Contains("bind recipe QXNULRDB.MDB")));
  EXPECT_EQ(window_.views[kRecipe], databases_.Bound(kRecipe).connection.get());
}

TEST_F(OpenRecipeDatabase, IsAmongTheOpenedUntilItIsClosed) {
  const fs::path recipes = MakeUserFile("YARD.RDB", kRecipe);
  const fs::path transactions = MakeUserFile("Y2026.TDB", kTransaction, "KG");
  databases_.OpenRecipeDatabase(recipes, "YARD.RDB");
  EXPECT_EQ(databases_.OpenedRecipes().path, recipes);
  EXPECT_EQ(databases_.OpenedRecipes().name, "YARD.RDB");
  EXPECT_EQ(databases_.Opened().recipe_db_path, recipes);
  EXPECT_EQ(databases_.Opened().trans_db_path, "");
  databases_.OpenTransactionDatabase(transactions, "Y2026.TDB");
  databases_.CloseRecipeDatabase();
  EXPECT_EQ(databases_.OpenedRecipes().path, "");
  EXPECT_EQ(databases_.Opened().recipe_db_path, "");
  EXPECT_EQ(databases_.Opened().trans_db_path, transactions);
  EXPECT_EQ(databases_.Opened().trans_db_uom, "KG");
}

TEST_F(OpenRecipeDatabase, LeavesThePathOfTheSideAlone) {
  databases_.OpenRecipeDatabase(MakeUserFile("A.RDB", kRecipe), "A.RDB");
  EXPECT_TRUE(databases_.Recipe().path.empty());
  EXPECT_EQ(databases_.Recipe().name, "");
}

TEST_F(OpenRecipeDatabase, AnOpenDuringADelayIsTheOneThatIsReplaced) {
  const fs::path inner = MakeUserFile("INNER.RDB", kRecipe);
  pump_.After(Milliseconds(10), [&] { databases_.OpenRecipeDatabase(inner, "INNER.RDB"); });
  databases_.OpenRecipeDatabase(MakeUserFile("OUTER.RDB", kRecipe), "OUTER.RDB");
  EXPECT_EQ(BoundName(kRecipe), "OUTER.RDB");
  EXPECT_EQ(window_.views[kRecipe], databases_.Bound(kRecipe).connection.get());
}

TEST_F(OpenRecipeDatabase, AnotherFileBoundWhileListsLoadIsTheOneWhoseUnitShows) {
  const fs::path inner = MakeUserFile("INNER.RDB", kRecipe, "KG");
  window_.on_load_id_lists = [&] {
    window_.on_load_id_lists = nullptr;
    databases_.OpenRecipeDatabase(inner, "INNER.RDB");
  };
  databases_.OpenRecipeDatabase(MakeUserFile("OUTER.RDB", kRecipe), "OUTER.RDB");
  EXPECT_EQ(BoundName(kRecipe), "INNER.RDB");
  EXPECT_EQ(databases_.Recipe().unit, "KG");
}

TEST_F(OpenRecipeDatabase, AnotherFileBoundWhileListsLoadIsTheOneInTheStatusBar) {
  const fs::path inner = MakeUserFile("INNER.RDB", kRecipe);
  window_.on_load_id_lists = [&] {
    window_.on_load_id_lists = nullptr;
    databases_.OpenRecipeDatabase(inner, "INNER.RDB");
  };
  databases_.OpenRecipeDatabase(MakeUserFile("OUTER.RDB", kRecipe), "OUTER.RDB");
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("INNER.RDB", "LB", "3/1/2025", ""));
  EXPECT_FALSE(operator_.busy);
}

TEST_F(OpenRecipeDatabase, NamesTheFixedRecordsThatAreMissing) {
  const fs::path path = MakeUserFile("YARD.RDB", kRecipe);
  Alter(path, "DELETE FROM Ingredient WHERE ID IN (3, 17, 18, 19); DELETE FROM Pen WHERE ID = 400");
  databases_.OpenRecipeDatabase(path, "YARD.RDB");
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(operator_.boxes[0].title, "Incomplete Database");
  EXPECT_EQ(operator_.boxes[0].text,
            "The recipe database YARD.RDB lacks these records: ingredients 3, 17-19; pens 400."
            "\r\n\r\nThey cannot be edited or sent. Restore the file from a backup copy.");
  EXPECT_EQ(BoundName(kRecipe), "YARD.RDB");
}

TEST_F(OpenTransactionDatabase, StopsAtEachDelayWhenTheProgramCloses) {
  const fs::path path = MakeUserFile("Y.TDB", kTransaction);
  pump_.After(Milliseconds(70), [&] { pump_.closing = true; });
  databases_.OpenTransactionDatabase(path, "Y.TDB");
  EXPECT_EQ(diary_.back(), "wait 50");
  EXPECT_EQ(BoundName(kTransaction), "Y.TDB");
  diary_.clear();
  databases_.OpenTransactionDatabase(path, "Y.TDB");
  EXPECT_THAT(diary_, IsEmpty());
}

TEST_F(BrowseRecipeDatabase, OpensNothingWhenTheProgramClosesDuringTheDelay) {
  chooser_.Choose(MakeUserFile("YARD.RDB", kRecipe));
  pump_.After(Milliseconds(20), [&] { pump_.closing = true; });
  databases_.BrowseRecipeDatabase();
  EXPECT_EQ(databases_.Recipe().name, "");
  EXPECT_EQ(BoundName(kRecipe), "QXNULRDB.MDB");
}

}  // namespace
}  // namespace vrx::testing
