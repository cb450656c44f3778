#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/records.h"
#include "history/columns.h"
#include "history/data_group.h"
#include "history/difference.h"
#include "history/find_text.h"
#include "history/found_rows.h"
#include "history/grouped_rows.h"
#include "history/row_format.h"

namespace vrx {

// A row that a search has reached, and its first column that has what is sought; 0 for a group row.
struct FoundCell {
  std::int64_t row;
  int column;
};

// `grdTRANS` without a window: the formatted rows of a data group and their columns. Used by the
// screen, the printed page and the command line.
//
// Rows are numbered from 1 and include only visible ones. The constructor and every call that reads
// or changes rows throws DatabaseError if the database fails, and leaves the grid unchanged.
class HistoryGrid {
 public:
  // Has no rows before the first SetUp. The database must outlive the grid or remain until the next
  // Bind.
  explicit HistoryGrid(SQLite::Database& transactions);

  // Shows the same group and name of another database, with all groups closed.
  void Bind(SQLite::Database& transactions);

  // The set-up routine of a group; all groups are closed. A group by name shows the rows whose
  // field equals `name`.
  void SetUp(const DataGroup& group, std::string_view name);

  // Shows another name of the current group and keeps the sort order.
  void ShowName(std::string_view name);

  // Shows only the rows of a period, in every group from now on; all groups are closed. Keeps the
  // sort order.
  void ShowPeriod(const Period& period);
  [[nodiscard]] const Period& ShownPeriod() const { return period_; }
  [[nodiscard]] std::int64_t UndatedCount() const { return rows_.UndatedCount(); }

  // Shows the differences of actual weights and targets, or hides them; off at first. Hiding
  // restores stored order if a difference was the sort column.
  void ShowDifferences(bool on);
  // Beyond how many percent of the target a difference is marked.
  void SetTolerance(double percent) { tolerance_ = percent; }
  [[nodiscard]] double Tolerance() const { return tolerance_; }

  // `ingredients` are the rows of `grdING`; none if no recipe database is open.
  void RefreshIngredientColumns(std::span<const IngredientRecord> ingredients);
  // Updates the columns when the tab is entered.
  void EnterTab();

  [[nodiscard]] const DataGroup& Group() const { return *group_; }
  [[nodiscard]] const HistoryColumns& Columns() const { return columns_; }
  void MoveColumn(int column, int position) { columns_.Move(column, position); }

  // Field and current caption of every stored column by index, for the headings of an export.
  [[nodiscard]] std::vector<std::pair<std::string, std::string>> FieldCaptions() const;

  [[nodiscard]] std::int64_t RowCount() const { return rows_.RowCount(); }
  // Throw std::out_of_range for a missing row.
  ShownRow Row(std::int64_t row);
  // The same without waiting for sums that can take long: those that are not known yet are empty,
  // and a closed group has its sums. ReadSums as that of GroupedRows.
  ShownRow RowOnScreen(std::int64_t row);
  SumsRead ReadSums(std::int64_t first, std::int64_t last, std::int64_t records) {
    return rows_.ReadSums(first, last, records);
  }
  HistoryRowKind KindOf(std::int64_t row) { return rows_.KindOf(row); }

  // These update the column headers.
  void OpenGroup(std::int64_t row);
  void CloseGroup(std::int64_t row);
  void ApplyExpandState(bool expand_all);

  // These do not.
  void ExpandAll() { rows_.OpenAll(); }
  void CollapseAll() { rows_.CloseAll(); }

  // Called for a click on a column header: sorts the records by the column, or reverses the order
  // if it is the sort column. SetUp restores stored order. The column of a group level changes
  // nothing, because it has one value in each group. Returns the new row number as
  // GroupedRows::SortBy.
  std::int64_t SortByColumn(int column, std::int64_t row = 0);
  // As GroupedRows::OpenNewest; updates the column headers.
  std::int64_t OpenNewest(std::int64_t count);
  [[nodiscard]] int SortColumn() const { return sort_column_; }  // 0: none
  [[nodiscard]] bool SortAscending() const { return sort_ascending_; }

  // Begins a search for a text in the values of the groups and in the visible columns of their
  // records. An empty text only ends an earlier search.
  void Find(std::string_view typed);
  // The search; nullptr after EndFind and after a change of what it searches or in which order.
  [[nodiscard]] const FoundRows* Found() const;
  // FoundRows::Scan.
  void FindMore() { rows_.Found()->Scan(); }
  // Opens the groups around a found row, by its index; updates the column headers. Nothing if the
  // row was deleted.
  std::optional<FoundCell> OpenFound(std::int64_t index);
  // Opens the group of the day that is sought, at once. Nothing without a day, without groups by
  // day on the outermost level, or without a group of that day.
  std::optional<FoundCell> OpenFoundDay();
  [[nodiscard]] RowPlace PlaceOf(std::int64_t row) { return rows_.PlaceOf(row); }

  // The first group row beside that group row, or itself, whose value as it is shown begins with
  // what was typed, ignoring case; 0 if there is none.
  [[nodiscard]] std::int64_t FirstGroupBeginning(std::int64_t row, std::string_view typed);

  // The row of the outermost group with that value as it is shown; 0 if there is none.
  [[nodiscard]] std::int64_t OutermostGroup(std::string_view value);

  // True if the column headers are shown: while any visible row is a record. Unchanged while there
  // is no row.
  [[nodiscard]] bool ColumnHeaders() const { return column_headers_; }
  void SetColumnHeaders(bool on) { column_headers_ = on; }

 private:
  void UpdateColumnHeaderStrip();
  void Settle(HistoryColumns columns);
  void SumVisible(const HistoryColumns& columns);
  void ShowRows(std::string_view name, const Period& period);
  [[nodiscard]] std::vector<int> SearchedColumns() const;

  std::unique_ptr<FindText> sought_;  // outlives the rows, which search for it
  std::vector<int> searched_;
  GroupedRows rows_;
  HistoryColumns columns_;
  const DataGroup* group_;
  std::string name_;
  Period period_;
  std::vector<int> sums_;
  double tolerance_ = kUsualTolerance;
  int sort_column_ = 0;
  bool sort_ascending_ = true;
  bool column_headers_ = false;
};

}  // namespace vrx
