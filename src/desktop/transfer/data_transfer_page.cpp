#include "desktop/transfer/data_transfer_page.h"

#include <QBoxLayout>
#include <string>
#include <utility>

#include "base/files.h"
#include "link/rescue_file.h"
#include "presenter/report_failure.h"
#include "widgets/qt_text.h"

namespace vrx {

DataTransferPage::DataTransferPage(Services& services, KRMCOMM& krm, DatabaseCommands& databases,
                                   std::function<void(int)> go_to_recipe,
                                   TransferStatusPanel& status, TextPrinter& printer)
    : services_(services),
      krm_(krm),
      databases_(databases),
      go_to_recipe_(std::move(go_to_recipe)),
      status_(status),
      printer_(printer),
      op_(services.op, [this] { Show(); }),
      refreshing_(WithOperator(services, op_)),
      files_(op_, services.files, services.settings, transfer_,
             [this](int file) { return krm_.GL_KRM_FileAttributes(file); }),
      upload_(krm, transfer_, services.pump, op_, services.settings),
      download_(krm, services.pump, op_, services.settings),
      direct_(krm, transfer_, services.pump, op_, services.settings),
      session_(refreshing_, transfer_, files_, download_, direct_, *this),
      controls_(*this) {
  setObjectName(QStringLiteral("pageDataTransfer"));
  Connect();
  line_watch_ = krm_.Guard().OnChange([this] {
    controls_.ShowLine(krm_.Guard());
    status_.ShowCancel(krm_.Guard().Cancelable() && !krm_.Guard().Canceled());
    ShowFirstScreen();
  });
  connect(&status_, &TransferStatusPanel::CancelRequested, this, [this] { krm_.Guard().Cancel(); });
  Show();
}

void DataTransferPage::Connect() {
  const auto on = [this](QPushButton* button, auto flow) {
    connect(button, &QPushButton::clicked, this, [this, flow] { Run(flow); });
  };
  on(controls_.cmd_download_recipe_to_krm, [this] { session_.DownloadRecipeToKRM(); });
  on(controls_.cmd_open_recipe_db, [this] { Download(&DownloadPresenter::OpenRecipeDB); });
  on(controls_.cmd_download_recipe_db, [this] { Download(&DownloadPresenter::DownloadRecipeDB); });
  on(controls_.cmd_open_recipe_bu, [this] {
    if (Download(&DownloadPresenter::OpenRecipeBU)) {
      Q_EMIT BackupOpened(ToQString(session_.OpenedBackup()));
    }
  });
  on(controls_.cmd_download_recipe_bu, [this] { Download(&DownloadPresenter::DownloadRecipeBU); });
  on(controls_.cmd_upload_data_from_krm, [this] { UploadData(); });
  on(controls_.cmd_save_file, [this] { SaveFile(); });
  on(controls_.cmd_save_import, [this] { SaveAndImport(); });
  on(controls_.cmd_reload, [this] { Reload(); });
  on(controls_.cmd_print_text, [this] { PrintText(); });
  for (const Connection connection : {Connection::kModule, Connection::kIndicator}) {
    connect(controls_.opt_connection.at(static_cast<std::size_t>(connection)),
            &QRadioButton::clicked, this, [this, connection] { Choose(connection); });
  }
  connect(controls_.lst_data_files, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
    const int row = controls_.lst_data_files->row(item);
    Run([this, row] { upload_.DataFilesClick(row); });
  });
  connect(controls_.txt_data_window, &DataWindow::Edited, this,
          [this] { transfer_.data_window = controls_.txt_data_window->Bytes(); });
}

void DataTransferPage::SetFirstScreen(FirstScreen* screen) {
  first_screen_ = screen;
  static_cast<QBoxLayout*>(layout())->addWidget(screen, 1);
  ShowFirstScreen();
}

void DataTransferPage::ShowFirstScreen() {
  if (first_screen_ == nullptr) {
    return;
  }
  const bool unused = transfer_.data_window.empty() && transfer_.data_files.empty() &&
                      !transfer_.recipe_frames_visible && krm_.Guard().Free();
  const bool shown = unused && first_screen_->Wanted();
  first_screen_->Refresh();
  controls_.txt_data_window->setVisible(!shown);
  first_screen_->setVisible(shown);
}

void DataTransferPage::Prepare() {
  controls_.ShowCaptions();
  ShowFirstScreen();
  EnablePrintText();
}

void DataTransferPage::Run(const std::function<void()>& flow) {
  RunReported(services_.op, {.title = TrMark("Data Transfer Error")}, flow);
  Show();
}

// Ignores a click on the current choice. A new choice overrides one that is being carried out.
void DataTransferPage::Choose(Connection connection) {
  if (connection == chosen_) {
    return;
  }
  chosen_ = connection;
  connect_again_ = connection == Connection::kIndicator && krm_.Guard().Direct();
  if (connect_again_) {
    return;
  }
  Run([this, connection] {
    if (connection == Connection::kModule) {
      direct_.ConnectModule();
    } else {
      ConnectIndicator();
    }
  });
  if (chosen_ == connection) {
    ShowConnection();
  }
}

void DataTransferPage::ConnectIndicator() {
  const LineGuard::Claim line = krm_.Guard().TakeForDirectConnection();
  if (!line) {
    return;
  }
  do {
    connect_again_ = false;
    ConnectOnce();
  } while (connect_again_ && !services_.pump.Closing());
}

// The operator may select the module while the port is still being opened.
void DataTransferPage::ConnectOnce() {
  if (!direct_.Enter()) {
    return;
  }
  if (chosen_ == Connection::kModule) {
    direct_.ConnectModule();
    return;
  }
  Show();
  direct_.DirectConnectLoop();
}

void DataTransferPage::ShowConnection() {
  chosen_ = transfer_.connection;
  controls_.opt_connection.at(static_cast<std::size_t>(chosen_))->setChecked(true);
}

void DataTransferPage::ResumeDirectConnection() {
  Run([this] { direct_.Resume(); });
  ShowConnection();
}

void DataTransferPage::UploadData() {
  const bool from_module = transfer_.connection == Connection::kModule;
  upload_.UploadDataFromKRM();
  if (from_module) {
    ReportCause();
    KeepCanceledPart();
    return;
  }
  if (!transfer_.block_is_cut && transfer_.received.Unsaved()) {
    Rescue(transfer_.transfer_block);
  }
  if (!transfer_.data_files.empty()) {
    FocusControl("cmdSaveFile");
  }
}

void DataTransferPage::KeepCanceledPart() {
  if (!upload_.CanceledPart().empty()) {
    RescueReceived(upload_.CanceledPart(), {services_.folder.DefaultAppPath()}, LocalNow(), op_);
  }
}

bool DataTransferPage::Rescue(std::string_view bytes) {
  if (!RescueReceived(bytes, {services_.folder.DefaultAppPath()}, LocalNow(), op_)) {
    return false;
  }
  transfer_.received.Rescued();
  return true;
}

bool DataTransferPage::MayLeave() {
  const auto yes = [this](std::string_view text) {
    return services_.op.ShowMessage({.icon = Icon::kQuestion,
                                     .buttons = Buttons::kYesNo,
                                     .title = Tr("Received Data"),
                                     .text = std::string(text),
                                     .refuses_by_default = true}) == Answer::kYes;
  };
  if (!transfer_.received.Unsaved() || services_.pump.Closing()) {
    return true;
  }
  return yes(Tr("What the indicator sent has not been saved.") + "\r\n" +
             Tr("Leave the program, and keep it in a rescue file?")) &&
         (Rescue(krm_.GS_KRM_VirtualMemory()) || yes(Tr("Leave the program without it?")));
}

void DataTransferPage::KeepReceived() {
  if (!transfer_.received.Unsaved()) {
    return;
  }
  try {
    WriteRescueFile(krm_.GS_KRM_VirtualMemory(), {services_.folder.DefaultAppPath()}, LocalNow());
    transfer_.received.Rescued();
  } catch (const FileError&) {
    // The program ends, so no one would read a message.
  }
}

bool DataTransferPage::Download(bool (DownloadPresenter::*step)()) {
  const bool done = (session_.*step)();
  ReportCause();
  return done;
}

void DataTransferPage::OpenRecipeBackup(const std::string& path) {
  Run([&] {
    if (session_.OpenRecipeBackup(path)) {
      Q_EMIT BackupOpened(ToQString(path));
    }
    ReportCause();
  });
}

void DataTransferPage::ReportCause() {
  if (op_.StatusIsError()) {
    status_.SetStatusCause(ToQString(krm_.KRM_FailureCause()));
  }
}

void DataTransferPage::Reload() {
  controls_.cmd_upload_data_from_krm->click();
  FocusControl("cmdSaveFile");
}

void DataTransferPage::SaveFile() {
  files_.SaveCheckedFile();
  status_.SetStatusCause(ToQString(files_.SaveFailure()));
}

void DataTransferPage::SaveAndImport() {
  const std::vector<FileChoice> files =
      files_.SaveForImport(services_.folder.DefaultAppPath(), services_.calendar.Today());
  status_.SetStatusCause(ToQString(files_.SaveFailure()));
  if (!files.empty()) {
    Show();
    Q_EMIT ImportRequested(files);
  }
}

void DataTransferPage::PrintText() {
  if (transfer_.data_window.empty()) {
    services_.op.ShowMessage(
        {.icon = Icon::kWarning, .title = "Print Error", .text = "There is nothing to print."});
    return;
  }
  RunReported<Error>(services_.op,
                     {.title = "Print Error",
                      .text = FailureText::kWords,
                      .words = TrMark("The data window could not be printed."),
                      .icon = Icon::kWarning},
                     [this] { printer_.Print(transfer_.data_window); });
}

void DataTransferPage::EnablePrintText() {
  const bool on = services_.settings.EnablePrintTextOn();
  controls_.cmd_print_text->setEnabled(on);
  controls_.cmd_print_text->setToolTip(on ? QTr("Print what the data window shows")
                                          : QTr("Turn this on in Tools, Setup/Test, Options"));
}

// The date is read last, because showing a recipe may store recomputed figures.
void DataTransferPage::RecipesStored(int highest_in_use) {
  databases_.ReloadViews(DatabaseKind::kRecipe);
  if (highest_in_use > 0) {
    go_to_recipe_(highest_in_use);
  }
  databases_.ShowModifiedDate(DatabaseKind::kRecipe);
}

void DataTransferPage::FocusControl(std::string_view name) {
  Show();
  auto* const control = findChild<QWidget*>(ToQString(name));
  if (control != nullptr && control->isEnabled() && control->isVisible()) {
    control->setFocus();
  }
}

void DataTransferPage::FocusButton(QPushButton& button) {
  if (button.isEnabled() && button.isVisible()) {
    button.setFocus();
  }
}

void DataTransferPage::Show() {
  controls_.Show(transfer_);
  ShowFirstScreen();
  ShowMemory();
}

void DataTransferPage::ShowMemory() {
  if (memory_shown_ != transfer_.memory_size_visible) {
    memory_shown_ = transfer_.memory_size_visible;
    status_.ShowMemory(memory_shown_);
  }
  if (memory_size_shown_ != transfer_.memory_size) {
    memory_size_shown_ = transfer_.memory_size;
    status_.SetMemorySize(std::stoi(memory_size_shown_));
    if (transfer_.data_files_frame_visible && transfer_.reload_enabled) {
      FocusControl("cmdReload");
    }
  }
}

}  // namespace vrx
