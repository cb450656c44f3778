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

// The rows of an import as the grid asks for them: texts, 112 columns.
class ImportModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  // The session outlives it.
  explicit ImportModel(const ImportPresenter& session, QObject* parent = nullptr);

  // What the session holds has changed: the grid asks anew.
  void Reset();

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  // The characters of the longest text in a column, from 1, its caption aside: of a sample of rows,
  // the first and the last among them.
  int LongestText(int column) const;

 private:
  const ImportPresenter& session_;
};

// `grdIMPORT`. Rows are striped in the told colours; a grid without an import says where one comes
// from.
class ImportGrid : public QTableView {
  Q_OBJECT

 public:
  // The session outlives it.
  explicit ImportGrid(const ImportPresenter& session, QWidget* parent = nullptr);

  // Shows what the session holds now.
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

// What the Import tab asks of the main window; as in ImportHost.
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
  // Everything outlives it, but the window may go first.
  // `pic_import` is filled.
  ImportPage(Services& services, ImportWindow& window, QFrame& pic_import);

  // The whole import, from the question for a file on.
  void ImportXFile();

  const ImportPresenter& Session() const { return session_; }

  // The Tab key follows the work: choose a file, look at its rows, store them. Call it once the
  // page is in its window.
  void SetTabOrder();

  // The ingredient columns by the names of the open recipe database.
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
