#include <gmock/gmock.h>

#include "presenter/recipe_download_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST_F(RecipeDownloadTest, MainButtonClearsTheTabAndShowsTheRecipeFrames) {
  tab.data_window = "old";
  tab.file_path = "old";
  tab.data_files_frame_visible = true;
  op.status_lines = {"old"};
  session.DownloadRecipeToKRM();
  EXPECT_THAT(tab.data_window, IsEmpty());
  EXPECT_THAT(tab.file_path, IsEmpty());
  EXPECT_THAT(op.Status(), IsEmpty());
  EXPECT_TRUE(tab.recipe_frames_visible);
  EXPECT_FALSE(tab.data_files_frame_visible);
  EXPECT_THAT(windows, ElementsAre(""));
}

TEST_F(RecipeDownloadTest, OpenedDatabaseIsReadyToDownload) {
  on_open = [&] { OpenSmallYard(); };
  EXPECT_TRUE(session.OpenRecipeDB());
  EXPECT_EQ(tab.file_path, path.string());
  EXPECT_EQ(op.Status(), "Recipe database-file opened, ready to download.");
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST_F(RecipeDownloadTest, NoDatabaseOpenedSaysNothing) {
  tab.file_path = "old";
  EXPECT_FALSE(session.OpenRecipeDB());
  EXPECT_THAT(tab.file_path, IsEmpty());
  EXPECT_THAT(op.status_lines, IsEmpty());
}

TEST_F(RecipeDownloadTest, OpenedDatabaseIsLoadedAtOnceInTheDirectConnection) {
  Connect(Connection::kIndicator);
  on_open = [&] { OpenSmallYard(); };
  op.answers = {Answer::kYes};
  EXPECT_TRUE(session.OpenRecipeDB());
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), kSmallYardFile);
}

TEST_F(RecipeDownloadTest, DatabaseHasToBeOpenFirst) {
  op.status_lines = {"old"};
  EXPECT_FALSE(session.DownloadRecipeDB());
  EXPECT_THAT(
      op.boxes.at(0),
      IsBox(Icon::kWarning, "Recipe Database-File Error",
            "You must first 'Open' the Recipe database file that you want to be downloaded."));
  EXPECT_EQ(op.beeps, 1);
  EXPECT_THAT(op.Status(), IsEmpty());
  EXPECT_THAT(focused, ElementsAre("cmdOpenRecipeDB"));
  EXPECT_EQ(op.busy_changes, 0);
}

TEST_F(RecipeDownloadTest, DatabaseDownloadAsksByTheDatabasesName) {
  OpenSmallYard();
  op.answers = {Answer::kNo};
  const std::string before = ReadAll(path);
  EXPECT_FALSE(session.DownloadRecipeDB());
  EXPECT_THAT(
      op.boxes.at(0),
      IsBox(Icon::kQuestion, "Overwrite KRM",
            "Are you sure you want to overwrite all data in the KRM module with recipe data from "
            "the YARD.RDB database?\r\n\r\nRecipes without ration target: 1 (STEERS).\r\n"
            "Ingredients without dry matter: 5 (MINERAL).\r\nThe module has not been uploaded in "
            "this run of the "
            "program.",
            Buttons::kYesNo));
  EXPECT_TRUE(op.boxes[0].refuses_by_default);
  EXPECT_EQ(op.beeps, 1);
  EXPECT_EQ(tab.file_path, path.string());
  EXPECT_EQ(op.busy_changes, 0);
  EXPECT_THAT(serial.events, IsEmpty());
  EXPECT_THAT(windows, ElementsAre(""));
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(RecipeDownloadTest, DatabaseIsSentAsItsRecipeFile) {
  OpenSmallYard();
  ModuleAnswers();
  op.answers = {Answer::kYes};
  EXPECT_TRUE(session.DownloadRecipeDB());
  EXPECT_EQ(serial.sent, kEchoes + kSmallYardFile);
  EXPECT_EQ(tab.data_window, kSmallYardFile);
  EXPECT_EQ(op.Status(), "Download complete!  (" + std::to_string(kSmallYardFile.size()) +
                             " bytes, Recipe Data)");
  EXPECT_EQ(op.status_color, StatusColor::kGreen);
  EXPECT_EQ(op.beeps, 2);
  EXPECT_EQ(op.boxes.size(), 1U);
  EXPECT_FALSE(op.busy);
}

TEST_F(RecipeDownloadTest, WindowFollowsTheBuildingLineByLine) {
  OpenSmallYard();
  ModuleAnswers();
  op.answers = {Answer::kYes};
  session.DownloadRecipeDB();
  ASSERT_EQ(windows.size(), 10U);
  EXPECT_EQ(windows[1], "Building recipe file to download:\r\n");
  EXPECT_EQ(windows[2],
            "Building recipe file to download:\r\n"
            "Formatting ingredient data...\r\n");
  EXPECT_EQ(windows[8],
            "Building recipe file to download:\r\n"
            "Formatting ingredient data...\r\n"
            "done!\r\n"
            "Formatting recipe data...\r\n"
            "done!\r\n"
            "Formatting pen data...\r\n"
            "pen formatting done!\r\n"
            "Recipe file complete!\r\n");
  EXPECT_EQ(windows[9], kSmallYardFile);
}

TEST_F(RecipeDownloadTest, IsBusyAndBlueWhileItRuns) {
  OpenSmallYard();
  ModuleAnswers();
  op.answers = {Answer::kYes};
  op.status_color = StatusColor::kRed;
  bool busy = false;
  StatusColor color = StatusColor::kRed;
  pump.After(Milliseconds{4000}, [&] {
    busy = op.busy;
    color = op.status_color;
  });
  session.DownloadRecipeDB();
  EXPECT_TRUE(busy);
  EXPECT_EQ(color, StatusColor::kBlue);
  EXPECT_EQ(op.busy_changes, 2);
}

TEST_F(RecipeDownloadTest, OptionChoosesBatchTargets) {
  Recipe(tables, 1).ration_target = "5000";
  OpenSmallYard();
  ModuleAnswers();
  settings.SetBatchTargetWtIsRecTargetOn(true);
  op.answers = {Answer::kYes};
  EXPECT_TRUE(session.DownloadRecipeDB());
  EXPECT_THAT(tab.data_window, HasSubstr("\r\n1,STEERS,0,5000,0,CORN,HAY;4017,983\r\n"));
}

TEST_F(RecipeDownloadTest, RecomputedValuesAreStoredBeforeTheyAreSent) {
  Recipe(tables, 1).head_count = 80;
  OpenSmallYard();
  op.answers = {Answer::kYes};
  int head_count = -1;
  pump.After(Milliseconds{1}, [&] { head_count = ReadTables(path).recipes.at(0).head_count; });
  EXPECT_FALSE(session.DownloadRecipeDB());
  EXPECT_EQ(head_count, 0);
  EXPECT_EQ(ReadTables(path).lines.at(2).dry_matter, "1750");
  EXPECT_EQ(QueryText(path, "SELECT Modified FROM History"), "2026-01-05");
}

TEST_F(RecipeDownloadTest, EditorThenShowsTheHighestRecipeInUse) {
  UseRecipe(tables, 40, "UNTYPED", "!");
  OpenSmallYard();
  ModuleAnswers();
  op.answers = {Answer::kYes};
  session.DownloadRecipeDB();
  EXPECT_THAT(shown_recipes, ElementsAre(40));
}

TEST_F(RecipeDownloadTest, SilentModuleIsReportedInTheStatusLineAlone) {
  OpenSmallYard();
  op.answers = {Answer::kYes};
  EXPECT_FALSE(session.DownloadRecipeDB());
  EXPECT_EQ(op.Status(), "Error: KRM not detected");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(krm.KRM_FailureCause(), "no reply");
  EXPECT_EQ(tab.data_window, kSmallYardFile);
  EXPECT_FALSE(op.busy);
}

TEST_F(RecipeDownloadTest, RecipeThatDoesNotComputeIsReportedAndNothingIsSentOrStored) {
  Recipe(tables, 1).head_count = 80;
  UseRecipe(tables, 90, "HEAVY", "W");
  AddWeightLine(tables, 90, 1, "2147483647");
  AddWeightLine(tables, 90, 1, "1");
  OpenSmallYard();
  op.answers = {Answer::kYes};
  const std::string before = ReadAll(path);
  EXPECT_FALSE(session.DownloadRecipeDB());
  EXPECT_THAT(
      op.boxes.at(1),
      IsBox(Icon::kCritical, "Recipe Database-File Error",
            "Recipe 90 (HEAVY) cannot be computed. Overflow: a line's as-fed weight is outside the "
            "range of 32-bit whole numbers.\r\nNothing was downloaded."));
  EXPECT_THAT(serial.events, IsEmpty());
  EXPECT_THAT(shown_recipes, IsEmpty());
  EXPECT_TRUE(ReadAll(path) == before);
  EXPECT_FALSE(op.busy);
}

TEST_F(RecipeDownloadTest, FailureOfTheDatabaseIsReportedAndNothingIsSent) {
  OpenSmallYard();
  Execute(path, "DROP TABLE Pen");
  op.answers = {Answer::kYes};
  EXPECT_FALSE(session.DownloadRecipeDB());
  EXPECT_THAT(op.boxes.at(1), IsBox(Icon::kCritical, "Recipe Database-File Error",
                                    "There is an invalid table in the specified database."));
  EXPECT_THAT(op.boxes[1].cause, HasSubstr("YARD.RDB"));
  EXPECT_EQ(op.beeps, 2);
  EXPECT_THAT(serial.events, IsEmpty());
  EXPECT_FALSE(op.busy);
}

TEST_F(RecipeDownloadTest, DirectConnectionLoadsMemoryAfterTheQuestion) {
  OpenSmallYard();
  Connect(Connection::kIndicator);
  krm.GS_KRM_VirtualMemory("old");
  op.answers = {Answer::kYes};
  op.status_color = StatusColor::kRed;
  EXPECT_TRUE(session.DownloadRecipeDB());
  EXPECT_EQ(op.boxes.at(0).title, "Overwrite KRM");
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), kSmallYardFile);
  EXPECT_EQ(serial.sent, "\x14\x1F");
  EXPECT_EQ(op.Status(), kWaitingAfterLoad);
  EXPECT_EQ(op.status_color, StatusColor::kBlue);
  EXPECT_EQ(tab.data_window, kSmallYardFile);
  EXPECT_FALSE(op.busy);
}

TEST_F(RecipeDownloadTest, DirectConnectionLeavesMemoryAfterANo) {
  OpenSmallYard();
  Connect(Connection::kIndicator);
  krm.GS_KRM_VirtualMemory("old");
  op.answers = {Answer::kNo};
  EXPECT_FALSE(session.DownloadRecipeDB());
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "old");
}

TEST_F(RecipeDownloadTest, OpenedBackupIsShownAndReadyToDownload) {
  EXPECT_TRUE(ChooseBackup());
  ASSERT_EQ(files.dialogs.size(), 1U);
  EXPECT_EQ(files.dialogs[0].title, "Open Recipe Backup File");
  EXPECT_EQ(tab.data_window, kBackup);
  EXPECT_EQ(tab.file_path, (folder / "old.rbu").string());
  EXPECT_EQ(op.Status(), "Recipe backup-file opened, ready to download.");
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST_F(RecipeDownloadTest, CanceledBackupLeavesTheWindowAndForgetsThePath) {
  tab.data_window = "old";
  tab.file_path = "old";
  files.Cancel();
  EXPECT_FALSE(session.OpenRecipeBU());
  EXPECT_EQ(tab.data_window, "old");
  EXPECT_THAT(tab.file_path, IsEmpty());
  EXPECT_THAT(op.status_lines, IsEmpty());
}

TEST_F(RecipeDownloadTest, BackupThatCannotBeReadIsReportedAndCannotBeDownloaded) {
  tab.data_window = kBackup;
  files.Choose(folder / "gone.rbu");
  EXPECT_FALSE(session.OpenRecipeBU());
  EXPECT_THAT(op.boxes.at(0), IsBox(Icon::kWarning, "Recipe Backup-File Error",
                                    "The Recipe backup-file cannot be read."));
  EXPECT_THAT(op.boxes[0].cause, HasSubstr("gone.rbu"));
  EXPECT_THAT(op.status_lines, IsEmpty());
  op.answers = {Answer::kYes};
  EXPECT_FALSE(session.DownloadRecipeBU());
  EXPECT_EQ(op.boxes.back().title, "File-Header Error");
}

TEST_F(RecipeDownloadTest, BackupHasToBeOpenFirst) {
  tab.data_window = kBackup;
  EXPECT_FALSE(session.DownloadRecipeBU());
  EXPECT_THAT(
      op.boxes.at(0),
      IsBox(Icon::kWarning, "Recipe Backup-File Error",
            "You must first 'Open' the Recipe backup-file that you want to be downloaded."));
  EXPECT_EQ(op.beeps, 1);
  EXPECT_THAT(focused, ElementsAre("cmdOpenRecipeBU"));
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST_F(RecipeDownloadTest, BackupDownloadAsksByTheFilesName) {
  ChooseBackup();
  op.answers = {Answer::kNo};
  tab.file_path = "elsewhere";
  EXPECT_FALSE(session.DownloadRecipeBU());
  EXPECT_THAT(
      op.boxes.at(0),
      IsBox(Icon::kQuestion, "Overwrite KRM",
            "Are you sure you want to overwrite all data in the KRM module with recipe backup data "
            "from the OLD.RBU file?\r\n\r\nThe module has not been uploaded in this run of the "
            "program.",
            Buttons::kYesNo));
  EXPECT_EQ(op.beeps, 1);
  EXPECT_THAT(op.Status(), IsEmpty());
  EXPECT_EQ(tab.file_path, (folder / "old.rbu").string());
  EXPECT_EQ(op.busy_changes, 0);
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST_F(RecipeDownloadTest, TextWithoutTheHeaderOfABackupIsRefusedAfterTheQuestion) {
  ChooseBackup(" {DATA_IN},L\r\n");
  op.answers = {Answer::kYes};
  EXPECT_FALSE(session.DownloadRecipeBU());
  EXPECT_THAT(op.boxes.at(1),
              IsBox(Icon::kWarning, "File-Header Error",
                    "The Recipe backup-file has an invalid file header and cannot be downloaded."));
  EXPECT_EQ(op.beeps, 2);
  EXPECT_EQ(op.busy_changes, 0);
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST_F(RecipeDownloadTest, BackupIsSentByteForByte) {
  ChooseBackup();
  ModuleAnswers();
  op.answers = {Answer::kYes};
  EXPECT_TRUE(session.DownloadRecipeBU());
  EXPECT_EQ(serial.sent, kEchoes + kBackup);
  EXPECT_EQ(op.Status(), "Download complete!  (33 bytes, Recipe Data)");
  EXPECT_EQ(op.status_color, StatusColor::kGreen);
  EXPECT_EQ(op.beeps, 2);
  EXPECT_EQ(op.busy_changes, 2);
}

TEST_F(RecipeDownloadTest, WhatTheOperatorEditedGoesOutAndNotTheFile) {
  ChooseBackup();
  ModuleAnswers();
  tab.data_window = "{DATA_IN},edited";
  op.answers = {Answer::kYes};
  EXPECT_TRUE(session.DownloadRecipeBU());
  EXPECT_EQ(serial.sent, kEchoes + "{DATA_IN},edited");
  EXPECT_EQ(ReadAll(folder / "old.rbu"), kBackup);
}

TEST_F(RecipeDownloadTest, BackupFailsAsADatabaseDoes) {
  ChooseBackup();
  op.answers = {Answer::kYes};
  serial.WillAnswer("\x19\x1F");
  EXPECT_FALSE(session.DownloadRecipeBU());
  EXPECT_EQ(op.Status(), "Error: Could not clear KRM");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_FALSE(op.busy);
}

TEST_F(RecipeDownloadTest, OpenedBackupIsLoadedAtOnceInTheDirectConnection) {
  Connect(Connection::kIndicator);
  op.answers = {Answer::kYes};
  EXPECT_TRUE(ChooseBackup());
  EXPECT_EQ(op.boxes.at(0).title, "Overwrite KRM");
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), kBackup);
  EXPECT_EQ(serial.sent, "\x14\x1F");
  EXPECT_EQ(op.Status(), kWaitingAfterLoad);
}

TEST_F(RecipeDownloadTest, LoadingTakesTheTextThoughTheWindowChangesMeanwhile) {
  Connect(Connection::kIndicator);
  op.answers = {Answer::kYes};
  pump.After(Milliseconds{500}, [&] { tab.data_window = std::string(200, '?'); });
  ChooseBackup();
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), kBackup);
}

// The click runs during a wait of the connection, which then continues and answers from the memory.
TEST_F(RecipeDownloadTest, MemoryIsLoadedDuringTheConnection) {
  OpenSmallYard();
  op.answers = {Answer::kYes};
  pump.After(Milliseconds{1000}, [&] { EXPECT_TRUE(session.DownloadRecipeDB()); });
  pump.After(Milliseconds{4000}, [&] { serial.Arrives("\x15"); });
  pump.After(Milliseconds{9000}, [&] { direct.ConnectModule(); });
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_EQ(serial.sent, "\x14\x1F\x15\x1F" + kSmallYardFile + "\x1F");
}

TEST_F(RecipeDownloadTest, SavedBackupCanBeOpenedAndDownloaded) {
  tab.data_window = kSmallYardFile;
  files.Choose(folder / "copy.rbu");
  ASSERT_TRUE(data_files.SaveRecipeBackupFile());
  tab.data_window.clear();
  files.Choose(folder / "copy.rbu");
  ASSERT_TRUE(session.OpenRecipeBU());
  ModuleAnswers();
  op.answers = {Answer::kYes};
  EXPECT_TRUE(session.DownloadRecipeBU());
  EXPECT_EQ(serial.sent, kEchoes + kSmallYardFile);
}

TEST_F(RecipeDownloadTest, ClosingProgramEndsItAndReleasesTheMouse) {
  OpenSmallYard();
  op.answers = {Answer::kYes};
  pump.After(Milliseconds{300}, [&] { pump.closing = true; });
  EXPECT_FALSE(session.DownloadRecipeDB());
  EXPECT_EQ(pump.Now(), Milliseconds{300});
  EXPECT_EQ(op.Status(), "Error: The program is closing");
  EXPECT_FALSE(op.busy);
}

}  // namespace
}  // namespace vrx::testing
