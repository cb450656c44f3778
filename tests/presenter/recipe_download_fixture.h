#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "exchange/store_fixture.h"
#include "link/krmcomm.h"
#include "presenter/download.h"
#include "support/boxes.h"
#include "support/fake_serial_control.h"
#include "support/recipe_tables.h"
#include "support/temp_folder.h"
#include "support/test_services.h"

namespace vrx::testing {

// The tab on a module that is there, beside a window that keeps what it was asked for.
class RecipeDownloadTest : public ::testing::Test, protected TestServices, public TransferView {
 protected:
  static inline const std::string kEchoes = "\x19\x14";  // what a download sends before its text
  static inline const std::string kWaitingAfterLoad =
      "Waiting to receive commands/data from K2260 indicator.";
  static inline const std::string kBackup = "{DATA_IN},K\r\n\r\n[ING]\r\n\r\n1,M\xC9L,0\r\n";

  void SetUp() override {
    settings.SetEnableBeeperOn(true);
    settings.SetBatchTargetWtIsRecTargetOn(false);
  }

  CurrentDatabase RecipeDatabase() const override { return database; }
  void OpenRecipeDatabase() override {
    if (on_open) {
      on_open();
    }
  }
  void RecipesStored(int highest_in_use) override { shown_recipes.push_back(highest_in_use); }
  // A control that is off, as during a command, cannot take the focus.
  void FocusControl(std::string_view name) override {
    EXPECT_TRUE(krm.Guard().Free());
    focused.emplace_back(name);
  }
  void TransferChanged() override {
    if (windows.empty() || windows.back() != tab.data_window) {
      windows.push_back(tab.data_window);
    }
  }

  void OpenSmallYard() {
    CreateRecipeDatabase(path, tables);
    database = {.path = path, .name = "YARD.RDB", .unit = "LB"};
  }
  void ModuleAnswers() {
    serial.WillAnswer("\x19\x1F");
    serial.WillAnswer("\x14\x1F");
  }
  void Connect(Connection connection) {
    tab.connection = connection;
    if (connection == Connection::kIndicator) {
      ASSERT_TRUE(krm.KRM_DirectOpen());
    }
  }
  bool ChooseBackup(const std::string& bytes = kBackup) {
    files.Choose(folder.Write("old.rbu", bytes));
    return session.OpenRecipeBU();
  }
  TempFolder folder;
  std::filesystem::path path = folder / "YARD.RDB";
  RecipeTables tables = SmallYard();
  CurrentDatabase database;
  std::function<void()> on_open;
  std::vector<int> shown_recipes;
  std::vector<std::string> focused;
  std::vector<std::string> windows;

  FakeSerialControl serial{pump};
  TransferState tab;
  KRMCOMM krm{serial, pump, op, settings};
  ReportFile data_files{op, files, settings, tab, [](int) { return FileAttributes{}; }};
  Download download{krm, pump, op, settings};
  DirectConnection direct{krm, tab, pump, op, settings};
  DownloadPresenter session{services, tab, data_files, download, direct, *this};
};

}  // namespace vrx::testing
