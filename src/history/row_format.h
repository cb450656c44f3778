#pragma once

#include <string>
#include <vector>

#include "history/cell_value.h"
#include "history/columns.h"
#include "history/data_group.h"
#include "history/grouped_rows.h"
#include "history/history_column.h"

namespace vrx {

// A row as the grid shows it; the record behind it is another matter.
struct ShownRow {
  HistoryRowKind kind = HistoryRowKind::kRecord;
  int depth = 1;
  bool open = false;         // of a group row
  std::string caption = {};  // of a group row
  // By column index less 1: the texts of the visible columns, "" for the others. Of a group row
  // none.
  std::vector<std::string> cells = {};
};

// A stored value as its column shows it: numbers in their default text form, "14-Mar-11",
// "02:05 PM". NULL is empty, and a value that is not of the column's kind is shown as it stands.
std::string ShownValue(const HistoryColumn& column, const CellValue& value);

// The group prefix of the level's column, directly followed by the value.
std::string GroupCaption(const DataGroup& group, int depth, const CellValue& value);

// Whether a column means nothing on the rows of that depth.
bool IsBlanked(const DataGroup& group, int depth, int column);

// A cell of a record or total row, whether its column is visible or not. A total row shows its
// sums, a sum over nothing as 0, and "Total:"; where the depth says so, and for a batch or feed
// weight of 0, nothing.
std::string ShownCell(const HistoryRow& row, const DataGroup& group, const HistoryColumns& columns,
                      int column);

ShownRow FormatRow(const HistoryRow& row, const DataGroup& group, const HistoryColumns& columns);

}  // namespace vrx
