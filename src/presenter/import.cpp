#include "presenter/import.h"

#include <cstddef>
#include <iterator>
#include <utility>

#include "base/date.h"
#include "base/files.h"
#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "database/connection.h"
#include "exchange/imported_data.h"
#include "exchange/unread_feeds.h"
#include "presenter/database_identity.h"
#include "presenter/report_failure.h"
#include "settings/settings.h"

namespace vrx {
namespace {

constexpr std::string_view kImportErrorTitle = "Import Error";

std::string CountText(std::int32_t count) { return Format(static_cast<double>(count), "0"); }

// "Stored 3 records", and as which transactions.
std::string StoredAs(const StoreOutcome& outcome) {
  const std::string count = std::to_string(outcome.stored);
  if (!outcome.lowest) {
    return outcome.stored == 1 ? Tr("Stored 1 record") : Tr("Stored %1 records", {count});
  }
  const std::string lowest = std::to_string(*outcome.lowest);
  if (outcome.lowest != outcome.highest) {
    return Tr("Stored %1 records as transactions %2 to %3",
              {count, lowest, std::to_string(*outcome.highest)});
  }
  return outcome.stored == 1 ? Tr("Stored 1 record as transaction %1", {lowest})
                             : Tr("Stored %1 records as transaction %2", {count, lowest});
}

// ", of 05-Jan-26 to 06-Jan-26"; empty without a date.
std::string OfDays(const StoreOutcome& outcome) {
  if (!outcome.first_date) {
    return {};
  }
  const std::string first = MediumText(*outcome.first_date);
  return outcome.first_date == outcome.last_date
             ? Tr(", of %1", {first})
             : Tr(", of %1 to %2", {first, MediumText(*outcome.last_date)});
}

}  // namespace

std::string StoredSummary(const StoreOutcome& outcome) {
  std::string text;
  if (outcome.stored > 0) {
    text = StoredAs(outcome) + OfDays(outcome) + ".";
  }
  if (outcome.repeated > 0) {
    text += (text.empty() ? "" : " ") +
            (outcome.repeated == 1
                 ? Tr("1 record was there already.")
                 : Tr("%1 records were there already.", {std::to_string(outcome.repeated)}));
  }
  return text;
}

ImportPresenter::ImportPresenter(Services& services, ProgressDisplay& progress, ImportView& host)
    : services_(services),
      progress_(progress),
      view_(host),
      store_(services.op, services.settings, services.calendar, progress,
             [this] { view_.SaveTransactionDatabase(); }) {
  int number = 1;
  for (ImportGridColumn& column : form_.grd_import_columns) {
    column.caption = DesignImportCaption(number++);
  }
}

bool ImportPresenter::ImportXFile() {
  form_.grd_import_visible = true;
  view_.ImportChanged();
  const FileChoice choice =
      services_.files.ShowOpen({.title = "Import Transaction File",
                                .filter = "Transactions (*.QXT)|*.QXT",
                                .default_extension = "QXT",
                                .start_folder = services_.system.CommonAppDataFolder(),
                                .flags = kFileMustExist | kHideReadOnly});
  return !choice.Cancelled() && ImportFile(choice);
}

bool ImportPresenter::ImportFile(const FileChoice& choice) {
  waiting_.clear();
  return Import(choice);
}

bool ImportPresenter::ImportFiles(std::vector<FileChoice> files) {
  waiting_.assign(std::make_move_iterator(files.begin()), std::make_move_iterator(files.end()));
  return ImportNext();
}

bool ImportPresenter::ImportNext() {
  while (!waiting_.empty()) {
    const FileChoice next = std::move(waiting_.front());
    waiting_.pop_front();
    if (Import(next)) {
      return true;
    }
  }
  return false;
}

bool ImportPresenter::Import(const FileChoice& choice) {
  file_.SetFilePath(choice.path);
  file_.SetFileName(UnicodeUpperCase(choice.title));
  EmptyImport();
  view_.SelectImportTab();
  const bool imported = file_.LoadTransactionFile(services_.op, [this] {
    view_.FocusControl("cmdImportFile");
  }) && ParseAndShow();
  view_.ImportChanged();
  if (imported) {
    view_.FocusControl("cmdImportStore");
    view_.FileShown(choice.path);
    ReportUnreadFeeds();
  }
  return imported;
}

// The rows of an earlier file must not be stored instead of a refused one.
void ImportPresenter::EmptyImport() {
  file_.ClearImport();
  form_.grd_import_rows = kEmptyGridRows;
  form_.cmd_import_store_enabled = false;
  stored_ = false;
}

void ImportPresenter::ReportUnreadFeeds() {
  const std::vector<UnreadFeed>& feeds = file_.Imported().UnreadFeeds();
  if (!feeds.empty()) {
    services_.op.ShowMessage({.icon = Icon::kWarning,
                              .title = "Import",
                              .text = UnreadFeedsText(feeds, LeftOutOf::kImport),
                              .cause = UnreadFeedsList(feeds)});
  }
}

bool ImportPresenter::ParseAndShow() {
  const ImportHooks hooks{.configure_columns = [this] { ConfigureImportColumns(); },
                          .show_grid =
                              [this](std::int32_t rows) {
                                form_.grd_import_visible = true;
                                form_.grd_import_rows = rows;
                                view_.ImportChanged();
                              }};
  const std::string error =
      file_.ParseTransactionFile(progress_, hooks, services_.op, services_.settings);
  const bool parsed = error.empty();
  if (parsed) {
    form_.lbl_trans_filename.caption = file_.FileName();
    form_.lbl_trans_uom.caption = file_.FileUnits();
    form_.lbl_records = {CountText(file_.FileRecordCount()), true};
    form_.lbl_transactions.caption = CountText(file_.FileTransactionCount());
  } else {
    EmptyImport();
  }
  // A failed parse does not change lblRecords.
  form_.lbl_trans_filename.visible = parsed;
  form_.lbl_trans_uom.visible = parsed;
  form_.lbl_transactions.visible = parsed;
  form_.cmd_import_store_enabled = parsed;
  if (!parsed) {
    view_.ImportChanged();
    services_.op.ShowMessage(
        {Icon::kCritical, Buttons::kOk, std::string(kImportErrorTitle), error});
  }
  return parsed;
}

void ImportPresenter::ConfigureImportColumns() {
  const auto column_of = [this](int ingredient) -> ImportGridColumn& {
    return form_.grd_import_columns.at(
        static_cast<std::size_t>(kFirstIngredientWeight - 1 + ingredient - 1));
  };
  for (int ingredient = 1; ingredient <= kIngredientCount; ++ingredient) {
    column_of(ingredient) = {};
  }
  RunReported<DatabaseError>(
      services_.op, {.title = kImportErrorTitle, .text = FailureText::kDatabaseWords}, [&] {
        for (const IngredientRecord& record : view_.GridIngredients()) {
          if (record.id >= 1 && record.id <= kIngredientCount) {
            column_of(record.id).caption = UnicodeUpperCase(record.name);
          }
        }
      });
  for (int ingredient = 1; ingredient <= kIngredientCount; ++ingredient) {
    column_of(ingredient).visible = !column_of(ingredient).caption.empty();
  }
  view_.ImportChanged();
}

void ImportPresenter::EnterImportTab() {
  progress_.SetProgressMessage({});
  for (ImportLabel* label : {&form_.lbl_trans_filename, &form_.lbl_trans_uom, &form_.lbl_records,
                             &form_.lbl_transactions}) {
    label->caption.clear();
  }
  form_.pic_import_progress_visible = services_.settings.ShowImportProgressOn();
  if (form_.pic_import_progress_visible) {
    progress_.SetProgressValue(0);
  }
  ConfigureImportColumns();
}

void ImportPresenter::ShowOrHideProgress() {
  form_.pic_import_progress_visible = services_.settings.ShowImportProgressOn();
  view_.ImportChanged();
}

bool ImportPresenter::MayWrite(const OpenDatabases& databases, const std::string& missing) {
  if (databases.trans_db_path.empty()) {
    Refuse(missing);
    return false;
  }
  if (!databases.trans_db_read_only_note.empty()) {
    Refuse(Tr("The Transaction database is read-only, so that nothing can be stored in it: %1",
              {databases.trans_db_read_only_note}));
    return false;
  }
  return true;
}

StoreOutcome ImportPresenter::ClickImportStore(RepeatedBatches repeated) {
  const OpenDatabases databases = view_.Databases();
  if (!MayWrite(databases,
                "Please open the Transaction database where you want the imported data to be "
                "stored, ...then click 'Store'.")) {
    return {};
  }
  if (databases.recipe_db_path.empty()) {
    Refuse(
        "Please open a Recipe database associated with this imported transaction data so that "
        "proper ingredient, recipe and pen names can be assigned.");
    return {};
  }
  if (!ConfirmUnits(databases)) {
    return {};
  }
  const ImportSource source{
      .file = file_.FileName(), .sha256 = Sha256(file_.Text()), .units = file_.FileUnits()};
  const StoreOutcome outcome =
      store_.StoreImportedTransactions(file_.Imported(), source, databases, stored_, repeated);
  UpdateUndo(databases);
  return outcome;
}

// The rows on the screen may be stored again without the question about duplicates.
bool ImportPresenter::ClickImportUndo() {
  const OpenDatabases databases = view_.Databases();
  if (!MayWrite(databases,
                Tr("Please open the Transaction database whose last store is to be undone.")) ||
      !store_.UndoLastStore(databases)) {
    return false;
  }
  stored_ = false;
  UpdateUndo(databases);
  return true;
}

void ImportPresenter::UpdateUndo(const OpenDatabases& databases) {
  form_.cmd_import_undo_enabled = false;
  RunReported<DatabaseError>(services_.op, kNoReport, [&] {
    form_.cmd_import_undo_enabled =
        databases.trans_db_read_only_note.empty() && TransactionStore::CanUndo(databases);
  });
  view_.ImportChanged();
}

void ImportPresenter::Refuse(std::string text) {
  services_.op.ShowMessage(
      {Icon::kWarning, Buttons::kOk, std::string(kStoreErrorTitle), std::move(text)});
}

bool ImportPresenter::ConfirmUnits(const OpenDatabases& databases) {
  const std::string& units = file_.FileUnits();
  if (units == services_.settings.SystemUnits() && units == databases.trans_db_uom) {
    return true;
  }
  return services_.op.ShowMessage(
             {.icon = Icon::kCritical,
              .buttons = Buttons::kOkCancel,
              .title = "Weight Units Error",
              .text = "The units-of-measure of the imported transaction file is not "
                      "the same as the transaction database.\r\n\r\n"
                      "Storing the current transactions will result in "
                      "incorrect weight totals in the transaction database."
                      "Do you wish to continue?",
              .refuses_by_default = true}) == Answer::kOk;
}

}  // namespace vrx
