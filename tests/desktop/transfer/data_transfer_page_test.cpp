#include "desktop/transfer/data_transfer_page.h"

#include <QComboBox>

#include <gmock/gmock.h>

#include "desktop/records/record_page.h"
#include "desktop/transfer/transfer_fixture.h"
#include "support/full_recipe_database.h"
#include "widgets/drawing.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* kEmptyTransactions = "{BAT/FED},L\r\n\r\n";
constexpr const char* kReportPage = "{REPORT}\r\npage one\r\n";
constexpr const char* kShortBackup = "{DATA_IN},L\r\n\r\n[ING]\r\n";

class DataTransferPageTest : public TransferFixture {};

TEST_F(DataTransferPageTest, BeginsWithTheModuleAndNoFrames) {
  ShowTab();
  EXPECT_TRUE(Find<QRadioButton>(u"optConnection(0)"_qs).isChecked());
  EXPECT_EQ(Find<QRadioButton>(u"optConnection(0)"_qs).text(), u"KRM-40"_qs);
  EXPECT_EQ(Find<QRadioButton>(u"optConnection(1)"_qs).text(), u"K-2260"_qs);
  for (const QString& control : {u"frmRecipeFile"_qs, u"frmRecipeBackup"_qs, u"frmDataFiles"_qs,
                                 u"lblMemory"_qs, u"lblMemorySize"_qs, u"prgMemorySize"_qs}) {
    EXPECT_FALSE(Visible(control)) << control.toStdString();
  }
  EXPECT_EQ(Text(u"lblFilePath"_qs), u"Path"_qs);
}

TEST_F(DataTransferPageTest, DownloadDataShowsTheRecipeFrames) {
  ShowTab();
  ModuleHolds(kEmptyTransactions);
  Click(u"cmdUploadDataFromKRM"_qs);
  Click(u"cmdDownloadRecipeToKRM"_qs);
  EXPECT_TRUE(Visible(u"frmRecipeFile"_qs));
  EXPECT_TRUE(Visible(u"frmRecipeBackup"_qs));
  EXPECT_FALSE(Visible(u"frmDataFiles"_qs));
  EXPECT_FALSE(Visible(u"cmdSaveFile"_qs));
  EXPECT_EQ(operator_.Status(), "");
}

TEST_F(DataTransferPageTest, UploadOfOneFileReportsItInTheSingular) {
  ShowTab();
  Click(u"cmdDownloadRecipeToKRM"_qs);
  ModuleHolds(kEmptyTransactions);
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_EQ(operator_.Status(), "Upload complete!  (18 bytes, 1 file)");
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen);
  EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: not readable"));
  EXPECT_TRUE(Visible(u"frmDataFiles"_qs));
  EXPECT_FALSE(Visible(u"frmRecipeFile"_qs));
  EXPECT_FALSE(operator_.busy);
}

TEST_F(DataTransferPageTest, UploadOfSeveralFilesListsThemAll) {
  ShowTab();
  ModuleHolds(std::string(kEmptyTransactions) + kShortBackup + kReportPage + "\f page two");
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_THAT(operator_.Status(), HasSubstr(", 4 files)"));
  EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: not readable",
                                  "Recipe backup file 2: 0 ingredients, 0 recipes, 0 pens",
                                  "Text report 3: 1 line", "Text report 4: 1 line"));
  EXPECT_THAT(Checked(), IsEmpty());
}

// At the start of a transfer of several seconds.
TEST_F(DataTransferPageTest, UploadClearsTheTabAtOnce) {
  ShowTab();
  ModuleHolds(std::string(kEmptyTransactions) + kReportPage);
  Click(u"cmdUploadDataFromKRM"_qs);
  ClickBox(0);
  ASSERT_THAT(Data(), StartsWith("{BAT/FED}"));
  bool seen = false;
  pump_.After(Milliseconds{500}, [&] {
    seen = true;
    EXPECT_EQ(Data(), "");
    EXPECT_EQ(operator_.Status(), "Standby...");
    EXPECT_EQ(operator_.status_color, StatusColor::kBlue);
    EXPECT_TRUE(operator_.busy);
  });
  ModuleHolds(kEmptyTransactions);
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_TRUE(seen);
}

TEST_F(DataTransferPageTest, UploadCountsItsBytesAsTheyCome) {
  ShowTab();
  serial_.WillAnswer("\x19\x1f");
  serial_.WillAnswer({{Milliseconds{100}, "\x15\x1f{BAT/FED}"}, {Milliseconds{1300}, "\x1f"}});
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_THAT(operator_.status_lines, Contains(StartsWith("Uploading from KRM....  11 bytes")));
  EXPECT_EQ(operator_.Status(), "Upload complete!  (12 bytes, 1 file)");
}

TEST_F(DataTransferPageTest, EmptyMemoryEndsRedAndListsNothing) {
  ShowTab();
  ModuleHolds("");
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_EQ(operator_.Status(), "The KRM buffer is empty");
  EXPECT_EQ(operator_.status_color, StatusColor::kRed);
  EXPECT_THAT(Rows(), IsEmpty());
  EXPECT_FALSE(Visible(u"frmDataFiles"_qs));
}

TEST_F(DataTransferPageTest, UnknownTextIsShownAndNotListed) {
  ShowTab();
  ModuleHolds("not ours\r\n");
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_EQ(operator_.Status(), "No recognized data file!");
  EXPECT_EQ(operator_.status_color, StatusColor::kRed);
  EXPECT_EQ(Data(), "not ours\n");
  EXPECT_FALSE(Visible(u"frmDataFiles"_qs));
}

TEST_F(DataTransferPageTest, SilentModuleIsReportedWithItsCause) {
  ShowTab();
  serial_.WillStaySilent();
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_EQ(LastBox().title, "KRM Error");
  EXPECT_EQ(LastBox().icon, Icon::kWarning);
  EXPECT_EQ(LastBox().text,
            "The KRM was not detected. Please verify that the module is connected. Check cable and "
            "connector and then try again.");
  EXPECT_EQ(LastBox().cause, "no reply");
  EXPECT_EQ(operator_.Status(), "Error: KRM not detected");
  EXPECT_EQ(operator_.status_color, StatusColor::kRed);
  EXPECT_EQ(Find<QLabel>(u"lblStatusWindow"_qs).toolTip(), u"no reply"_qs);
  EXPECT_FALSE(operator_.busy);
}

TEST_F(DataTransferPageTest, LineCutInTheMiddleFailsAndTheNextTryWorks) {
  ShowTab();
  serial_.WillAnswer("\x19\x1f");
  serial_.WillAnswer("\x15\x1f{BAT/FED}");
  pump_.After(Milliseconds{3500}, [this] { serial_.LoseLine(); });
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_EQ(operator_.Status(), "Error: Serial line lost");
  EXPECT_EQ(operator_.status_color, StatusColor::kRed);
  EXPECT_EQ(Find<QLabel>(u"lblStatusWindow"_qs).toolTip(), u"fake: the line is gone"_qs);
  ModuleHolds(kEmptyTransactions);
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen);
}

TEST_F(DataTransferPageTest, ABoxTurnsOverAndItsFileIsShown) {
  settings_.SetEnableBeeperOn(true);
  ShowTab();
  ModuleHolds(std::string(kEmptyTransactions) + kReportPage);
  Click(u"cmdUploadDataFromKRM"_qs);
  operator_.beeps = 0;
  ClickBox(0);
  EXPECT_THAT(Checked(), ElementsAre(0));
  EXPECT_EQ(Data(), "{BAT/FED},L\n\n");
  ClickBox(1);
  EXPECT_THAT(Checked(), ElementsAre(0, 1));
  EXPECT_EQ(Data(), "{REPORT}\npage one\n");
  ClickBox(0);
  EXPECT_THAT(Checked(), ElementsAre(1));
  EXPECT_EQ(Data(), "{BAT/FED},L\n\n");
  EXPECT_EQ(operator_.beeps, 3);
}

TEST_F(DataTransferPageTest, TheOnlyBoxStaysChecked) {
  ShowTab();
  ModuleHolds(kEmptyTransactions);
  Click(u"cmdUploadDataFromKRM"_qs);
  ClickBox(0);
  ClickBox(0);
  EXPECT_THAT(Checked(), ElementsAre(0));
}

TEST_F(DataTransferPageTest, TheBoxesAreSeenOnADarkList) {
  ShowTab();
  ModuleHolds(kEmptyTransactions);
  Click(u"cmdUploadDataFromKRM"_qs);
  QPalette dark = List().palette();
  dark.setColor(QPalette::Window, QColor(42, 46, 50));
  dark.setColor(QPalette::Base, QColor(27, 30, 32));
  dark.setColor(QPalette::Text, Qt::white);
  List().setPalette(dark);
  const QRect row = List().visualItemRect(List().item(0));
  const QImage box = List().viewport()->grab({0, row.top(), row.height(), row.height()}).toImage();
  double most = 1;
  for (int x = 0; x < box.width(); ++x) {
    most = std::max(most, ContrastRatio(box.pixelColor(x, box.height() / 2), QColor(27, 30, 32)));
  }
  EXPECT_GE(most, kGraphicsContrast);
}

TEST_F(DataTransferPageTest, TheSpaceBarChecksToo) {
  ShowTab();
  ModuleHolds(kEmptyTransactions);
  Click(u"cmdUploadDataFromKRM"_qs);
  List().setFocus();
  List().setCurrentRow(0);
  QTest::keyClick(&List(), Qt::Key_Space);
  EXPECT_THAT(Checked(), ElementsAre(0));
  EXPECT_THAT(Data(), StartsWith("{BAT/FED}"));
}

TEST_F(DataTransferPageTest, SaveWithoutACheckedBoxIsRefused) {
  ShowTab();
  ModuleHolds(kEmptyTransactions);
  Click(u"cmdUploadDataFromKRM"_qs);
  Click(u"cmdSaveFile"_qs);
  EXPECT_EQ(LastBox().text,
            "You must first select a data file to save. Click on one of the check boxes next to "
            "the file you want to save.");
  EXPECT_EQ(LastBox().title, "Error");
  EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: not readable"));
}

TEST_F(DataTransferPageTest, SaveWritesTheBytesAndMarksTheRow) {
  ShowTab();
  const std::string report = "{REPORT}\r\npage \xE9\xA0\rcut\n";
  ModuleHolds(kEmptyTransactions + report);
  Click(u"cmdUploadDataFromKRM"_qs);
  ClickBox(1);
  const std::filesystem::path file = folder_ / "R1.TXT";
  chooser_.Choose(file);
  Click(u"cmdSaveFile"_qs);
  EXPECT_EQ(ReadAll(file), report);
  EXPECT_EQ(Path(), file.string());
  EXPECT_EQ(operator_.Status(), "Report file (2) saved!");
  EXPECT_THAT(Rows(),
              ElementsAre("Transaction file 1: not readable", "Text report 2: 1 line (saved)"));
  EXPECT_THAT(Checked(), IsEmpty());
  EXPECT_EQ(List().currentRow(), 1);
}

TEST_F(DataTransferPageTest, SaveThatIsCanceledIsReported) {
  ShowTab();
  ModuleHolds(kEmptyTransactions);
  Click(u"cmdUploadDataFromKRM"_qs);
  ClickBox(0);
  chooser_.Cancel();
  Click(u"cmdSaveFile"_qs);
  EXPECT_EQ(operator_.Status(), "Could not save transaction file (1)");
  EXPECT_EQ(operator_.status_color, StatusColor::kBlue);
}

TEST_F(DataTransferPageTest, SaveThatFailsShowsTheReasonInTheTooltip) {
  ShowTab();
  ModuleHolds(kEmptyTransactions);
  Click(u"cmdUploadDataFromKRM"_qs);
  ClickBox(0);
  chooser_.Choose(folder_ / "nowhere/A.QXT");
  Click(u"cmdSaveFile"_qs);
  EXPECT_EQ(operator_.Status(), "Could not save transaction file (1)");
  EXPECT_THAT(Find<QLabel>(u"lblStatusWindow"_qs).toolTip().toStdString(), HasSubstr("nowhere"));
}

TEST_F(DataTransferPageTest, ReloadUploadsOnceMoreAndFocusesSave) {
  ShowTab();
  ModuleHolds(kEmptyTransactions);
  Click(u"cmdUploadDataFromKRM"_qs);
  ModuleHolds(std::string(kEmptyTransactions) + kReportPage);
  Click(u"cmdReload"_qs);
  EXPECT_EQ(List().count(), 2);
  EXPECT_TRUE(HasFocus(u"cmdSaveFile"_qs));
}

TEST_F(DataTransferPageTest, UploadPressedTwiceIsOneUpload) {
  ShowTab();
  for (const Milliseconds moment : {Milliseconds{100}, Milliseconds{1200}, Milliseconds{2300}}) {
    ClickAfter(moment, u"cmdUploadDataFromKRM"_qs);
    ModuleHolds(kEmptyTransactions);
    Click(u"cmdUploadDataFromKRM"_qs);
    EXPECT_EQ(operator_.Status(), "Upload complete!  (18 bytes, 1 file)");
    EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: not readable"));
    EXPECT_THAT(operator_.boxes, IsEmpty());
    EXPECT_FALSE(operator_.busy);
  }
}

// Downloads.

TEST_F(DataTransferPageTest, DownloadOfADatabaseNeedsAnOpenOne) {
  ShowTab();
  Click(u"cmdDownloadRecipeToKRM"_qs);
  Click(u"cmdDownloadRecipeDB"_qs);
  EXPECT_EQ(LastBox().title, "Recipe Database-File Error");
  EXPECT_EQ(LastBox().text,
            "You must first 'Open' the Recipe database file that you want to be downloaded.");
  EXPECT_TRUE(HasFocus(u"cmdOpenRecipeDB"_qs));
}

TEST_F(DataTransferPageTest, OpenGoesThroughTheMenuCommandAndIsReadyToDownload) {
  ShowTab();
  Click(u"cmdDownloadRecipeToKRM"_qs);
  const std::filesystem::path file = MakeUserFile("YARD.RDB", DatabaseKind::kRecipe);
  chooser_.Choose(file);
  Click(u"cmdOpenRecipeDB"_qs);
  EXPECT_EQ(Path(), file.string());
  EXPECT_EQ(operator_.Status(), "Recipe database-file opened, ready to download.");
  EXPECT_EQ(Tabs().currentIndex(), kTabDataTransfer);
}

TEST_F(DataTransferPageTest, OverwriteRefusedSendsNothing) {
  Open(DatabaseKind::kRecipe);
  ShowTab();
  Click(u"cmdDownloadRecipeToKRM"_qs);
  operator_.answers = {Answer::kNo};
  Click(u"cmdDownloadRecipeDB"_qs);
  EXPECT_EQ(LastBox().title, "Overwrite KRM");
  EXPECT_EQ(
      LastBox().text,
      "Are you sure you want to overwrite all data in the KRM module with recipe data from "
      "the YARD.RDB database?\r\n\r\nThe module has not been uploaded in this run of the program.");
  EXPECT_EQ(serial_.sent, "");
  EXPECT_EQ(Data(), "");
}

TEST_F(DataTransferPageTest, DatabaseGoesToTheModuleAsItIsShown) {
  Open(DatabaseKind::kRecipe);
  ShowTab();
  Click(u"cmdDownloadRecipeToKRM"_qs);
  ModuleTakesDownload();
  operator_.answers = {Answer::kYes};
  Click(u"cmdDownloadRecipeDB"_qs);
  EXPECT_EQ(Data(), "{DATA_IN},L\n\n[ING]\n\n\n[REC]\n\n\n[PEN]\n\n\n");
  EXPECT_EQ(serial_.blocks.back(),
            "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n\r\n[REC]\r\n\r\n\r\n[PEN]\r\n\r\n\r\n");
  EXPECT_EQ(operator_.Status(), "Download complete!  (" +
                                    std::to_string(serial_.blocks.back().size()) +
                                    " bytes, Recipe Data)");
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen);
}

TEST_F(DataTransferPageTest, DownloadWithoutAModuleShowsTheReasonInTheTooltip) {
  Open(DatabaseKind::kRecipe);
  ShowTab();
  Click(u"cmdDownloadRecipeToKRM"_qs);
  serial_.failing_property = "PortOpen";
  operator_.answers = {Answer::kYes};
  Click(u"cmdDownloadRecipeDB"_qs);
  EXPECT_EQ(operator_.Status(), "Error: KRM not detected");
  EXPECT_EQ(Find<QLabel>(u"lblStatusWindow"_qs).toolTip(), u"fake: PortOpen refused"_qs);
}

// `HeadCount` of the written recipes becomes 0, which changes the file.
TEST_F(DataTransferPageTest, WhatADownloadStoredIsReadAnew) {
  const std::filesystem::path file = app_folder_->DefaultAppPath() / "FULL.RDB";
  MakeFullRecipeDatabase(file);
  chooser_.Choose(file);
  Main();
  Choose(u"mnuFileOpenRecipeDB"_qs);
  ShowTab();
  calendar_.today = Date{std::chrono::year{2026}, std::chrono::March, std::chrono::day{7}};
  ModuleTakesDownload();
  operator_.answers = {Answer::kYes};
  Click(u"cmdDownloadRecipeToKRM"_qs);
  Click(u"cmdDownloadRecipeDB"_qs);
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen);
  EXPECT_EQ(Find<DatabaseStatusBar>(u"sbRecipe"_qs).Panel(kPanelModified), u"3/7/2026"_qs);
  EXPECT_EQ(Find<RecordPage>(u"pageRecipes"_qs).Position(), 100);
  EXPECT_EQ(Find<QComboBox>(u"cboRecID"_qs).currentIndex(), 100);
}

TEST_F(DataTransferPageTest, DownloadOfABackupNeedsAnOpenOne) {
  ShowTab();
  Click(u"cmdDownloadRecipeToKRM"_qs);
  Click(u"cmdDownloadRecipeBU"_qs);
  EXPECT_EQ(LastBox().title, "Recipe Backup-File Error");
  EXPECT_EQ(LastBox().text,
            "You must first 'Open' the Recipe backup-file that you want to be downloaded.");
  EXPECT_TRUE(HasFocus(u"cmdOpenRecipeBU"_qs));
}

TEST_F(DataTransferPageTest, WhatTheOperatorEditedInTheWindowGoesOut) {
  ShowTab();
  Click(u"cmdDownloadRecipeToKRM"_qs);
  chooser_.Choose(folder_.Write("A.RBU", "{DATA_IN},L\r\nold \xE9\r\nlast"));
  Click(u"cmdOpenRecipeBU"_qs);
  EXPECT_EQ(operator_.Status(), "Recipe backup-file opened, ready to download.");
  auto& window = Find<QPlainTextEdit>(u"txtDataWindow"_qs);
  window.moveCursor(QTextCursor::End);
  QTest::keyClicks(&window, " words");
  ModuleTakesDownload();
  operator_.answers = {Answer::kYes};
  Click(u"cmdDownloadRecipeBU"_qs);
  EXPECT_EQ(
      LastBox().text,
      "Are you sure you want to overwrite all data in the KRM module with recipe backup data "
      "from the A.RBU file?\r\n\r\nThe module has not been uploaded in this run of the program.");
  EXPECT_EQ(serial_.blocks.back(), "{DATA_IN},L\r\nold \xE9\r\nlast words");
}

TEST_F(DataTransferPageTest, BackupWhoseMarkWasEditedAwayIsRefused) {
  ShowTab();
  Click(u"cmdDownloadRecipeToKRM"_qs);
  chooser_.Choose(folder_.Write("A.RBU", kShortBackup));
  Click(u"cmdOpenRecipeBU"_qs);
  auto& window = Find<QPlainTextEdit>(u"txtDataWindow"_qs);
  window.moveCursor(QTextCursor::Start);
  QTest::keyClick(&window, Qt::Key_Delete);
  operator_.answers = {Answer::kYes};
  Click(u"cmdDownloadRecipeBU"_qs);
  EXPECT_EQ(LastBox().title, "File-Header Error");
  EXPECT_EQ(serial_.sent, "");
}

TEST_F(DataTransferPageTest, DownloadCountsItsBytesAsTheyGo) {
  ShowTab();
  Click(u"cmdDownloadRecipeToKRM"_qs);
  chooser_.Choose(folder_.Write("A.RBU", kShortBackup + std::string(3000, 'x')));
  Click(u"cmdOpenRecipeBU"_qs);
  ModuleTakesDownload();
  serial_.per_byte = Milliseconds{1};
  operator_.answers = {Answer::kYes};
  Click(u"cmdDownloadRecipeBU"_qs);
  EXPECT_THAT(operator_.status_lines,
              Contains(StartsWith("Downloading to KRM....  1024 bytes, 33%")));
  EXPECT_THAT(operator_.status_lines,
              Contains(StartsWith("Downloading to KRM....  2048 bytes, 67%")));
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen);
}

// Printing.

TEST_F(DataTransferPageTest, PrintIsOnAsItsOptionSaysWhenTheTabIsEntered) {
  ShowTab();
  EXPECT_FALSE(Enabled(u"cmdPrintText"_qs));
  settings_.SetEnablePrintTextOn(true);
  Find<QPlainTextEdit>(u"txtDataWindow"_qs).setFocus();
  QTest::mouseClick(Tabs().tabBar(), Qt::LeftButton, {},
                    Tabs().tabBar()->tabRect(kTabDataTransfer).center());
  EXPECT_TRUE(Enabled(u"cmdPrintText"_qs));
}

TEST_F(DataTransferPageTest, PrintOfAnEmptyWindowIsRefused) {
  settings_.SetEnablePrintTextOn(true);
  ShowTab();
  Click(u"cmdPrintText"_qs);
  EXPECT_EQ(LastBox().title, "Print Error");
  EXPECT_EQ(LastBox().text, "There is nothing to print.");
  EXPECT_EQ(LastBox().icon, Icon::kWarning);
}

}  // namespace
}  // namespace vrx::testing
