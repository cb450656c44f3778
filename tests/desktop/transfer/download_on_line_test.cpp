#include <QCheckBox>

#include <gmock/gmock.h>

#include "desktop/transfer/line_fixture.h"
#include "support/full_recipe_database.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::SizeIs;

const std::string kSentBackup = "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n";

class DownloadOnLine : public LineFixture {
 protected:
  void OpenBackup(const std::string& text) {
    Click(u"cmdDownloadRecipeToKRM"_qs);
    chooser_.Choose(folder_.Write("A.RBU", text));
    Click(u"cmdOpenRecipeBU"_qs);
    EXPECT_EQ(Status().text, "Recipe backup-file opened, ready to download.");
  }
  void OpenDatabase() {
    Click(u"cmdDownloadRecipeToKRM"_qs);
    chooser_.Choose(MakeUserFile("YARD.RDB", DatabaseKind::kRecipe));
    Click(u"cmdOpenRecipeDB"_qs);
    EXPECT_EQ(Status(),
              (StatusLook{"Recipe database-file opened, ready to download.", kStatusBlue}));
    EXPECT_EQ(Path(), (app_folder_->DefaultAppPath() / "YARD.RDB").string());
  }
  void Download(const QString& button, QMessageBox::StandardButton answer) {
    boxes_.answers = {answer};
    Click(button);
    EXPECT_FALSE(Busy());
  }
  void IsTheOverwriteQuestion(const std::string& text) {
    EXPECT_THAT(boxes_.Last(), IsBox(Icon::kQuestion, "Overwrite KRM", text, Buttons::kYesNo));
  }
  // Of a sound module.
  void TheNextDownloadWorks() {
    const auto module = KeptModule("old");
    Download(u"cmdDownloadRecipeBU"_qs, QMessageBox::Yes);
    EXPECT_EQ(Status().color, kStatusGreen) << Status().text;
    EXPECT_EQ(MemoryOf(*module), Find<DataWindow>(u"txtDataWindow"_qs).Bytes());
  }
};

TEST_F(DownloadOnLine, ADatabaseIsInTheModuleAsItIsShown) {
  const auto module = KeptModule("old");
  OpenDatabase();
  auto& active_only = Find<QCheckBox>(u"chkShowActiveIngsOnly"_qs);
  const bool was_active_only = active_only.isChecked();
  std::vector<std::string> shown;
  QObject::connect(&Find<DataWindow>(u"txtDataWindow"_qs), &QPlainTextEdit::textChanged,
                   [&] { shown.push_back(Data()); });
  Download(u"cmdDownloadRecipeDB"_qs, QMessageBox::Yes);
  IsTheOverwriteQuestion(
      "Are you sure you want to overwrite all data in the KRM module with recipe data from the "
      "YARD.RDB database?\n\nThe module has not been uploaded in this run of the program.");
  EXPECT_THAT(shown, ::testing::Contains(
                         "Building recipe file to download:\nFormatting ingredient data...\n"
                         "done!\nFormatting recipe data...\ndone!\nFormatting pen data...\n"
                         "pen formatting done!\nRecipe file complete!\n"));
  const std::string sent = Find<DataWindow>(u"txtDataWindow"_qs).Bytes();
  EXPECT_EQ(sent, "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n\r\n[REC]\r\n\r\n\r\n[PEN]\r\n\r\n\r\n");
  EXPECT_EQ(Status(), (StatusLook{"Download complete!  (" + std::to_string(sent.size()) +
                                      " bytes, Recipe Data)",
                                  kStatusGreen}));
  EXPECT_TRUE(WasShown({"Standby...", kStatusBlue}));
  EXPECT_EQ(active_only.isChecked(), was_active_only);
  EXPECT_EQ(MemoryOf(*module), sent);
}

TEST_F(DownloadOnLine, AnEditedBackupIsInTheModuleAsItWasEdited) {
  const auto module = KeptModule("old");
  OpenBackup(kSentBackup);
  auto& window = Find<DataWindow>(u"txtDataWindow"_qs);
  window.moveCursor(QTextCursor::End);
  QTest::keyClicks(&window, "2,HAY,0");
  Download(u"cmdDownloadRecipeBU"_qs, QMessageBox::Yes);
  IsTheOverwriteQuestion(
      "Are you sure you want to overwrite all data in the KRM module with recipe backup data from "
      "the A.RBU file?\n\nThe module has not been uploaded in this run of the program.");
  EXPECT_EQ(Status(), (StatusLook{"Download complete!  (" + std::to_string(kSentBackup.size() + 7) +
                                      " bytes, Recipe Data)",
                                  kStatusGreen}));
  EXPECT_EQ(MemoryOf(*module), kSentBackup + "2,HAY,0");
}

TEST_F(DownloadOnLine, OverwriteRefusedLeavesTheModule) {
  const auto module = KeptModule("old");
  OpenDatabase();
  Download(u"cmdDownloadRecipeDB"_qs, QMessageBox::No);
  OpenBackup(kSentBackup);
  Download(u"cmdDownloadRecipeBU"_qs, QMessageBox::No);
  EXPECT_EQ(Status().text, "");
  EXPECT_FALSE(line_.PortOpen());
  EXPECT_EQ(MemoryOf(*module), "old");
}

TEST_F(DownloadOnLine, ABackupThatWasUploadedAndSavedGoesBack) {
  const auto module = KeptModule(kSentBackup);
  Upload();
  ClickBox(0);
  chooser_.Choose(folder_ / "A.RBU");
  Click(u"cmdSaveFile"_qs);
  Click(u"cmdDownloadRecipeToKRM"_qs);
  EXPECT_EQ(Data(), "");
  EXPECT_EQ(Path(), "");
  EXPECT_EQ(Status().text, "");
  chooser_.Choose(folder_ / "A.RBU");
  Click(u"cmdOpenRecipeBU"_qs);
  EXPECT_EQ(chooser_.dialogs.back().title, "Open Recipe Backup File");
  EXPECT_EQ(chooser_.dialogs.back().filter,
            "Recipe Backup (*.RBU)|*.RBU|Rescue File (*.KRM)|*.KRM");
  EXPECT_EQ(chooser_.dialogs.back().default_extension, "RBU");
  Download(u"cmdDownloadRecipeBU"_qs, QMessageBox::Yes);
  EXPECT_EQ(Status().color, kStatusGreen) << Status().text;
  EXPECT_EQ(MemoryOf(*module), kSentBackup);
}

TEST_F(DownloadOnLine, NothingOpenedIsRefusedInBothFrames) {
  Click(u"cmdDownloadRecipeToKRM"_qs);
  Click(u"cmdDownloadRecipeDB"_qs);
  EXPECT_EQ(boxes_.Last().title, "Recipe Database-File Error");
  EXPECT_EQ(boxes_.Last().text,
            "You must first 'Open' the Recipe database file that you want to be downloaded.");
  EXPECT_TRUE(HasFocus(u"cmdOpenRecipeDB"_qs));
  Click(u"cmdDownloadRecipeBU"_qs);
  EXPECT_EQ(boxes_.Last().title, "Recipe Backup-File Error");
  EXPECT_EQ(boxes_.Last().icon, Icon::kWarning);
  EXPECT_EQ(boxes_.Last().text,
            "You must first 'Open' the Recipe backup-file that you want to be downloaded.");
  EXPECT_TRUE(HasFocus(u"cmdOpenRecipeBU"_qs));
}

TEST_F(DownloadOnLine, ATextWithoutItsMarkIsRefused) {
  OpenBackup("{DATA_OUT},L\r\n");
  Download(u"cmdDownloadRecipeBU"_qs, QMessageBox::Yes);
  EXPECT_EQ(boxes_.Last().title, "File-Header Error");
  EXPECT_EQ(boxes_.Last().icon, Icon::kWarning);
  EXPECT_EQ(boxes_.Last().text,
            "The Recipe backup-file has an invalid file header and cannot be downloaded.");
  EXPECT_FALSE(line_.PortOpen());
}

TEST_F(DownloadOnLine, ALineLostInTheClearIsReportedWithItsCauseAndTheNextTryWorks) {
  OpenBackup(kSentBackup);
  {
    const auto module = FaultyModule("old", "hang-up=3");
    Download(u"cmdDownloadRecipeBU"_qs, QMessageBox::Yes);
    EXPECT_EQ(Status(), (StatusLook{"Error: Could not clear KRM", kStatusRed}));
    ASSERT_THAT(boxes_.boxes, SizeIs(2));  // the first is the question
    EXPECT_EQ(boxes_.Last().text, "The connection to the serial port was lost.");
    EXPECT_TRUE(boxes_.Last().cause.ends_with(": the line is gone"));
  }
  TheNextDownloadWorks();
}

// The module stops reading, then it is gone.
TEST_F(DownloadOnLine, ALinePulledInTheTextIsReportedAndTheNextTryWorks) {
  OpenBackup(kSentBackup + std::string(500'000, 'x'));
  {
    auto module = Module("old", {});
    // The first count is shown 750 ms before the module answers the clear, and the text begins
    // 1500 ms after that.
    const auto clearing = Once([&] { return Status().text.ends_with(" 0 bytes"); },
                               [&] {
                                 Later(Ms{1500}, [&] { module->Signal(SIGSTOP); });
                                 Later(Ms{3200}, [&] { module.reset(); });
                               });
    Download(u"cmdDownloadRecipeBU"_qs, QMessageBox::Yes);
    EXPECT_EQ(Status(), (StatusLook{"Error: Download failed", kStatusRed}));
    const StatusLook& last_count = shown_.at(shown_.size() - 2);
    EXPECT_THAT(last_count.text,
                ::testing::MatchesRegex("Downloading to KRM\\.\\.\\.\\.  [1-9][0-9]+ bytes"
                                        "(, [0-9]+%(, .* left)?)?"));
    EXPECT_EQ(last_count.color, kStatusBlue);
  }
  OpenBackup(kSentBackup);
  TheNextDownloadWorks();
}

// A text that is longer than the module's memory is sent all the same.
TEST_F(DownloadOnLine, AFullDatabaseGoesOutAndIsCounted) {
  const auto module = KeptModule("old");
  const fs::path file = app_folder_->DefaultAppPath() / "FULL.RDB";
  MakeFullRecipeDatabase(file);
  Click(u"cmdDownloadRecipeToKRM"_qs);
  chooser_.Choose(file);
  Click(u"cmdOpenRecipeDB"_qs);
  Download(u"cmdDownloadRecipeDB"_qs, QMessageBox::Yes);
  const std::string sent = Find<DataWindow>(u"txtDataWindow"_qs).Bytes();
  EXPECT_EQ(Status(), (StatusLook{"Download complete!  (" + std::to_string(sent.size()) +
                                      " bytes, Recipe Data)",
                                  kStatusGreen}));
  EXPECT_EQ(MemoryOf(*module), sent);
}

}  // namespace
}  // namespace vrx::testing
