#pragma once

#include <QAbstractTableModel>
#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/main_window/tabs.h"
#include "platform/file_chooser.h"
#include "platform/progress_display.h"
#include "presenter/command_states.h"
#include "presenter/database_commands.h"
#include "presenter/import.h"
#include "widgets/fields.h"
#include "widgets/qt_text.h"

namespace vrx {

// The model of an import's rows: texts in 112 columns.
class ImportModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  // The session outlives it.
  explicit ImportModel(const ImportPresenter& session, QObject* parent = nullptr);

  // The imported data has changed.
  void Reset();

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role) const override;

  // The length in characters of the longest text in a column, from 1, without its caption; measured
  // on a sample of rows that includes the first and the last.
  [[nodiscard]] int LongestText(int column) const;

 private:
  const ImportPresenter& session_;
};

// `grdIMPORT`. Rows are striped in the specified colors; a grid without an import shows how to get
// one.
class ImportGrid : public QTableView, public EnterByCell {
  Q_OBJECT

 public:
  // The session outlives it.
  explicit ImportGrid(const ImportPresenter& session, QWidget* parent = nullptr);

  // Shows the current imported data.
  void ShowImport();

  bool EnterPressed() override { return GoToNextCell(*this); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void ShowColumns();
  void FitColumns();
  void FillWidth();
  [[nodiscard]] bool Empty() const;

  const ImportPresenter& session_;
  ImportModel* model_;
  std::array<int, kImportColumns> least_{};  // the widths that the texts need
};

// The Import tab: its page, and its buttons and progress in the row below the tabs.
class ImportPage final : public MainTabPage, private ImportView, private ProgressDisplay {
  Q_OBJECT

 public:
  // Everything except the window outlives the page, which adds its controls to `pic_import`.
  // `active_ingredients_only` returns `chkShowActiveIngsOnly`.
  ImportPage(Services& services, DatabaseCommands& databases, TabFolder& tabs,
             std::function<bool()> active_ingredients_only, QFrame& pic_import);

  // Asks for a file and imports it.
  void ImportXFile();

  // Imports files one after the other: the next one after a store.
  void ImportFiles(const std::vector<FileChoice>& files);
  // Imports this file.
  void ImportFile(const std::string& path);

  const ImportPresenter& Session() const { return session_; }

  // `chkImpFitPage`: a printed page holds all columns.
  [[nodiscard]] bool FitAllColumns() const { return chk_imp_fit_page_->isChecked(); }

  // The Tab key follows the order of work: choose a file, check its rows, store them. Call it when
  // the page is in its window.
  void SetTabOrder();

  // Sets the ingredient columns from the open recipe database.
  void ConfigureImportColumns();

  // MainTabPage.
  void Prepare() override;
  void StripFocused() override;
  void Rebind(DatabaseKind kind, const BoundDatabase& database) override;

 Q_SIGNALS:
  // A store or its undo has ended, after the databases were rebound. `new_rows` are the last rows
  // of the database in stored order.
  void Done(const QString& text, std::int64_t new_rows);
  // After Done, if another file was imported in its turn: what both did.
  void WentOn(const QString& text);

  // A store or its undo is about to write to the transaction database, and has ended.
  void WriteBegins();
  void WriteEnds();

  // The grid shows the records of this file.
  void FileImported(const QString& path);

 private:
  // ImportView.
  OpenDatabases Databases() const override { return databases_.Opened(); }
  std::vector<IngredientRecord> GridIngredients() override;
  void SelectImportTab() override { tabs_.SelectTab(kTabImport); }
  void FocusControl(std::string_view name) override;
  void SaveTransactionDatabase() override { databases_.SaveTransactionDatabase(); }
  void ImportChanged() override;
  void FileShown(const std::string& path) override { Q_EMIT FileImported(ToQString(path)); }

  // ProgressDisplay.
  void SetProgressMessage(std::string_view text) override;
  void SetProgressRange(int maximum) override;
  void SetProgressValue(int value) override;

  void LayOut();
  QLayout* LayOutFacts();
  void FillPicImport();
  void EnableStore();
  void Run(const std::function<void()>& flow);
  void Write(const std::function<void()>& flow);
  void Store();
  void Undo();

  Services& services_;
  DatabaseCommands& databases_;
  TabFolder& tabs_;
  std::function<bool()> active_ingredients_only_;
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
  QPushButton* cmd_import_undo_ = nullptr;
  QString read_only_note_;  // of the open transaction database
};

}  // namespace vrx
