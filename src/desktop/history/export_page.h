#pragma once

#include <QButtonGroup>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <array>
#include <filesystem>
#include <functional>
#include <string_view>

#include "desktop/app/qt_services.h"
#include "desktop/history/history_page.h"
#include "desktop/main_window/tabs.h"
#include "presenter/database_commands.h"
#include "presenter/export.h"
#include "widgets/fields.h"
#include "widgets/qt_text.h"

namespace vrx {

// The Export tab. A click on its button returns when the file is written, and runs events at the
// start and at the end; the page must outlive it.
class ExportPage final : public MainTabPage, private ExportView {
  Q_OBJECT

 public:
  // Everything except the window outlives the page. `history` shows the data group to export.
  // `configure_import_columns` is the import's routine of that name.
  ExportPage(Services& services, const DatabaseCommands& databases, const StyleSheets& style_sheets,
             HistoryPage& history, std::function<void()> configure_import_columns);

  // MainTabPage.
  void Prepare() override;

 Q_SIGNALS:
  // The data was exported to that file.
  void FileWritten(const QString& action, const QString& path);

 private:
  // ExportView.
  [[nodiscard]] OpenDatabases Databases() const override { return databases_.Opened(); }
  ExportSource DataGroup() override { return Current(*history_.View()); }
  void ConfigureImportColumns() override { configure_import_columns_(); }
  void FocusControl(std::string_view name) override;
  void ExportChanged() override;
  void Exported(const std::filesystem::path& file) override {
    Q_EMIT FileWritten(QTr("Exported to"), ToQString(file.string()));
  }

  void LayOut();
  QWidget* MakeFormats();
  QLayout* LayOutButtons();
  QWidget* MakeProgress();
  QPushButton* AddButton(const char* name, const QString& caption, const QString& meaning);
  void Connect();
  void Run(const std::function<void()>& flow);

  Services& services_;
  const DatabaseCommands& databases_;
  HistoryPage& history_;
  std::function<void()> configure_import_columns_;
  ExportPresenter tab_;
  FilteredEdit* txt_f_name_;
  QLineEdit* txt_f_path_;
  QPushButton* cmd_browse_;
  QButtonGroup* formats_;  // by ExportFormat
  QPushButton* cmd_export_;
  QPushButton* cmd_reset_;
  QWidget* progress_;
  QLabel* lbl_export_;
  QLabel* lbl_data_group_;
  QProgressBar* prg_export_;
};

}  // namespace vrx
