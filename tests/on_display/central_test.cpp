#include <fstream>
#include <string>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>

#include "central/administration.h"
#include "central/server.h"
#include "on_display/on_display.h"
#include "support/central_server.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

constexpr const char* kDay =
    "{BAT/FED},L\r\n[BAT],B,1,3,01152009,2,4,0,0;0830,0,0;1000.0,0,0;998.0,0,0\r\n\r\n"
    "[FED],B,1,12,2,0915,01152009,750.0,748.5\r\n\r\n";

// The program with the settings of a yard that pushes after each store.
class CentralOnDisplay : public OnDisplay {
 protected:
  CentralOnDisplay() : database_(CentralServer::Get().MakeCentralDatabase()) {
    MakeDatabases();
    CentralConnection chief(CentralServer::Get().Connection(database_));
    AddYard(chief, "North", "America/Chicago", "display_north");
  }

  void SetConnection() {
    WriteShortIni();
    std::ofstream(ini, std::ios::app)
        << "[Central]\nConnection=" << CentralServer::Get().Connection(database_, "display_north")
        << "\nYard=North\nAutomatic=YES\n";
  }
  bool WaitForSign(const std::string& text) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const sign = screen.Find("cmdCentralSign");
      return sign != nullptr && sign->text == text;
    });
  }
  int StoredRows() const {
    return SQLite::Database(transactions).execAndGet("SELECT count(*) FROM Transactions").getInt();
  }
  int RowsThere() const {
    CentralConnection chief(CentralServer::Get().Connection(database_));
    return static_cast<int>(chief.Query("SELECT count(*) FROM vrx.transaction").Number(0, 0));
  }

  std::string database_;
  TempFolder files_;
};

TEST_F(CentralOnDisplay, AStoreIsPushedAndSignAndKeysLeadToTheForm) {
  SetConnection();
  StartProgram();
  ASSERT_TRUE(WaitForSign("Central: " + std::to_string(StoredRows()) + " rows waiting"));
  ClickItem("Import");
  Keys({"alt+i"});
  ASSERT_TRUE(WaitForWindow("Import Transaction File"));
  Type(files_.Write("day.qxt", kDay).string());
  Keys({"Return"});
  ASSERT_TRUE(WaitForNoWindow("Import Transaction File"));
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const store = screen.Find("cmdImportStore");
    return store != nullptr && store->enabled;
  }));
  Keys({"alt+s"});
  ASSERT_TRUE(WaitForSign("Central: up to date"));
  EXPECT_EQ(RowsThere(), StoredRows());
  Click("cmdCentralSign");
  ASSERT_TRUE(WaitForWindow("Central Database"));
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const proof = screen.Find("lblCentralProof");
    return proof != nullptr && proof->text.find("the same sums") != std::string::npos;
  }));
  Keys({"Escape"});
  EXPECT_TRUE(WaitForWindow(kMainTitle));
  ChooseFromMenu({"Tools", "Central Database..."});
  ASSERT_TRUE(WaitForWindow("Central Database"));
  Keys({"alt+p"});
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const note = screen.Find("lblCentralPush");
    return note != nullptr && note->text == "There was nothing to push.";
  }));
  Keys({"Escape"});
  EXPECT_TRUE(WaitForWindow(kMainTitle));
}

}  // namespace
}  // namespace vrx::testing
