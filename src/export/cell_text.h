#pragma once

#include <string>

#include "export/level_walk.h"
#include "history/history_column.h"

namespace vrx {

// Appends the default text form of a stored value, UTF-8: 500.5, 3/14/2011, 6:10:00 AM. NULL
// appends nothing; a date or time that is not in its stored form is appended as it stands. Throws
// ConversionError for an infinite number.
void AppendCellText(const CellView& value, ColumnContent content, std::string& text);

}  // namespace vrx
