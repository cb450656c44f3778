#pragma once

#include <vector>

#include "desktop/main_window/main_window.h"
#include "desktop/print/text_printer.h"
#include "desktop/setup/setup_form.h"
#include "desktop/transfer/data_transfer_page.h"
#include "desktop/transfer/import_page.h"
#include "link/krmcomm.h"
#include "platform/serial_control.h"
#include "presenter/database_commands.h"
#include "settings/data_folder.h"

namespace vrx {

// The tabs Data Transfer and Import and the form `SETUP`: what works with the serial port and with
// files of the indicator. Owns `KRMCOMM`.
class TransferTabs : private TransferDatabases, private ImportWindow {
 public:
  // Everything outlives it, but the window, whose pages refer to it, may be destroyed later.
  struct Ports {
    Operator& op;
    FileChooser& files;
    const Calendar& calendar;
    const SystemInfo& system;
    EventPump& pump;
    SerialControl& serial;
    const Folder& app_folder;
    PrivateINI& settings;
    DatabaseIdentity& identity;
    DatabaseCommands& databases;
    MainWindow& window;
  };

  // Puts the pages in their places; ahead of the caption pass.
  explicit TransferTabs(const Ports& ports);

  // The import on its tab: a transaction file is loaded once its FileName is set.
  const ImportPresenter& Import() const { return import_->Session(); }

  // As entering the Export tab does.
  void ConfigureImportColumns() { import_->ConfigureImportColumns(); }

  // For the end of the program.
  void CloseSerialPort() { krm_.KRM_ImmediateClose(); }
  void UnloadSetup();
  // As in DataTransferPage.
  bool MayLeave() { return data_transfer_->MayLeave(); }
  void KeepReceived() { data_transfer_->KeepReceived(); }

 private:
  // TransferDatabases.
  CurrentDatabase OpenRecipes() const override;
  void BrowseRecipes() override { ports_.databases.BrowseRecipeDatabase(); }
  void RecipesStored(int highest_in_use) override;

  // ImportWindow.
  OpenDatabases ImportDatabases() const override;
  std::vector<IngredientRecord> GridIngredients() override;
  void SelectTab(int tab) override { ports_.window.Tabs().SelectTab(tab); }
  void SaveTransactionDatabase() override { ports_.databases.SaveTransactionDatabase(); }

  void ShowLine();

  // `mnuToolsSetup`.
  void Setup();
  SetupFacts Facts() const;

  Ports ports_;
  KRMCOMM krm_;
  QtTextPrinter printer_;
  DataTransferPage* data_transfer_;
  ImportPage* import_;
  SetupForm* setup_ = nullptr;  // while it is on show
  LineGuard::Watch line_watch_;
};

}  // namespace vrx
