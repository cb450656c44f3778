#include <filesystem>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "on_display/on_display.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

constexpr const char* kDay =
    "{BAT/FED},L\r\n[BAT],B,1,3,01152009,2,4,0,0;0830,0,0;1000.0,0,0;998.0,0,0\r\n\r\n"
    "[FED],B,1,12,2,0915,01152009,750.0,748.5\r\n\r\n";

class ImportOnDisplay : public OnDisplay {
 protected:
  ImportOnDisplay() { MakeDatabases(); }

  void OpenTab() {
    ClickItem("Import");
    ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("grdIMPORT") != nullptr; }));
  }

  // Types the file's path into the dialog.
  void Import(const std::string& name, const std::string& text) {
    Keys({"alt+i"});
    ASSERT_TRUE(WaitForWindow("Import Transaction File"));
    Type(files_.Write(name, text).string());
    Keys({"Return"});
    ASSERT_TRUE(WaitForNoWindow("Import Transaction File"));
  }

  bool WaitForRows(int rows) {
    return WaitFor([rows](const Screen& screen) {
      const Widget* const grid = screen.Find("grdIMPORT");
      return grid != nullptr && grid->rows == rows;
    });
  }

  bool StoreIsOn() const {
    const Screen screen = Look();
    const Widget* const store = screen.Find("cmdImportStore");
    return store != nullptr && store->enabled;
  }

  int StoredRows() const {
    return SQLite::Database(transactions).execAndGet("SELECT COUNT(*) FROM Transactions").getInt();
  }

  TempFolder files_;
};

TEST_F(ImportOnDisplay, AltFOpensTheFileMenuFromTheGrid) {
  StartProgram();
  OpenTab();
  Click("grdIMPORT");
  Keys({"alt+f"});
  EXPECT_TRUE(WaitFor([](const Screen& screen) { return screen.FindItem("Exit") != nullptr; }));
}

TEST_F(ImportOnDisplay, TheTabKeyWalksFromImportToStore) {
  StartProgram();
  OpenTab();
  Import("day.qxt", kDay);
  ASSERT_TRUE(WaitForRows(2));
  const std::vector<std::string> order = {"cmdImportFile", "chkImpFitPage", "grdIMPORT",
                                          "cmdImportStore"};
  for (const std::string& name : order) {
    const auto has_focus = [&name](const Screen& screen) {
      const Widget* const control = screen.Find(name);
      return control != nullptr && control->focus;
    };
    // From Store, which an import gives the focus, Undo and the strip come first.
    Keys(name == "cmdImportFile" ? std::vector<std::string>{"Tab", "Tab", "Tab"}
                                 : std::vector<std::string>{"Tab"});
    EXPECT_TRUE(WaitFor(has_focus)) << name;
  }
}

TEST_F(ImportOnDisplay, ARefusedFileLeavesNothingThatStoreCouldStoreAgain) {
  StartProgram();
  OpenTab();
  Import("day.qxt", kDay);
  ASSERT_TRUE(WaitForRows(2));
  const int before = StoredRows();
  Keys({"alt+s"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("grdTRANS") != nullptr; }));
  EXPECT_EQ(StoredRows(), before + 2);
  OpenTab();
  Import("bad.qxt", "no transactions");
  ASSERT_TRUE(WaitForBox("No file-type identifier detected."));
  Keys({"Return"});
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  EXPECT_TRUE(WaitForRows(1));
  EXPECT_FALSE(StoreIsOn());
  Keys({"alt+s"});
  Settle();
  EXPECT_EQ(StoredRows(), before + 2);
}

TEST_F(ImportOnDisplay, AModuleThatWasNotClearedStoresOnlyWhatIsNewAndTheStoreCanBeUndone) {
  const std::string first = kDay;
  const std::string end = "\r\n\r\n";
  const std::string later =
      first.substr(0, first.size() - end.size()) + "\r\nB,1,13,2,0920,01152009,250.0,251.5" + end;
  const auto wait_for_stored = [this](int rows) {
    return WaitFor([this, rows](const Screen& screen) {
      return screen.Find("grdTRANS") != nullptr && StoredRows() == rows;
    });
  };
  StartProgram();
  const int before = StoredRows();
  OpenTab();
  Import("day.qxt", first);
  ASSERT_TRUE(WaitForRows(2));
  Keys({"alt+s"});
  ASSERT_TRUE(wait_for_stored(before + 2));
  OpenTab();
  Import("later.qxt", later);
  ASSERT_TRUE(WaitForRows(3));
  Keys({"alt+s"});
  ASSERT_TRUE(WaitForBox("The transaction database has batches of this import already."));
  Keys({"Return"});
  ASSERT_TRUE(wait_for_stored(before + 3));
  OpenTab();
  Keys({"alt+u"});
  ASSERT_TRUE(WaitForBox("Do you want to take the records of the last store out"));
  Keys({"alt+y"});
  ASSERT_TRUE(wait_for_stored(before + 2));
}

// One record in whose padding each "B," is counted as a batch of the whole list of times.
TEST_F(ImportOnDisplay, TheLargestTableLeavesTheWindowAtWork) {
  std::string record = "B,1,3,01152009,2,4,0,";
  for (int mark = 0; mark < 999; ++mark) {
    record += "B,";
  }
  record += "0;";
  for (int time = 0; time < 100; ++time) {
    record += "0830,";
  }
  StartProgram();
  OpenTab();
  Import("crowded.qxt", "{BAT/FED},L\r\n[BAT]," + record + "0,0;1,0,0;1,0,0\r\n\r\n[FED],\r\n\r\n");
  ASSERT_TRUE(WaitForRows(100'000));
  Click("grdIMPORT");
  Keys({"ctrl+End", "ctrl+Home"});
  Settle();
  const Screen screen = Look();
  const Widget* const grid = screen.Find("grdIMPORT");
  ASSERT_NE(grid, nullptr);
  const Cell* const first = grid->FindCell(0, 2);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->text, "BATCH");
}

}  // namespace
}  // namespace vrx::testing
