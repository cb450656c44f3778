#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

#include "adapters/linux_machine.h"
#include "database/identity.h"
#include "desktop/app/qt_services.h"
#include "desktop/main_window/panels.h"
#include "desktop/main_window/tabs.h"
#include "desktop/print/text_printer.h"
#include "desktop/transfer/data_transfer_controls.h"
#include "link/krmcomm.h"
#include "platform/calendar.h"
#include "presenter/data_files.h"
#include "presenter/database_identity.h"
#include "presenter/direct_connection.h"
#include "presenter/download.h"
#include "presenter/upload.h"
#include "settings/settings.h"

namespace vrx {

// What the Data Transfer tab asks of the main window.
class TransferDatabases {
 public:
  virtual ~TransferDatabases() = default;

  // As in RecipeDownloadHost.
  virtual CurrentDatabase OpenRecipes() const = 0;
  virtual void BrowseRecipes() = 0;
  virtual void RecipesStored(int highest_in_use) = 0;
};

// The Data Transfer tab. Each click runs its transfer to the end, with events handled meanwhile;
// the click that chooses the indicator returns when the direct connection has ended. The page must
// outlive every such call: whoever closes the program ends the waits first.
class DataTransferPage final : public MainTabPage, private RecipeDownloadHost {
  Q_OBJECT

 public:
  // Everything outlives it.
  DataTransferPage(Services& services, KRMCOMM& krm, TransferDatabases& databases,
                   TransferStatusPanel& status, TextPrinter& printer);

  // Somebody else has had the serial port: a direct connection that stands takes it up again.
  void ResumeDirectConnection();

  // Asks, where data of the indicator is not saved yet, whether the program may be left. On Yes the
  // data goes into a rescue file first.
  bool MayLeave();

  // Puts such data into a rescue file without a word, for an end of the program that asks nothing.
  void KeepReceived();

  // MainTabPage.
  void Prepare() override;
  void StripFocused() override { EnablePrintText(); }

 private:
  // RecipeDownloadHost.
  CurrentDatabase RecipeDatabase() const override { return databases_.OpenRecipes(); }
  void OpenRecipeDatabase() override { databases_.BrowseRecipes(); }
  void RecipesStored(int highest) override { databases_.RecipesStored(highest); }
  void FocusControl(std::string_view name) override;
  void TransferChanged() override { Show(); }
  void OpenRescueFile(const std::filesystem::path& path) override { upload_.UploadFromFile(path); }

  void Connect();
  void Run(const std::function<void()>& flow);
  void Choose(Connection connection);
  void ConnectIndicator();
  void ShowConnection();
  void ConnectOnce();
  void UploadData();
  bool Rescue(std::string_view bytes);
  void Download(bool (DownloadPresenter::*step)());
  void ReportCause();
  void Reload();
  void SaveFile();
  void PrintText();
  void EnablePrintText();
  void Show();
  void ShowMemory();

  Services& services_;
  KRMCOMM& krm_;
  TransferDatabases& databases_;
  TransferStatusPanel& status_;
  TextPrinter& printer_;
  RefreshingOperator op_;
  Services refreshing_;  // the same with op_
  TransferState transfer_;
  ReportFile files_;
  Upload upload_;
  vrx::Download download_;
  DirectConnection direct_;
  DownloadPresenter session_;
  DataTransferControls controls_;
  Connection chosen_ = Connection::kModule;  // what `optConnection` stands on
  bool connect_again_ = false;               // the indicator was chosen while its connection ended
  LineGuard::Watch line_watch_;
  bool memory_shown_ = false;
  std::string memory_size_shown_;
};

}  // namespace vrx
