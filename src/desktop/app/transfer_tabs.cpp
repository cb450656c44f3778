#include "desktop/app/transfer_tabs.h"

#include <QCheckBox>
#include <optional>
#include <string>

#include "base/files.h"
#include "base/number.h"
#include "database/connection.h"
#include "database/identity.h"
#include "desktop/records/record_page.h"

namespace vrx {

TransferTabs::TransferTabs(const Ports& ports)
    : ports_(ports),
      krm_(ports.serial, ports.pump, ports.op, ports.settings),
      data_transfer_(new DataTransferPage({.op = ports.op,
                                           .files = ports.files,
                                           .calendar = ports.calendar,
                                           .pump = ports.pump,
                                           .settings = ports.settings,
                                           .identity = ports.identity,
                                           .krm = krm_,
                                           .databases = *this,
                                           .status = ports.window.Panels().PicTransferStatus(),
                                           .printer = printer_,
                                           .data_folder = [this]() -> std::filesystem::path {
                                             return ports_.app_folder.DefaultAppPath();
                                           }})),
      import_(new ImportPage({.op = ports.op,
                              .files = ports.files,
                              .system = ports.system,
                              .settings = ports.settings,
                              .calendar = ports.calendar,
                              .identity = ports.identity,
                              .window = *this,
                              .pic_import = ports.window.Panels().PicImport()})) {
  ports_.window.SetPage(kTabDataTransfer, data_transfer_);
  ports_.window.SetPage(kTabImport, import_);
  import_->SetTabOrder();
  ports_.window.SetHandler(MainCommand::kImportTransactionFile, [this] { import_->ImportXFile(); });
  ports_.window.SetHandler(MainCommand::kSetup, [this] { Setup(); });
  line_watch_ = krm_.Guard().OnChange([this] { ShowLine(); });
}

// The form `SETUP` would close the port under what is sent or received.
void TransferTabs::ShowLine() {
  const bool at_work = krm_.Guard().AtWork();
  const bool command_runs = at_work && !krm_.Guard().Direct();
  ports_.window.Turn(MainCommand::kSetup, !at_work);
  ports_.window.Turn(MainCommand::kTransferUpload, !command_runs);
  ports_.window.Turn(MainCommand::kTransferDownload, !command_runs);
}

// By what the views stand on: the path of a side may name a file that was not opened.
CurrentDatabase TransferTabs::OpenRecipes() const {
  const BoundDatabase& bound = ports_.databases.Bound(DatabaseKind::kRecipe);
  if (bound.blank) {
    return {};
  }
  return {.path = bound.path,
          .name = FileTitle(bound.path),
          .unit = bound.unit,
          .read_only_note = bound.read_only_note};
}

OpenDatabases TransferTabs::ImportDatabases() const {
  const BoundDatabase& recipes = ports_.databases.Bound(DatabaseKind::kRecipe);
  const BoundDatabase& transactions = ports_.databases.Bound(DatabaseKind::kTransaction);
  OpenDatabases open{.lock_wait = ports_.identity.Wait()};
  if (!recipes.blank) {
    open.recipe_db_path = recipes.path;
  }
  if (!transactions.blank) {
    open.trans_db_path = transactions.path;
    open.trans_db_uom = transactions.unit;
    open.trans_db_read_only_note = transactions.read_only_note;
  }
  return open;
}

std::vector<IngredientRecord> TransferTabs::GridIngredients() {
  const BoundDatabase& bound = ports_.databases.Bound(DatabaseKind::kRecipe);
  if (bound.blank) {
    return {};
  }
  std::vector<IngredientRecord> records =
      WithDatabaseErrors(*bound.connection, [&] { return ReadIngredients(*bound.connection); });
  const auto* const active_only =
      ports_.window.findChild<QCheckBox*>(QStringLiteral("chkShowActiveIngsOnly"));
  if (active_only == nullptr || active_only->isChecked()) {
    std::erase_if(records,
                  [](const IngredientRecord& record) { return record.description.empty(); });
  }
  return records;
}

void TransferTabs::RecipesStored(int highest_in_use) {
  const BoundDatabase& bound = ports_.databases.Bound(DatabaseKind::kRecipe);
  ports_.window.Rebind(DatabaseKind::kRecipe, bound);
  auto* const recipes = ports_.window.findChild<RecordPage*>(QStringLiteral("pageRecipes"));
  if (recipes != nullptr && highest_in_use > 0) {
    recipes->GoTo(highest_in_use);
  }
  const std::optional<Date> modified =
      ports_.identity.GetDatabaseDate(bound.path, DateSelector::kModified);
  ports_.window.SetStatusPanel(DatabaseKind::kRecipe, kPanelModified,
                               modified ? DefaultText(*modified) : std::string());
}

// The form closes the port; a direct connection goes on behind it.
void TransferTabs::Setup() {
  if (setup_ != nullptr) {
    return;
  }
  SetupForm form({.op = ports_.op,
                  .system = ports_.system,
                  .settings = ports_.settings,
                  .krm = krm_,
                  .data_folder = ports_.app_folder.DefaultAppPath(),
                  .ini_file = ports_.app_folder.IniFilePath()},
                 Facts(), &ports_.window);
  setup_ = &form;
  form.exec();
  setup_ = nullptr;
  if (!ports_.pump.Closing()) {
    data_transfer_->ResumeDirectConnection();
  }
}

SetupFacts TransferTabs::Facts() const {
  const DatabaseCommands& databases = ports_.databases;
  const CurrentDatabase& recipe = databases.Recipe();
  const CurrentDatabase& transaction = databases.Transaction();
  const TransFile& file = import_->Session().File();
  return {.recipe_path = recipe.path.string(),
          .recipe_unit = recipe.unit,
          .transaction_path = transaction.path.string(),
          .transaction_unit = transaction.unit,
          .qxt_path = file.FilePath(),
          .qxt_text = file.Text(),
          .connections = BuildConnectionTexts(
              ConnectionString(databases.Bound(DatabaseKind::kRecipe).path.string()),
              ConnectionString(databases.Bound(DatabaseKind::kTransaction).path.string()))};
}

void TransferTabs::UnloadSetup() {
  if (setup_ != nullptr) {
    setup_->close();
  }
}

}  // namespace vrx
