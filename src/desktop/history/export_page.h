#pragma once

#include <QButtonGroup>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <array>
#include <functional>
#include <string_view>

#include "desktop/app/qt_services.h"
#include "desktop/main_window/tabs.h"
#include "presenter/export.h"
#include "widgets/fields.h"

namespace vrx {

// The main window, as the Export tab uses it; see ExportHost.
class ExportWindow {
 public:
  virtual ~ExportWindow() = default;
  virtual OpenDatabases ExportDatabases() const = 0;
  virtual ExportSource DataGroup() = 0;
  virtual void ConfigureImportColumns() = 0;
};

// The Export tab. A click on its button returns when the file is written, and runs events at the
// start and at the end; the page must outlive it.
class ExportPage final : public MainTabPage, private ExportHost {
  Q_OBJECT

 public:
  // Everything except the window outlives the page.
  ExportPage(Services& services, const StyleSheets& style_sheets, ExportWindow& window);

  // MainTabPage.
  void Prepare() override;

 private:
  // ExportHost.
  OpenDatabases Databases() const override { return window_.ExportDatabases(); }
  ExportSource DataGroup() override { return window_.DataGroup(); }
  void ConfigureImportColumns() override { window_.ConfigureImportColumns(); }
  void FocusControl(std::string_view name) override;
  void ExportChanged() override;

  void LayOut();
  QWidget* MakeFormats();
  QLayout* LayOutButtons();
  QWidget* MakeProgress();
  QPushButton* AddButton(const char* name, const QString& caption, const QString& meaning);
  void Connect();
  void Run(const std::function<void()>& flow);

  Services& services_;
  ExportWindow& window_;
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
