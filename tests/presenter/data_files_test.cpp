#include "presenter/data_files.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "settings/settings.h"
#include "support/boxes.h"
#include "support/recording_operator.h"
#include "support/scripted_file_chooser.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTransactionBytes = "{BAT/FED},L\r\n[BAT],\x80\xFF\r\n";
constexpr const char* kRecipeBytes = "{DATA_IN},L\r\n\r\n[ING]\r\n";
constexpr const char* kReport = "{REPORT}\r\npage\r\n";
constexpr const char* kPage = "\fpage two\r\n";

class DataFiles : public ::testing::Test {
 protected:
  // A block with one file of each mark, like after an upload.
  DataFiles() {
    Add(DataFileType::kTransaction, kTransactionBytes);
    Add(DataFileType::kRecipeBackup, kRecipeBytes);
    Add(DataFileType::kReport, kReport);
    Add(DataFileType::kReport, kPage);
  }

  void Add(DataFileType type, const std::string& text) {
    table_.push_back({.type = type,
                      .position = static_cast<int>(transfer_.transfer_block.size()) + 1,
                      .length = static_cast<int>(text.size())});
    transfer_.transfer_block += text;
    const int file = static_cast<int>(table_.size());
    transfer_.data_files.push_back(
        {.file = file,
         .text = std::string(DataFileTypeName(type)) + " - " + std::to_string(file),
         .type = type});
  }

  void ExpectSaveDialog(std::size_t index, const std::string& title, const std::string& filter,
                        const std::string& extension) {
    ASSERT_LT(index, chooser_.dialogs.size());
    const FileDialog& dialog = chooser_.dialogs[index];
    EXPECT_EQ(dialog.title, title);
    EXPECT_EQ(dialog.filter, filter);
    EXPECT_EQ(dialog.default_extension, extension);
    EXPECT_EQ(dialog.flags, kHideReadOnly | kOverwritePrompt);
  }

  TempFolder folder_;
  RecordingOperator op_;
  ScriptedFileChooser chooser_;
  PrivateINI settings_;
  TransferState transfer_;
  std::vector<FileAttributes> table_;
  ReportFile files_{op_, chooser_, settings_, transfer_, [this](int file) {
                      const auto index = static_cast<std::size_t>(file - 1);
                      return index < table_.size() ? table_[index] : FileAttributes{};
                    }};
};

TEST_F(DataFiles, ShowsTheFilesCharactersInTheDataWindow) {
  files_.ShowDataFile(2);
  EXPECT_EQ(transfer_.data_window, kRecipeBytes);
  files_.ShowDataFile(4);
  EXPECT_EQ(transfer_.data_window, kPage);
  files_.ShowDataFile(1);
  EXPECT_EQ(transfer_.data_window, kTransactionBytes);
}

TEST_F(DataFiles, ShowsNothingForANumberWithoutAFile) {
  for (const int file : {-1, 0, 5, 99, 100}) {
    transfer_.data_window = "old";
    files_.ShowDataFile(file);
    EXPECT_EQ(transfer_.data_window, "") << file;
  }
}

TEST_F(DataFiles, ShowsWhatThereIsOfAFileBeyondTheBlock) {
  table_[0] = {.type = DataFileType::kTransaction, .position = 1, .length = 1'000'000};
  files_.ShowDataFile(1);
  EXPECT_EQ(transfer_.data_window, transfer_.transfer_block);
  table_[0].position = 1'000'000;
  files_.ShowDataFile(1);
  EXPECT_EQ(transfer_.data_window, "");
  table_[0] = {.type = DataFileType::kTransaction, .position = -5, .length = -5};
  files_.ShowDataFile(1);
  EXPECT_EQ(transfer_.data_window, "");
}

TEST_F(DataFiles, ShowsAFileAtEitherEndOfTheBlockAndNoneOutside) {
  const int size = static_cast<int>(transfer_.transfer_block.size());
  struct Case {
    int position, length;
    std::string shown;
  };
  const std::vector<Case> cases{{1, 1, "{"}, {size, 1, "\n"}, {size, 9, "\n"}, {size + 1, 1, ""},
                                {0, 1, ""},  {1, 0, ""},      {1, -1, ""}};
  for (const Case& part : cases) {
    table_[0] = {
        .type = DataFileType::kTransaction, .position = part.position, .length = part.length};
    files_.ShowDataFile(1);
    EXPECT_EQ(transfer_.data_window, part.shown) << part.position << ", " << part.length;
  }
}

TEST_F(DataFiles, SavesATransactionFileByteForByte) {
  chooser_.Choose(folder_ / "may.qxt");
  files_.SaveDataFile(1);

  EXPECT_EQ(ReadAll(folder_ / "may.qxt"), kTransactionBytes);
  ExpectSaveDialog(0, "Save Transaction File", "Transactions (*.QXT)|*.QXT|All Files (*.*)|*.*",
                   "QXT");
  EXPECT_EQ(transfer_.file_path, (folder_ / "may.qxt").string());
  EXPECT_EQ(op_.Status(), "Transaction file (1) saved!");
  EXPECT_EQ(op_.status_color, StatusColor::kBlue);
  EXPECT_EQ(files_.TransactionFile().path, (folder_ / "may.qxt").string());
  EXPECT_EQ(files_.TransactionFile().title, "MAY.QXT");
  EXPECT_TRUE(op_.boxes.empty());
  EXPECT_EQ(op_.beeps, 0);
}

TEST_F(DataFiles, SavesARecipeBackup) {
  chooser_.Choose(folder_ / "May.rbu");
  files_.SaveDataFile(2);

  EXPECT_EQ(ReadAll(folder_ / "May.rbu"), kRecipeBytes);
  ExpectSaveDialog(0, "Save Recipe Backup File", "Recipe Backup (*.RBU)|*.RBU|All Files (*.*)|*.*",
                   "RBU");
  EXPECT_EQ(op_.Status(), "Recipe backup file (2) saved!");
  EXPECT_EQ(files_.RecipeBackupFile().title, "MAY.RBU");
  EXPECT_EQ(transfer_.data_files[1].text, "Recipe Backup File - 2 (saved)");
}

TEST_F(DataFiles, SavesAReport) {
  chooser_.Choose(folder_ / "may.txt");
  files_.SaveDataFile(3);

  EXPECT_EQ(ReadAll(folder_ / "may.txt"), kReport);
  ExpectSaveDialog(0, "Save Report File", "Report (*.TXT)|*.TXT|All Files (*.*)|*.*", "TXT");
  EXPECT_EQ(op_.Status(), "Report file (3) saved!");
  EXPECT_EQ(files_.TextReport().title, "MAY.TXT");
  EXPECT_EQ(transfer_.data_files[2].text, "Text Report - 3 (saved)");
}

TEST_F(DataFiles, SavesAReportThatStartsWithAFormFeed) {
  chooser_.Choose(folder_ / "page.txt");
  files_.SaveDataFile(4);
  EXPECT_EQ(ReadAll(folder_ / "page.txt"), kPage);
  EXPECT_EQ(op_.Status(), "Report file (4) saved!");
}

TEST_F(DataFiles, MarksARowSavedOnceHoweverOftenItIsSaved) {
  transfer_.data_files[0].checked = true;
  chooser_.Choose(folder_ / "a.qxt");
  files_.SaveDataFile(1);
  ASSERT_EQ(transfer_.data_files.size(), 4U);
  EXPECT_EQ(transfer_.data_files[0].text, "Transaction File - 1 (saved)");
  EXPECT_EQ(transfer_.data_files[0].file, 1);
  EXPECT_FALSE(transfer_.data_files[0].checked);
  EXPECT_EQ(transfer_.selected_row, 0);

  chooser_.Choose(folder_ / "b.qxt");
  files_.SaveDataFile(1);
  ASSERT_EQ(transfer_.data_files.size(), 4U);
  EXPECT_EQ(transfer_.data_files[0].text, "Transaction File - 1 (saved)");
  EXPECT_EQ(transfer_.data_files[1].text, "Recipe Backup File - 2");
}

// What came from the indicator is safe once every file of the block is on disk.
TEST_F(DataFiles, TheBlockIsSavedWithItsLastFile) {
  transfer_.received.Arrived();
  transfer_.received.ImageIntoBlock();
  for (int file = 1; file <= 4; ++file) {
    EXPECT_TRUE(transfer_.received.Unsaved()) << file;
    chooser_.Choose(folder_ / ("file" + std::to_string(file)));
    files_.SaveDataFile(file);
  }
  EXPECT_FALSE(transfer_.received.Unsaved());
}

TEST_F(DataFiles, ABlockThatIsNotCutWholeStaysUnsaved) {
  transfer_.received.Arrived();
  transfer_.received.ImageIntoBlock();
  transfer_.block_is_cut = false;
  for (int file = 1; file <= 4; ++file) {
    chooser_.Choose(folder_ / ("file" + std::to_string(file)));
    files_.SaveDataFile(file);
  }
  EXPECT_TRUE(transfer_.received.Unsaved());
}

TEST_F(DataFiles, LeavesTheListAloneWhenTheDialogIsCanceled) {
  transfer_.data_files[1].checked = true;
  transfer_.selected_row = 3;
  transfer_.file_path = "before";
  const std::array<std::string, 3> statuses = {"Could not save transaction file (1)",
                                               "Could not save recipe backup-file (2)",
                                               "Could not save report file (3)"};
  for (std::size_t file = 1; file <= statuses.size(); ++file) {
    chooser_.Cancel();
    files_.SaveDataFile(static_cast<int>(file));
    EXPECT_EQ(op_.Status(), statuses[file - 1]);
  }
  EXPECT_EQ(transfer_.data_files[0].text, "Transaction File - 1");
  EXPECT_EQ(transfer_.data_files[1].text, "Recipe Backup File - 2");
  EXPECT_TRUE(transfer_.data_files[1].checked);
  EXPECT_EQ(transfer_.selected_row, 3);
  EXPECT_EQ(transfer_.file_path, "before");
  EXPECT_EQ(files_.TransactionFile().path, "");
  EXPECT_EQ(files_.SaveFailure(), "");
  EXPECT_TRUE(op_.boxes.empty());
}

TEST_F(DataFiles, LeavesTheOldFileWhenTheWriteFails) {
  // A folder has the name of the file, so the rename fails.
  fs::create_directory(folder_ / "taken.qxt");
  chooser_.Choose(folder_ / "taken.qxt");
  files_.SaveDataFile(1);
  EXPECT_EQ(op_.Status(), "Could not save transaction file (1)");
  EXPECT_NE(files_.SaveFailure(), "");
  EXPECT_EQ(transfer_.data_files[0].text, "Transaction File - 1");
  EXPECT_TRUE(fs::is_directory(folder_ / "taken.qxt"));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path()), {}), 1);
}

TEST_F(DataFiles, ReportsCauseAndPathOfAFileThatCannotBeWritten) {
  const fs::path path = folder_ / "gone" / "x.rbu";
  chooser_.Choose(path);
  files_.SaveDataFile(2);
  EXPECT_EQ(op_.Status(), "Could not save recipe backup-file (2)");
  ASSERT_EQ(op_.boxes.size(), 1U);
  EXPECT_EQ(op_.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(op_.boxes[0].title, "Save Recipe Backup-File Error");
  EXPECT_EQ(op_.boxes[0].text, "The file was not saved.\r\n\r\ncannot write " + path.string() +
                                   ": No such file or directory");
  // The selected name is kept anyway.
  EXPECT_EQ(files_.RecipeBackupFile().path, path.string());
  EXPECT_EQ(files_.RecipeBackupFile().title, "X.RBU");

  chooser_.Choose(folder_ / "x.rbu");
  files_.SaveDataFile(2);
  EXPECT_EQ(files_.SaveFailure(), "");
}

TEST_F(DataFiles, ReplacesAnOldFileWhole) {
  folder_.Write("old.txt", std::string(10'000, 'x'));
  chooser_.Choose(folder_ / "old.txt");
  files_.SaveDataFile(3);
  EXPECT_EQ(ReadAll(folder_ / "old.txt"), kReport);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path()), {}), 1);
}

TEST_F(DataFiles, HasNothingToSaveOfAnEmptyFile) {
  settings_.SetEnableBeeperOn(false);
  files_.SaveDataFile(50);
  EXPECT_THAT(OnlyBox(op_.boxes),
              IsBox(Icon::kCritical, "Save File Error", "There is no file data to be saved."));
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_TRUE(chooser_.dialogs.empty());
}

TEST_F(DataFiles, RefusesATransactionFileWithoutItsHeader) {
  settings_.SetEnableBeeperOn(false);
  table_[0].position = 2;
  files_.SaveDataFile(1);
  EXPECT_THAT(OnlyBox(op_.boxes), IsBox(Icon::kWarning, "Save Transaction File Error",
                                        "This data cannot be saved as a transaction file.\r\n"
                                        "It has an invalid transaction header identifier."));
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_TRUE(chooser_.dialogs.empty());
  EXPECT_TRUE(op_.status_lines.empty());
}

TEST_F(DataFiles, RefusesARecipeBackupWithoutItsHeader) {
  table_[1].position = 1;
  files_.SaveDataFile(2);
  EXPECT_THAT(OnlyBox(op_.boxes), IsBox(Icon::kWarning, "Save Recipe Backup-File Error",
                                        "This data cannot be saved as a recipe backup file.\r\n"
                                        "It has an invalid recipe header identifier."));
  EXPECT_EQ(op_.beeps, 1);
}

TEST_F(DataFiles, RefusesAReportWithoutItsHeader) {
  table_[2].position = 1;
  files_.SaveDataFile(3);
  EXPECT_THAT(OnlyBox(op_.boxes), IsBox(Icon::kWarning, "Save Report File Error",
                                        "This data cannot be saved as a report file.\r\n"
                                        "It has an invalid report header identifier."));
  EXPECT_EQ(op_.beeps, 1);
}

TEST_F(DataFiles, RefusesAnUnknownTypeWithTheGatedBeep) {
  table_[0].type = DataFileType::kUnknown;
  files_.SaveDataFile(1);
  EXPECT_THAT(OnlyBox(op_.boxes), IsBox(Icon::kCritical, "Error", "Invalid file-type detected."));
  EXPECT_EQ(op_.beeps, 1);

  settings_.SetEnableBeeperOn(false);
  files_.SaveDataFile(1);
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_TRUE(chooser_.dialogs.empty());
}

TEST_F(DataFiles, SavesTheCheckedFile) {
  transfer_.data_files[2].checked = true;
  chooser_.Choose(folder_ / "may.txt");
  files_.SaveCheckedFile();
  EXPECT_EQ(ReadAll(folder_ / "may.txt"), kReport);
}

TEST_F(DataFiles, AsksForACheckedFile) {
  transfer_.data_window = "shown";
  files_.SaveCheckedFile();
  EXPECT_THAT(
      OnlyBox(op_.boxes),
      IsBox(Icon::kWarning, "Error",
            "You must first select a data file to save. Click on one of the check boxes next to "
            "the file you want to save."));
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_EQ(transfer_.data_window, "shown");
  EXPECT_TRUE(chooser_.dialogs.empty());
}

TEST_F(DataFiles, SavesWhatTheDataWindowHolds) {
  transfer_.data_window = "edited by hand";
  chooser_.Choose(folder_ / "a.qxt");
  EXPECT_TRUE(files_.SaveTransactionFile());
  chooser_.Choose(folder_ / "a.rbu");
  EXPECT_TRUE(files_.SaveRecipeBackupFile());
  chooser_.Choose(folder_ / "a.txt");
  EXPECT_TRUE(files_.SaveReportFile());
  chooser_.Cancel();
  EXPECT_FALSE(files_.SaveReportFile());
  for (const char* name : {"a.qxt", "a.rbu", "a.txt"}) {
    EXPECT_EQ(ReadAll(folder_ / name), "edited by hand");
  }
}

TEST_F(DataFiles, OpensARecipeBackup) {
  chooser_.Choose(folder_ / "may.rbu");
  files_.OpenRecipeBackupFile();
  EXPECT_EQ(files_.RecipeBackupFile().path, (folder_ / "may.rbu").string());
  EXPECT_EQ(files_.RecipeBackupFile().title, "MAY.RBU");
  ASSERT_EQ(chooser_.dialogs.size(), 1U);
  EXPECT_EQ(chooser_.dialogs[0].title, "Open Recipe Backup File");
  EXPECT_EQ(chooser_.dialogs[0].filter, "Recipe Backup (*.RBU)|*.RBU|Rescue File (*.KRM)|*.KRM");
  EXPECT_EQ(chooser_.dialogs[0].default_extension, "RBU");
  EXPECT_EQ(chooser_.dialogs[0].flags, kFileMustExist | kHideReadOnly);
}

TEST_F(DataFiles, ForgetsTheBackupOfBeforeOnACancel) {
  chooser_.Choose(folder_ / "may.rbu");
  files_.OpenRecipeBackupFile();
  chooser_.Cancel();
  files_.OpenRecipeBackupFile();
  EXPECT_EQ(files_.RecipeBackupFile().path, "");
  EXPECT_EQ(files_.RecipeBackupFile().title, "");
}

TEST_F(DataFiles, ReopensASavedBackupWithItsHeader) {
  chooser_.Choose(folder_ / "may.rbu");
  files_.SaveDataFile(2);
  chooser_.Choose(folder_ / "may.rbu");
  files_.OpenRecipeBackupFile();
  EXPECT_TRUE(ReadAll(files_.RecipeBackupFile().path).starts_with(kRecipeMark));
}

class SaveForImport : public DataFiles {
 protected:
  static constexpr Date kToday{std::chrono::year{2026}, std::chrono::month{1},
                               std::chrono::day{20}};

  std::vector<std::string> Save(std::initializer_list<int> checked) {
    for (const int file : checked) {
      Row(file).checked = true;
    }
    std::vector<std::string> names;
    for (const FileChoice& saved : files_.SaveForImport(folder_.Path(), kToday)) {
      EXPECT_EQ(fs::path(saved.path).parent_path(), folder_.Path());
      EXPECT_EQ(fs::path(saved.path).filename(), saved.title);
      names.push_back(saved.title);
    }
    return names;
  }
  DataFileRow& Row(int file) { return transfer_.data_files.at(static_cast<std::size_t>(file) - 1); }
};

TEST_F(SaveForImport, NamesATransactionFileByItsFirstRecord) {
  Row(1).first_record = Date{std::chrono::year{2026}, std::chrono::month{1}, std::chrono::day{11}};
  EXPECT_EQ(Save({1}), std::vector<std::string>{"260111-01.QXT"});
  EXPECT_EQ(ReadAll(folder_ / "260111-01.QXT"), kTransactionBytes);
  EXPECT_TRUE(chooser_.dialogs.empty());
  EXPECT_TRUE(Row(1).saved);
  EXPECT_FALSE(Row(1).checked);
  EXPECT_EQ(Row(1).text, "Transaction File - 1 (saved)");
  EXPECT_EQ(op_.Status(), "Transaction file (1) saved!");
  EXPECT_EQ(transfer_.file_path, (folder_ / "260111-01.QXT").string());
}

TEST_F(SaveForImport, TakesTheFirstFreeNumberAndReplacesNothing) {
  folder_.Write("260120-01.QXT", "yesterday's");
  folder_.Write("260120-03.QXT", "another");
  Add(DataFileType::kTransaction, kTransactionBytes);
  Add(DataFileType::kTransaction, kTransactionBytes);
  EXPECT_EQ(Save({1, 5, 6}),
            (std::vector<std::string>{"260120-02.QXT", "260120-04.QXT", "260120-05.QXT"}));
  EXPECT_EQ(ReadAll(folder_ / "260120-01.QXT"), "yesterday's");
  EXPECT_EQ(ReadAll(folder_ / "260120-03.QXT"), "another");
}

TEST_F(SaveForImport, GoesOnAfter99FilesOfADay) {
  for (int number = 1; number <= 99; ++number) {
    folder_.Write("260120-" + std::string(number < 10 ? "0" : "") + std::to_string(number) + ".QXT",
                  "");
  }
  EXPECT_EQ(Save({1}), std::vector<std::string>{"260120-100.QXT"});
}

TEST_F(SaveForImport, WithoutACheckTakesTheTransactionFilesThatAreNotSaved) {
  Add(DataFileType::kTransaction, kTransactionBytes);
  Add(DataFileType::kTransaction, kTransactionBytes);
  Row(5).saved = true;
  EXPECT_EQ(Save({}), (std::vector<std::string>{"260120-01.QXT", "260120-02.QXT"}));
  EXPECT_FALSE(Row(2).saved);
  EXPECT_TRUE(Save({}).empty());
  EXPECT_EQ(op_.boxes.back().text,
            "You must first select a data file to save. Click on one of the check boxes next to "
            "the file you want to save.");
}

TEST_F(SaveForImport, AsksForTheNamesOfOtherFilesAndImportsNoneOfThem) {
  chooser_.Choose(folder_ / "A.RBU");
  EXPECT_EQ(Save({1, 2}), std::vector<std::string>{"260120-01.QXT"});
  EXPECT_EQ(ReadAll(folder_ / "A.RBU"), kRecipeBytes);
  EXPECT_EQ(chooser_.dialogs.size(), 1U);
  EXPECT_TRUE(Row(2).saved);
}

TEST_F(SaveForImport, ACanceledDialogLeavesItsFileAndGoesOn) {
  Add(DataFileType::kTransaction, kTransactionBytes);
  chooser_.Cancel();
  EXPECT_EQ(Save({2, 5}), std::vector<std::string>{"260120-01.QXT"});
  EXPECT_FALSE(Row(2).saved);
  EXPECT_TRUE(Row(2).checked);
}

TEST_F(SaveForImport, AFileThatCannotBeWrittenStaysInTheListAndTheRestWithIt) {
  Add(DataFileType::kTransaction, kTransactionBytes);
  Row(1).checked = Row(5).checked = true;
  EXPECT_TRUE(files_.SaveForImport(folder_ / "missing", kToday).empty());
  ASSERT_EQ(op_.boxes.size(), 1U);
  EXPECT_TRUE(op_.boxes[0].text.starts_with("The file was not saved."));
  EXPECT_FALSE(Row(1).saved);
  EXPECT_TRUE(Row(1).checked);
  EXPECT_TRUE(Row(5).checked);
}

TEST_F(SaveForImport, SavesThatTheWholeBlockOfAnIndicatorIsSaved) {
  table_.resize(1);
  transfer_.data_files.resize(1);
  transfer_.received.Arrived();
  transfer_.received.ImageIntoBlock();
  Save({1});
  EXPECT_FALSE(transfer_.received.Unsaved());
}

}  // namespace
}  // namespace vrx::testing
