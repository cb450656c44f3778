#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "export/export_driver.h"
#include "platform/operator.h"

namespace vrx {

class PrivateINI;

// What the operator is told of an export, in a window and on the command line.

void ShowExportMessage(Operator& op, Icon icon, std::string_view text);

// True if the grid has a row; else the operator was told that there is nothing to export.
bool HasDataToExport(Operator& op, const HistoryGrid& grid);

void TellExportOutcome(Operator& op, const ExportOutcome& outcome);

// The error trap of an export: passes the result of `action` on, or tells what it throws, with a
// beep, and returns false.
bool TrapExportError(Operator& op, const PrivateINI& settings, const std::function<bool()>& action);

}  // namespace vrx
