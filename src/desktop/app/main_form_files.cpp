// Files that the main form opens without a file dialog: recent ones, those dropped on the window,
// those of the command line and of further starts; and the steps of the first screen.

#include <QApplication>
#include <chrono>
#include <utility>

#include "desktop/app/main_form.h"
#include "desktop/main_window/main_window.h"
#include "desktop/transfer/first_screen.h"
#include "presenter/open_files.h"

namespace vrx {
namespace {

constexpr std::chrono::milliseconds kAskAgain{100};  // whether a dialog has been closed

bool DialogIsShown() {
  return QApplication::activeModalWidget() != nullptr ||
         QApplication::activePopupWidget() != nullptr;
}

}  // namespace

void MainForm::ConnectFiles() {
  databases_.SetOpened([this](DatabaseKind kind, const std::filesystem::path& path) {
    recent_files_.Add(FileKindOf(kind), path);
  });
  connect(import_, &ImportPage::FileImported, this, [this](const QString& path) {
    recent_files_.Add(FileKind::kTransactionFile, path.toStdString());
  });
  connect(data_transfer_, &DataTransferPage::BackupOpened, this, [this](const QString& path) {
    recent_files_.Add(FileKind::kRecipeBackup, path.toStdString());
  });
  window_.ShowRecentFiles(recent_files_, [this](FileKind kind, const std::filesystem::path& path) {
    open_files_.OpenRecent(kind, path);
  });
  window_.SetDropHandler(
      [this](const std::vector<std::filesystem::path>& files) { OpenFilesLater(files); });
  AddFirstScreen();
  pending_timer_.setSingleShot(true);
  connect(&pending_timer_, &QTimer::timeout, this, &MainForm::OpenPendingFiles);
}

void MainForm::AddFirstScreen() {
  auto* const screen = new FirstScreen(first_steps_);
  data_transfer_->SetFirstScreen(screen);
  connect(screen, &FirstScreen::StepChosen, this, &MainForm::TakeFirstStep);
}

// The commands of the menus, which store pending edits first.
void MainForm::TakeFirstStep(FirstStep step) {
  if (!window_.LeaveEdits()) {
    return;
  }
  switch (step) {
    case FirstStep::kMakeRecipes:
      databases_.NewRecipeDatabase();
      break;
    case FirstStep::kMakeTransactions:
      databases_.NewTransactionDatabase();
      break;
    case FirstStep::kOpen:
      open_files_.Browse();
      break;
    case FirstStep::kSampleSite:
      first_steps_.TrySampleSite();
      break;
    case FirstStep::kSerialPort:
      if (ShowSetup(SetupStart::kPort)) {
        first_steps_.PortChosen();
      }
      break;
  }
  data_transfer_->RefreshFirstScreen();
}

void MainForm::OpenFilesLater(const std::vector<std::filesystem::path>& files) {
  pending_files_.insert(pending_files_.end(), files.begin(), files.end());
  window_.ComeToFront();
  pending_timer_.start(0);
}

void MainForm::OpenPendingFiles() {
  if (pending_files_.empty() || services_.pump.Closing()) {
    return;
  }
  if (!activated_) {
    return;  // the first activation continues here
  }
  if (DialogIsShown() || open_files_.Running()) {
    pending_timer_.start(kAskAgain);
    return;
  }
  open_files_.Open(std::exchange(pending_files_, {}));
}

void MainForm::ImportTransactionFile(const std::filesystem::path& path) {
  import_->ImportFile(path.string());
}

void MainForm::OpenRecipeBackup(const std::filesystem::path& path) {
  window_.Tabs().SelectTab(kTabDataTransfer);
  data_transfer_->OpenRecipeBackup(path.string());
}

}  // namespace vrx
