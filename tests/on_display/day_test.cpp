// A day's work by hand: edit, upload, save, import, store, print.

#include <filesystem>
#include <string>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::StartsWith;

constexpr int kBusyTimeout = 10'000;  // ms

class DayOnDisplay : public OnDisplay {
 protected:
  DayOnDisplay() {
    MakeDatabases();
    fs::create_directories(data / "Ports");
    fs::create_symlink(ModulePath(), data / "Ports/COM2");
  }

  int Stored(const std::string& query) const {
    SQLite::Database file(transactions, SQLite::OPEN_READONLY, kBusyTimeout);
    return file.execAndGet(query);
  }

  std::string Recipe(const std::string& query) const {
    SQLite::Database file(recipes, SQLite::OPEN_READONLY, kBusyTimeout);
    return file.execAndGet(query).getString();
  }
};

TEST_F(DayOnDisplay, AnEditedFieldIsStoredWhenItIsLeft) {
  StartProgram();
  ChooseFromMenu({"Edit", "Pens"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("txtPenDesc") != nullptr; }));
  Click("txtPenDesc");
  Keys({"ctrl+a"});
  Type("North lot");
  Keys({"Return"});
  EXPECT_TRUE(Eventually(
      [&] { return Recipe("SELECT Description FROM Pen WHERE ID = 1") == "North lot"; }));
  Keys({"alt+F4"});
  EXPECT_EQ(ExitCode(), 0) << program->Err();
}

TEST_F(DayOnDisplay, RecordsGoFromTheModuleIntoTheDatabaseAndOntoPaper) {
  const auto module = StartModule({"--load", SitePath("day06.qxt"), "--baud", "0"});
  StartProgram();
  ClickItem("Data Transfer");
  ASSERT_TRUE(
      WaitFor([](const Screen& screen) { return screen.Find("cmdUploadDataFromKRM") != nullptr; }));
  Click("cmdUploadDataFromKRM");
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const status = screen.Find("lblStatusWindow");
    return status != nullptr && status->text.starts_with("Upload complete!");
  })) << TextOf("lblStatusWindow");
  ClickCell("lstDataFiles", 0, 0);
  Keys({"space"});
  Click("cmdSaveFile");
  const fs::path day = folder / "DAY06.QXT";
  AnswerFileDialog("Save Transaction File", day);
  ASSERT_TRUE(Eventually([&] { return fs::exists(day); }));
  EXPECT_EQ(ReadAll(day), ReadAll(SitePath("day06.qxt")));

  const int before = Stored("SELECT count(*) FROM Transactions");
  ChooseFromMenu({"File", "Import Transaction File..."});
  AnswerFileDialog("Import Transaction File", day);
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const store = screen.Find("cmdImportStore");
    return store != nullptr && store->enabled && store->focus;
  }));
  Click("cmdImportStore");
  EXPECT_TRUE(Eventually([&] { return Stored("SELECT count(*) FROM Transactions") > before; }));
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    const Item* const history = screen.FindItem("Batched/Fed");
    return history != nullptr && history->checked;
  }));

  ChooseFromMenu({"File", "Print Setup..."});
  ASSERT_TRUE(WaitForWindow("Print Setup"));
  Keys({"Return"});
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  const fs::path pdf = folder / "report.pdf";
  ChooseFromMenu({"File", "Print"});
  AnswerFileDialog("Print to PDF File", pdf);
  ASSERT_TRUE(Eventually([&] { return fs::exists(pdf); }));
  EXPECT_THAT(ReadAll(pdf), StartsWith("%PDF-"));
}

}  // namespace
}  // namespace vrx::testing
