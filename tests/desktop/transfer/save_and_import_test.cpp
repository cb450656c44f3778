#include <filesystem>
#include <string>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "desktop/transfer/transfer_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

std::string DayOf(const std::string& date) {
  return "{BAT/FED},L\r\n[BAT],B,1,3," + date +
         ",2,4,0,0;0830,0,0;1000.0,0,0;998.0,0,0\r\n\r\n[FED],B,1,12,2,0915," + date +
         ",750.0,748.5\r\n\r\n";
}

constexpr const char* kOtherFile = "{REPORT}\r\npage one\r\n";

// The databases for a store are open, and the module holds two transaction files and a report.
class SaveAndImport : public TransferFixture {
 protected:
  void SetUp() override {
    Open(DatabaseKind::kRecipe);
    Open(DatabaseKind::kTransaction);
    ShowTab();
    Window().Tabs().SelectTab(kTabDataTransfer);
    ModuleHolds(DayOf("01112026") + DayOf("01122026") + kOtherFile);
    Click(u"cmdUploadDataFromKRM"_qs);
  }

  std::filesystem::path Saved(const std::string& name) const {
    return app_folder_->DefaultAppPath() / name;
  }
  int StoredRows() {
    SQLite::Database database(Main().Databases().Bound(DatabaseKind::kTransaction).path.string());
    return database.execAndGet("SELECT COUNT(*) FROM Transactions").getInt();
  }
  QString Imported() { return Text(u"lblTransFilename"_qs); }
};

TEST_F(SaveAndImport, SavesEachTransactionFileAndImportsOneAfterTheOther) {
  EXPECT_THAT(Rows(),
              ElementsAre("Transaction file 1: 11-Jan-26, 1 batch",
                          "Transaction file 2: 12-Jan-26, 1 batch", "Text report 3: 1 line"));
  Click(u"cmdSaveImport"_qs);
  EXPECT_EQ(ReadAll(Saved("260111-01.QXT")), DayOf("01112026"));
  EXPECT_EQ(ReadAll(Saved("260112-01.QXT")), DayOf("01122026"));
  EXPECT_EQ(Tabs().currentIndex(), kTabImport);
  EXPECT_EQ(Imported(), u"260111-01.QXT"_qs);
  EXPECT_TRUE(HasFocus(u"cmdImportStore"_qs));
  Click(u"cmdImportStore"_qs);
  EXPECT_EQ(StoredRows(), 2);
  EXPECT_EQ(Tabs().currentIndex(), kTabImport);
  EXPECT_EQ(Imported(), u"260112-01.QXT"_qs);
  EXPECT_TRUE(HasFocus(u"cmdImportStore"_qs));
  EXPECT_EQ(Text(u"lblResult"_qs),
            u"Stored 2 records as transaction 1, of 11-Jan-26. Next: 260112-01.QXT."_qs);
  Click(u"cmdImportStore"_qs);
  EXPECT_EQ(StoredRows(), 4);
  EXPECT_EQ(Tabs().currentIndex(), kTabBatchedFed);
  EXPECT_EQ(Text(u"lblResult"_qs), u"Stored 2 records as transaction 2, of 12-Jan-26."_qs);
  Window().Tabs().SelectTab(kTabDataTransfer);
  EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: 11-Jan-26, 1 batch (saved)",
                                  "Transaction file 2: 12-Jan-26, 1 batch (saved)",
                                  "Text report 3: 1 line"));
}

TEST_F(SaveAndImport, TakesTheCheckedFilesOnly) {
  ClickBox(1);
  Click(u"cmdSaveImport"_qs);
  EXPECT_FALSE(std::filesystem::exists(Saved("260111-01.QXT")));
  EXPECT_EQ(Imported(), u"260112-01.QXT"_qs);
  Click(u"cmdImportStore"_qs);
  EXPECT_EQ(Tabs().currentIndex(), kTabBatchedFed);
}

TEST_F(SaveAndImport, AFileThatIsNoTransactionFileIsOnlySaved) {
  ClickBox(2);
  chooser_.Choose(folder_ / "R.TXT");
  Click(u"cmdSaveImport"_qs);
  EXPECT_EQ(ReadAll(folder_ / "R.TXT"), kOtherFile);
  EXPECT_EQ(Tabs().currentIndex(), kTabDataTransfer);
}

TEST_F(SaveAndImport, AnImportOfAnotherFileEndsTheRow) {
  Click(u"cmdSaveImport"_qs);
  chooser_.Choose(folder_.Write("other.qxt", DayOf("01152009")));
  Choose(u"mnuFileImportTransactionFile"_qs);
  Click(u"cmdImportStore"_qs);
  EXPECT_EQ(StoredRows(), 2);
  EXPECT_EQ(Tabs().currentIndex(), kTabBatchedFed);
}

TEST_F(SaveAndImport, AFolderThatCannotBeWrittenLosesNothing) {
  std::filesystem::remove_all(app_folder_->DefaultAppPath());
  Click(u"cmdSaveImport"_qs);
  EXPECT_TRUE(LastBox().text.starts_with("The file was not saved."));
  EXPECT_EQ(Tabs().currentIndex(), kTabDataTransfer);
  EXPECT_EQ(Rows().size(), 3U);
}

TEST_F(SaveAndImport, AStoreThatIsRefusedKeepsItsFile) {
  Click(u"cmdSaveImport"_qs);
  Choose(u"mnuFileCloseTransactionDB"_qs);
  Click(u"cmdImportStore"_qs);
  EXPECT_EQ(LastBox().title, "Transaction Store Error");
  EXPECT_EQ(Imported(), u"260111-01.QXT"_qs);
}

}  // namespace
}  // namespace vrx::testing
