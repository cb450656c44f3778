#pragma once

#include <QAbstractTableModel>
#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <functional>
#include <string_view>
#include <vector>

#include "desktop/main_window/tabs.h"
#include "platform/progress_display.h"
#include "presenter/import.h"

namespace vrx {

// The model of an import's rows: texts in 112 columns.
class ImportModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  // The session outlives it.
  explicit ImportModel(const ImportPresenter& session, QObject* parent = nullptr);

  // The imported data has changed.
  void Reset();

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  // The length in characters of the longest text in a column, from 1, without its caption; measured
  // on a sample of rows that includes the first and the last.
  int LongestText(int column) const;

 private:
  const ImportPresenter& session_;
};

// `grdIMPORT`. Rows are striped in the specified colors; a grid without an import shows how to get
// one.
class ImportGrid : public QTableView {
  Q_OBJECT

 public:
  // The session outlives it.
  explicit ImportGrid(const ImportPresenter& session, QWidget* parent = nullptr);

  // Shows the current imported data.
  void ShowImport();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void ShowColumns();
  void FitColumns();
  bool Empty() const;

  const ImportPresenter& session_;
  ImportModel* model_;
};

// The main window, as the Import tab uses it; see ImportHost.
class ImportWindow {
 public:
  virtual ~ImportWindow() = default;
  virtual OpenDatabases ImportDatabases() const = 0;
  virtual std::vector<IngredientRecord> GridIngredients() = 0;
  virtual void SelectTab(int tab) = 0;
  virtual void SaveTransactionDatabase() = 0;
};

// The Import tab: its page, and its buttons and progress in the row below the tabs.
class ImportPage final : public MainTabPage, private ImportHost, private ProgressDisplay {
  Q_OBJECT

 public:
  // Everything except the window outlives the page.
  // The page adds its controls to `pic_import`.
  ImportPage(Services& services, ImportWindow& window, QFrame& pic_import);

  // Asks for a file and imports it.
  void ImportXFile();

  const ImportPresenter& Session() const { return session_; }

  // The Tab key follows the order of work: choose a file, check its rows, store them. Call it when
  // the page is in its window.
  void SetTabOrder();

  // Sets the ingredient columns from the open recipe database.
  void ConfigureImportColumns();

  // MainTabPage.
  void Prepare() override;
  void StripFocused() override;
  void Rebind(DatabaseKind kind, const BoundDatabase& database) override;

 private:
  // ImportHost.
  OpenDatabases Databases() const override { return window_.ImportDatabases(); }
  std::vector<IngredientRecord> GridIngredients() override { return window_.GridIngredients(); }
  void SelectTab(int tab) override { window_.SelectTab(tab); }
  void FocusControl(std::string_view name) override;
  void SaveTransactionDatabase() override { window_.SaveTransactionDatabase(); }
  void ImportChanged() override;

  // ProgressDisplay.
  void SetProgressMessage(std::string_view text) override;
  void SetProgressRange(int maximum) override;
  void SetProgressValue(int value) override;

  void LayOut();
  QLayout* LayOutFacts();
  void FillPicImport();
  void EnableStore();
  void Run(const std::function<void()>& flow);

  Services& services_;
  ImportWindow& window_;
  QFrame& pic_import_;
  ImportPresenter session_;
  ImportGrid* grd_import_;
  QLabel* lbl_trans_filename_ = nullptr;
  QLabel* lbl_trans_uom_ = nullptr;
  QLabel* lbl_records_ = nullptr;
  QLabel* lbl_transactions_ = nullptr;
  QFrame* pic_import_progress_ = nullptr;
  QLabel* lbl_progress_msg_ = nullptr;
  QProgressBar* prg_import_ = nullptr;
  QCheckBox* chk_imp_fit_page_ = nullptr;
  QPushButton* cmd_import_file_ = nullptr;
  QPushButton* cmd_import_store_ = nullptr;
  QString read_only_note_;  // of the open transaction database
};

}  // namespace vrx
