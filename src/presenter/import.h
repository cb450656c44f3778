#pragma once

#include <array>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "database/open_databases.h"
#include "database/records.h"
#include "exchange/imported_data.h"
#include "exchange/store.h"
#include "exchange/transaction_parser.h"
#include "platform/file_chooser.h"
#include "platform/operator.h"
#include "platform/progress_display.h"
#include "presenter/services.h"

namespace vrx {

// What the operator reads after a store: "Stored 198 records as transactions 109 to 127, of
// 11-Jan-26." Empty if nothing was stored and nothing was repeated.
[[nodiscard]] std::string StoredSummary(const StoreOutcome& outcome);

// The Import tab, as its presenter uses it.
class ImportView {
 public:
  virtual ~ImportView() = default;

  // The open databases.
  [[nodiscard]] virtual OpenDatabases Databases() const = 0;

  // The current rows of `grdING`; none if no recipe database is open. May throw DatabaseError.
  virtual std::vector<IngredientRecord> GridIngredients() = 0;

  // Selects the Import tab, which leads to ImportPresenter::EnterImportTab.
  virtual void SelectImportTab() = 0;

  // Gives the control of that name the focus if it is visible and enabled.
  virtual void FocusControl(std::string_view name) = 0;

  // The menu command: closes and reopens the transaction database.
  virtual void SaveTransactionDatabase() = 0;

  // The state of the import has changed and must be shown.
  virtual void ImportChanged() = 0;

  // The records of that file are shown now.
  virtual void FileShown(const std::string& /*path*/) {}
};

struct ImportLabel {
  std::string caption;
  bool visible = true;
};

inline constexpr int kEmptyGridRows = 1;  // of a grid without an import

// The controls of the Import tab.
struct ImportForm {
  ImportLabel lbl_trans_filename;
  ImportLabel lbl_trans_uom;
  ImportLabel lbl_records;       // rows
  ImportLabel lbl_transactions;  // batches
  bool cmd_import_store_enabled = false;
  bool cmd_import_undo_enabled = false;
  bool pic_import_progress_visible = false;
  bool grd_import_visible = true;
  int grd_import_rows = kEmptyGridRows;
  std::array<ImportGridColumn, kImportColumns> grd_import_columns;  // column n at n - 1
};

// The Import tab without its window, from a transaction file to stored rows. Holds the state of the
// form and the imported data.
class ImportPresenter {
 public:
  ImportPresenter(Services& services, ProgressDisplay& progress, ImportView& host);
  ImportPresenter(const ImportPresenter&) = delete;
  ImportPresenter& operator=(const ImportPresenter&) = delete;

  // Asks for a file and imports it. Returns false after Cancel, which changes nothing but shows the
  // grid, and after reporting a failure.
  bool ImportXFile();

  // The same for a given file. Both forget files that wait for their turn.
  bool ImportFile(const FileChoice& choice);

  // Imports the first of these files that is not refused. The others wait for their turn.
  bool ImportFiles(std::vector<FileChoice> files);

  // The rows of the import are settled: imports the next waiting file that is not refused. Returns
  // false if there is none.
  bool ImportNext();

  // Sets captions and visibility of the 100 ingredient columns from the open recipe database.
  void ConfigureImportColumns();

  void EnterImportTab();

  // Moves the focus to the tab strip if the Import tab is shown.
  void ShowOrHideProgress();

  // The click of `cmdImportStore`: checks databases and units, then stores.
  StoreOutcome ClickImportStore(RepeatedBatches repeated = RepeatedBatches::kAsk);

  // The click of `cmdImportUndo`. Returns false if nothing was taken out of the database.
  bool ClickImportUndo();

  // Enables `cmdImportUndo` if the last store of the transaction database can be undone.
  void UpdateUndo(const OpenDatabases& databases);

  const ImportForm& Form() const { return form_; }
  const TransFile& File() const { return file_; }
  bool StoredFlag() const { return stored_; }

 private:
  bool Import(const FileChoice& choice);
  bool ParseAndShow();
  void EmptyImport();
  void ReportUnreadFeeds();
  void Refuse(std::string text);
  bool MayWrite(const OpenDatabases& databases, const std::string& missing);
  bool ConfirmUnits(const OpenDatabases& databases);

  Services& services_;
  ProgressDisplay& progress_;
  ImportView& view_;
  TransactionStore store_;
  TransFile file_;
  ImportForm form_;
  std::deque<FileChoice> waiting_;  // files of ImportFiles
  bool stored_ = false;
};

}  // namespace vrx
