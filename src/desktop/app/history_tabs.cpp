#include "desktop/app/history_tabs.h"

#include <QAbstractButton>
#include <utility>

namespace vrx {

HistoryTabs::HistoryTabs(Ports ports)
    : ports_(std::move(ports)),
      style_sheets_(ports_.app_folder.DefaultAppPath(), ports_.system, ports_.op),
      history_(
          new HistoryPage({.op = ports_.op,
                           .pump = ports_.pump,
                           .identity = ports_.identity,
                           .active_ingredients_only = [this] { return ActiveIngredientsOnly(); }})),
      export_(new ExportPage({.op = ports_.op,
                              .files = ports_.files,
                              .pump = ports_.pump,
                              .settings = ports_.settings,
                              .style_sheets = style_sheets_,
                              .window = *this})) {
  ports_.window.SetPage(kTabBatchedFed, history_);
  ports_.window.SetPage(kTabExport, export_);
}

OpenDatabases HistoryTabs::ExportDatabases() const {
  const BoundDatabase& recipes = ports_.databases.Bound(DatabaseKind::kRecipe);
  const BoundDatabase& transactions = ports_.databases.Bound(DatabaseKind::kTransaction);
  OpenDatabases open{.lock_wait = ports_.identity.Wait()};
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
      ports_.window.findChild<QAbstractButton*>(QStringLiteral("chkShowActiveIngsOnly"));
  return box != nullptr && box->isChecked();
}

}  // namespace vrx
