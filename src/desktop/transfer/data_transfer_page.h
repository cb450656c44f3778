#pragma once

#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

#include "adapters/linux_machine.h"
#include "desktop/app/qt_services.h"
#include "desktop/main_window/panels.h"
#include "desktop/main_window/tabs.h"
#include "desktop/print/text_printer.h"
#include "desktop/transfer/data_transfer_controls.h"
#include "desktop/transfer/first_screen.h"
#include "link/krmcomm.h"
#include "platform/calendar.h"
#include "platform/file_chooser.h"
#include "presenter/data_files.h"
#include "presenter/database_commands.h"
#include "presenter/direct_connection.h"
#include "presenter/download.h"
#include "presenter/upload.h"
#include "settings/settings.h"

namespace vrx {

// The Data Transfer tab. Each click runs its transfer to the end, and events in the meantime; the
// click that selects the indicator returns when the direct connection has ended. The page must
// outlive every such call, so the exit ends all waits first.
class DataTransferPage final : public MainTabPage, private TransferView {
  Q_OBJECT

 public:
  // Everything outlives it. `go_to_recipe` shows a recipe on the Recipes tab.
  DataTransferPage(Services& services, KRMCOMM& krm, DatabaseCommands& databases,
                   std::function<void(int)> go_to_recipe, TransferStatusPanel& status,
                   TextPrinter& printer);

  // Sets the focus on the button of a command, if it can be pressed.
  void FocusUpload() { FocusButton(*controls_.cmd_upload_data_from_krm); }
  void FocusDownload() { FocusButton(*controls_.cmd_download_recipe_to_krm); }

  // Shows it in the place of the data window while that is empty and it is wanted. The page owns
  // it.
  void SetFirstScreen(FirstScreen* screen);

  // What the first screen shows has changed.
  void RefreshFirstScreen() { ShowFirstScreen(); }

  // Opens a recipe backup without the file dialog.
  void OpenRecipeBackup(const std::string& path);

  // Another routine has used the serial port: a running direct connection reopens it.
  void ResumeDirectConnection();

  // If data of the indicator is not saved yet, asks whether to leave the program. On Yes, first
  // writes the data to a rescue file.
  bool MayLeave();

  // Writes such data to a rescue file without a message, for an exit that asks no questions.
  void KeepReceived();

  // MainTabPage.
  void Prepare() override;
  void StripFocused() override { EnablePrintText(); }
  void TabChanged(int /*tab*/, int /*previous*/) override { ShowFirstScreen(); }

 Q_SIGNALS:
  // The backup is ready to be sent, or in the memory of the direct connection.
  void BackupOpened(const QString& path);

 Q_SIGNALS:
  // The operator wants these saved transaction files to be imported.
  void ImportRequested(const std::vector<FileChoice>& files);

 private:
  // TransferView.
  [[nodiscard]] CurrentDatabase RecipeDatabase() const override {
    return databases_.OpenedRecipes();
  }
  void OpenRecipeDatabase() override { databases_.BrowseRecipeDatabase(); }
  void RecipesStored(int highest_in_use) override;
  void FocusControl(std::string_view name) override;
  void TransferChanged() override { Show(); }
  void OpenRescueFile(const std::filesystem::path& path) override { upload_.UploadFromFile(path); }

  static void FocusButton(QPushButton& button);
  void Connect();
  void Run(const std::function<void()>& flow);
  void Choose(Connection connection);
  void ConnectIndicator();
  void ShowConnection();
  void ConnectOnce();
  void UploadData();
  void KeepCanceledPart();
  bool Rescue(std::string_view bytes);
  bool Download(bool (DownloadPresenter::*step)());
  void ReportCause();
  void Reload();
  void SaveFile();
  void SaveAndImport();
  void PrintText();
  void EnablePrintText();
  void Show();
  void ShowFirstScreen();
  void ShowMemory();

  Services& services_;
  KRMCOMM& krm_;
  DatabaseCommands& databases_;
  std::function<void(int)> go_to_recipe_;
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
  FirstScreen* first_screen_ = nullptr;
  Connection chosen_ = Connection::kModule;  // current `optConnection`
  bool connect_again_ = false;               // the indicator was chosen while its connection ended
  LineGuard::Watch line_watch_;
  bool memory_shown_ = false;
  std::string memory_size_shown_;
};

}  // namespace vrx
