#include "desktop/transfer_tabs.h"

#include <optional>
#include <string>

#include "frame/files.h"
#include "frame/number.h"

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
                                           .printer = printer_})) {
  ports_.window.SetPage(kTabDataTransfer, data_transfer_);
}

// By what the views stand on: the path of a side may name a file that was not opened.
CurrentDatabase TransferTabs::OpenRecipes() const {
  const BoundDatabase& bound = ports_.databases.Bound(DatabaseKind::kRecipe);
  if (bound.blank) {
    return {};
  }
  return {.path = bound.path, .name = FileTitle(bound.path), .unit = bound.unit};
}

void TransferTabs::RecipesStored(int /*highest_in_use*/) {
  const BoundDatabase& bound = ports_.databases.Bound(DatabaseKind::kRecipe);
  ports_.window.Rebind(DatabaseKind::kRecipe, bound);
  const std::optional<Date> modified =
      ports_.identity.GetDatabaseDate(bound.path, DateSelector::kModified);
  ports_.window.SetStatusPanel(DatabaseKind::kRecipe, kPanelModified,
                               modified ? DefaultText(*modified) : std::string());
}

}  // namespace vrx
