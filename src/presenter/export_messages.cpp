#include "presenter/export_messages.h"

#include <exception>

#include "base/text.h"
#include "settings/settings.h"

namespace vrx {

void ShowExportMessage(Operator& op, Icon icon, std::string_view text) {
  op.ShowMessage({.icon = icon, .title = "Export", .text = std::string(text)});
}

bool HasDataToExport(Operator& op, const HistoryGrid& grid) {
  if (grid.RowCount() >= 1) {
    return true;
  }
  ShowExportMessage(op, Icon::kInformation, "No data to export.");
  return false;
}

void TellExportOutcome(Operator& op, const ExportOutcome& outcome) {
  if (outcome.done) {
    ShowExportMessage(op, Icon::kInformation, "Data exported successfully.");
  } else if (!TrimBlanks(outcome.error_text).empty()) {
    ShowExportMessage(op, Icon::kInformation, outcome.error_text);
  } else {
    ShowExportMessage(op, Icon::kInformation, "Data exporting failed.");
  }
}

bool TrapExportError(Operator& op, const PrivateINI& settings,
                     const std::function<bool()>& action) {
  try {
    return action();
  } catch (const std::exception& failure) {
    BeepIfEnabled(op, settings);
    ShowExportMessage(op, Icon::kCritical, failure.what());
    return false;
  }
}

}  // namespace vrx
