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
#include "presenter/services.h"

namespace vrx {

// The tabs Data Transfer and Import and the form `SETUP`: what works with the serial port and with
// files of the indicator. Owns `KRMCOMM`.
class TransferTabs : private TransferDatabases, private ImportWindow {
 public:
  // Adds the pages to the window, before the caption pass. Everything outlives it, but the
  // window, whose pages refer to it, may be destroyed later.
  TransferTabs(Services& services, SerialControl& serial, DatabaseCommands& databases,
               MainWindow& window);

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
  void BrowseRecipes() override { databases_.BrowseRecipeDatabase(); }
  void RecipesStored(int highest_in_use) override;

  // ImportWindow.
  OpenDatabases ImportDatabases() const override;
  std::vector<IngredientRecord> GridIngredients() override;
  void SelectTab(int tab) override { window_.Tabs().SelectTab(tab); }
  void SaveTransactionDatabase() override { databases_.SaveTransactionDatabase(); }

  void ShowLine();

  // `mnuToolsSetup`.
  void Setup();
  SetupFacts Facts() const;

  Services& services_;
  DatabaseCommands& databases_;
  MainWindow& window_;
  KRMCOMM krm_;
  QtTextPrinter printer_;
  DataTransferPage* data_transfer_;
  ImportPage* import_;
  SetupForm* setup_ = nullptr;  // while it is on show
  LineGuard::Watch line_watch_;
};

}  // namespace vrx
