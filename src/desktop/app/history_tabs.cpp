#include "desktop/app/history_tabs.h"

#include <QAbstractButton>
#include <utility>

namespace vrx {

HistoryTabs::HistoryTabs(Services& services, DatabaseCommands& databases, MainWindow& window,
                         std::function<void()> configure_import_columns)
    : services_(services),
      databases_(databases),
      window_(window),
      configure_import_columns_(std::move(configure_import_columns)),
      style_sheets_(services.folder.DefaultAppPath(), services.system, services.op),
      history_(new HistoryPage(services, [this] { return ActiveIngredientsOnly(); })),
      export_(new ExportPage(services, style_sheets_, *this)) {
  window_.SetPage(kTabBatchedFed, history_);
  window_.SetPage(kTabExport, export_);
}

OpenDatabases HistoryTabs::ExportDatabases() const {
  const BoundDatabase& recipes = databases_.Bound(DatabaseKind::kRecipe);
  const BoundDatabase& transactions = databases_.Bound(DatabaseKind::kTransaction);
  OpenDatabases open{.lock_wait = services_.identity.Wait()};
  if (!recipes.blank) {
    open.recipe_db_path = recipes.path;
  }
  if (!transactions.blank) {
    open.trans_db_path = transactions.path;
    open.trans_db_uom = transactions.unit;
  }
  return open;
}

// The grid of ingredients, whose names the columns take, lists what its check box says.
bool HistoryTabs::ActiveIngredientsOnly() const {
  const auto* const box =
      window_.findChild<QAbstractButton*>(QStringLiteral("chkShowActiveIngsOnly"));
  return box != nullptr && box->isChecked();
}

}  // namespace vrx
