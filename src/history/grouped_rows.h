#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "history/data_group.h"
#include "history/group_query.h"

namespace vrx {

// One row of the grouped view, its values as stored, by column index less 1.
struct HistoryRow {
  HistoryRowKind kind = HistoryRowKind::kRecord;
  int depth = 1;         // a group's and its total row's level, from 1; of a record one more
  CellValue group = {};  // the value of a group row's level, and of its total row's
  bool open = false;     // of a group row
  // Of a record all columns; of a total row the sums of the columns that are summed and not blanked
  // at its depth, else NULL; of a group row none.
  std::vector<CellValue> cells = {};
};

// The source of rows of the history grid: a table of any size, shown in groups that open and close.
// It holds the outline of the groups and the records near the row asked for last, never the table.
// Rows count from 1, and only those that can be seen: a closed group is one row. A total row
// follows the last row of its open group.
//
// No statement stays open between calls. Every call throws DatabaseError where the storage fails,
// and the view is then as it was. What another connection stores shows after the next Show.
class GroupedRows {
 public:
  explicit GroupedRows(SQLite::Database& database);
  ~GroupedRows();
  GroupedRows(GroupedRows&&) noexcept;
  GroupedRows& operator=(GroupedRows&&) noexcept;

  // The rows of a group, all its levels closed and in the order they were stored. `name` counts in
  // a group by name only.
  void Show(const DataGroup& group, std::string_view name);

  std::int64_t RowCount() const;

  // Throw std::out_of_range for a row that is not there.
  HistoryRow Row(std::int64_t row);
  HistoryRowKind KindOf(std::int64_t row);

  // Whether any row that can be seen is a record: the strip of column headers then shows.
  bool ShowsRecords() const;

  // Nothing for a row that is no group row.
  void Open(std::int64_t row);
  void Close(std::int64_t row);
  void OpenAll();
  void CloseAll();

  // Sorts the records within their groups by a column, those with equal values in the order they
  // were stored; column 0 takes that order for all. NULL comes first in ascending order. Returns
  // the row that the record of `row` has then; a group, a total or no row (0) keeps its number.
  std::int64_t SortBy(int column, bool ascending, std::int64_t row = 0);

  // The columns whose sums a total row needs, by index; those of Target, ActualBatch and ActualFeed
  // until it is called.
  void SumColumns(std::vector<int> columns);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace vrx
