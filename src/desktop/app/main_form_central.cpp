// The central database in the main form: what the pushes must know of the window's work, and where
// their state is shown.

#include "desktop/app/main_form.h"
#include "desktop/central/central_dialog.h"
#include "desktop/main_window/status_bar.h"
#include "presenter/central_push.h"

namespace vrx {

void MainForm::AddCentral() {
  window_.SetHandler(MainCommand::kCentralDatabase, [this] { ShowCentral(); });
  connect(&window_.CentralSign(), &QToolButton::clicked, this, [this] {
    if (window_.LeaveEdits()) {
      ShowCentral();
    }
  });
  connect(&window_, &MainWindow::DatabaseBound, this,
          [this](DatabaseKind kind, const BoundDatabase& database) {
            if (kind == DatabaseKind::kTransaction) {
              central_.SetDatabase(database);
            }
          });
  connect(&window_, &MainWindow::WriteBegins, this, [this](DatabaseKind kind) {
    if (kind == DatabaseKind::kTransaction) {
      central_.MakeWay();
    }
  });
  connect(import_, &ImportPage::WriteBegins, this, [this] { central_.BeginWrite(); });
  connect(import_, &ImportPage::WriteEnds, this, [this] { central_.EndWrite(); });
  connect(import_, &ImportPage::Done, this, [this](const QString& /*text*/, std::int64_t new_rows) {
    if (new_rows > 0) {
      central_.RecordsStored();
    }
  });
}

void MainForm::ShowCentral() {
  if (central_dialog_ != nullptr) {
    return;
  }
  CentralDialog dialog(services_, central_, machine_, databases_.OpenedRecipes().path, &window_);
  central_dialog_ = &dialog;
  dialog.exec();
  central_dialog_ = nullptr;
}

void MainForm::CentralChanged() {
  window_.CentralSign().ShowState(central_.State());
  if (central_dialog_ != nullptr) {
    central_dialog_->ShowPush();
  }
}

}  // namespace vrx
