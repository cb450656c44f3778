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

TransferTabs::TransferTabs(Services& services, SerialControl& serial, DatabaseCommands& databases,
                           MainWindow& window)
    : services_(services),
      databases_(databases),
      window_(window),
      krm_(serial, services.pump, services.op, services.settings),
      data_transfer_(new DataTransferPage(services, krm_, *this,
                                          window.Panels().PicTransferStatus(), printer_)),
      import_(new ImportPage(services, *this, window.Panels().PicImport())) {
  window_.SetPage(kTabDataTransfer, data_transfer_);
  window_.SetPage(kTabImport, import_);
  import_->SetTabOrder();
  window_.SetHandler(MainCommand::kImportTransactionFile, [this] { import_->ImportXFile(); });
  window_.SetHandler(MainCommand::kSetup, [this] { Setup(); });
  line_watch_ = krm_.Guard().OnChange([this] { ShowLine(); });
}

// The form `SETUP` would close the port under what is sent or received.
void TransferTabs::ShowLine() {
  const bool at_work = krm_.Guard().AtWork();
  const bool command_runs = at_work && !krm_.Guard().Direct();
  window_.Turn(MainCommand::kSetup, !at_work);
  window_.Turn(MainCommand::kTransferUpload, !command_runs);
  window_.Turn(MainCommand::kTransferDownload, !command_runs);
}

// By what the views stand on: the path of a side may name a file that was not opened.
CurrentDatabase TransferTabs::OpenRecipes() const {
  const BoundDatabase& bound = databases_.Bound(DatabaseKind::kRecipe);
  if (bound.blank) {
    return {};
  }
  return {.path = bound.path,
          .name = FileTitle(bound.path),
          .unit = bound.unit,
          .read_only_note = bound.read_only_note};
}

OpenDatabases TransferTabs::ImportDatabases() const {
  const BoundDatabase& recipes = databases_.Bound(DatabaseKind::kRecipe);
  const BoundDatabase& transactions = databases_.Bound(DatabaseKind::kTransaction);
  OpenDatabases open{.lock_wait = services_.identity.Wait()};
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
  const BoundDatabase& bound = databases_.Bound(DatabaseKind::kRecipe);
  if (bound.blank) {
    return {};
  }
  std::vector<IngredientRecord> records =
      WithDatabaseErrors(*bound.connection, [&] { return ReadIngredients(*bound.connection); });
  const auto* const active_only =
      window_.findChild<QCheckBox*>(QStringLiteral("chkShowActiveIngsOnly"));
  if (active_only == nullptr || active_only->isChecked()) {
    std::erase_if(records,
                  [](const IngredientRecord& record) { return record.description.empty(); });
  }
  return records;
}

void TransferTabs::RecipesStored(int highest_in_use) {
  const BoundDatabase& bound = databases_.Bound(DatabaseKind::kRecipe);
  window_.Rebind(DatabaseKind::kRecipe, bound);
  auto* const recipes = window_.findChild<RecordPage*>(QStringLiteral("pageRecipes"));
  if (recipes != nullptr && highest_in_use > 0) {
    recipes->GoTo(highest_in_use);
  }
  const std::optional<Date> modified =
      services_.identity.GetDatabaseDate(bound.path, DateSelector::kModified);
  window_.SetStatusPanel(DatabaseKind::kRecipe, kPanelModified,
                         modified ? DefaultText(*modified) : std::string());
}

// The form closes the port; a direct connection goes on behind it.
void TransferTabs::Setup() {
  if (setup_ != nullptr) {
    return;
  }
  SetupForm form(services_, krm_, Facts(), &window_);
  setup_ = &form;
  form.exec();
  setup_ = nullptr;
  if (!services_.pump.Closing()) {
    data_transfer_->ResumeDirectConnection();
  }
}

SetupFacts TransferTabs::Facts() const {
  const CurrentDatabase& recipe = databases_.Recipe();
  const CurrentDatabase& transaction = databases_.Transaction();
  const TransFile& file = import_->Session().File();
  return {.recipe_path = recipe.path.string(),
          .recipe_unit = recipe.unit,
          .transaction_path = transaction.path.string(),
          .transaction_unit = transaction.unit,
          .qxt_path = file.FilePath(),
          .qxt_text = file.Text(),
          .connections = BuildConnectionTexts(
              ConnectionString(databases_.Bound(DatabaseKind::kRecipe).path.string()),
              ConnectionString(databases_.Bound(DatabaseKind::kTransaction).path.string()))};
}

void TransferTabs::UnloadSetup() {
  if (setup_ != nullptr) {
    setup_->close();
  }
}

}  // namespace vrx
