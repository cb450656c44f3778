#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/records.h"
#include "history/columns.h"
#include "history/data_group.h"
#include "history/grouped_rows.h"
#include "history/row_format.h"

namespace vrx {

// `grdTRANS` without a window: the rows of a data group under their columns, as they are shown. The
// screen, the printed page and the command line all read it.
//
// The columns are always those that a drawn row settles, also while there is no row. Rows count
// from 1, and only those that can be seen. Every call that changes or reads rows, and the
// constructor, throws DatabaseError where the storage fails, and leaves the grid as it was.
class HistoryGrid {
 public:
  // Shows nothing before the first SetUp. The database outlives the grid, or the next Bind.
  explicit HistoryGrid(SQLite::Database& transactions);

  // Shows the same group, and name, of another database; its groups are closed.
  void Bind(SQLite::Database& transactions);

  // The set-up routine of a group, all groups closed. A group by name shows the rows of `name`,
  // whole field against whole field.
  void SetUp(const DataGroup& group, std::string_view name);

  // Shows another name of the present group; the order of its records stays the chosen one.
  void ShowName(std::string_view name);

  // The rows of `grdING`, none where no recipe database is open.
  void RefreshIngredientColumns(std::span<const IngredientRecord> ingredients);
  // What entering the tab does to the columns.
  void EnterTab();

  const DataGroup& Group() const { return *group_; }
  const HistoryColumns& Columns() const { return columns_; }
  void MoveColumn(int column, int position) { columns_.Move(column, position); }

  // Every column's field with its present caption, by index: what an export heads its columns with.
  std::vector<std::pair<std::string, std::string>> FieldCaptions() const;

  std::int64_t RowCount() const { return rows_.RowCount(); }
  // Throws std::out_of_range for a row that is not there.
  ShownRow Row(std::int64_t row);
  HistoryRowKind KindOf(std::int64_t row) { return rows_.KindOf(row); }

  // Both bring the strip of column headers up to date.
  void OpenGroup(std::int64_t row);
  void CloseGroup(std::int64_t row);

  // Opens or closes every group and brings the strip up to date.
  void ApplyExpandState(bool expand_all);
  void ExpandAll() { rows_.OpenAll(); }
  void CollapseAll() { rows_.CloseAll(); }

  // A click on a column's header: sorts the records by it, by the same column again the other way
  // round. A set-up goes back to the order in which they were stored. The column of a group level
  // has one value in each group, so a click there changes nothing. Returns the row that the record
  // of `row` has then, as GroupedRows::SortBy.
  std::int64_t SortByColumn(int column, std::int64_t row = 0);
  int SortColumn() const { return sort_column_; }         // 0: none
  bool SortAscending() const { return sort_ascending_; }  // of SortColumn()

  // Whether the strip of column headers shows: while a record is in view. With no row at all it
  // stays as it was.
  bool ColumnHeaders() const { return column_headers_; }
  void SetColumnHeaders(bool on) { column_headers_ = on; }

 private:
  void UpdateColumnHeaderStrip();
  void Settle(HistoryColumns columns);
  void SumVisible(const HistoryColumns& columns);

  GroupedRows rows_;
  HistoryColumns columns_;
  const DataGroup* group_;
  std::string name_;
  std::vector<int> sums_;
  int sort_column_ = 0;
  bool sort_ascending_ = true;
  bool column_headers_ = false;
};

}  // namespace vrx
