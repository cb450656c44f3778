#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "history/data_group.h"
#include "history/difference.h"
#include "history/found_rows.h"
#include "history/group_query.h"
#include "history/period.h"

namespace vrx {

// One row of the grouped view, with stored values.
struct HistoryRow {
  HistoryRowKind kind = HistoryRowKind::kRecord;
  int depth = 1;         // level of a group and its total row, from 1; one more for a record
  CellValue group = {};  // value of a group row and its total row
  bool open = false;     // of a group row
  // By column index - 1. All columns of a record; sums of a total row, NULL for columns that are
  // not summed or blank at its depth; empty for a group row. See SumsWanted.
  std::vector<CellValue> cells = {};
  Comparisons comparisons = {};  // of a total row, if the view compares weights
};

// What a row has of the sums of its group, which can take long to read.
enum class SumsWanted {
  kAll,    // reads those of a total row
  kKnown,  // reads none: cells are empty until ReadSums has read them; a closed group has sums too
};

// The result of reading some sums.
struct SumsRead {
  bool any = false;   // sums have become known
  bool more = false;  // some are not known yet
};

// Data source of the history grid: a table of any size in groups that can be opened and closed.
// Keeps the outline of the groups and the records near the last requested row in memory, never the
// whole table. Rows are numbered from 1 and include only visible ones: a closed group is one row. A
// total row follows the last row of its open group.
//
// No statement stays open between calls. Every call throws DatabaseError if the database fails and
// leaves the view unchanged. Rows stored by other connections appear after the next Show.
class GroupedRows {
 public:
  explicit GroupedRows(SQLite::Database& database);
  ~GroupedRows();
  GroupedRows(GroupedRows&&) noexcept;
  GroupedRows& operator=(GroupedRows&&) noexcept;

  // Shows a group with all levels closed, records in stored order. `name` is only used by a group
  // by name. Only rows whose own date is in the period; the first view of a period scans the index
  // of dates, further ones only after a change of the table.
  void Show(const DataGroup& group, std::string_view name, const Period& period = {});

  // Number of rows of the group that are in no period because they have no readable date; 0 if the
  // view shows all days.
  [[nodiscard]] std::int64_t UndatedCount() const;

  [[nodiscard]] std::int64_t RowCount() const;

  // Throw std::out_of_range for a missing row.
  HistoryRow Row(std::int64_t row, SumsWanted wanted = SumsWanted::kAll);
  HistoryRowKind KindOf(std::int64_t row);

  // True if any visible row is a record. The column headers are shown then.
  [[nodiscard]] bool ShowsRecords() const;

  // Open and Close do nothing for a row that is not a group row.
  void Open(std::int64_t row);
  void Close(std::int64_t row);
  void OpenAll();
  void CloseAll();

  // Sorts the records within their groups by a column, equal values in stored order; column 0
  // restores stored order. NULL is first in ascending order. Returns the new row number of the
  // record at `row`; a group row, a total row and 0 keep their number.
  std::int64_t SortBy(int column, bool ascending, std::int64_t row = 0);

  // Opens the groups of the first of the `count` records stored last, as far as the view shows
  // them, and returns its row; 0 if it shows none of them.
  std::int64_t OpenNewest(std::int64_t count);

  // Begins a search of this view, in place of an earlier one; Show and SortBy end it. `columns` are
  // those of records. The test outlives the search; nullptr only ends the earlier one.
  void Find(const CellTest* test, std::vector<int> columns);
  // nullptr if there is no search.
  [[nodiscard]] FoundRows* Found() const;
  // Opens the groups around that row, with `and_itself` also the group of a group row. Returns its
  // number, or 0 if it is not in the view.
  std::int64_t OpenTo(const RowPlace& place, bool and_itself);
  // Throws std::out_of_range for a missing row.
  RowPlace PlaceOf(std::int64_t row);
  // The first group row beside that group row, or itself, whose value fulfills the condition; 0 if
  // there is none. Reads nothing.
  [[nodiscard]] std::int64_t FirstGroupBeside(
      std::int64_t row, const std::function<bool(const CellValue&)>& condition) const;

  // Continues to read the sums of the rows from `first` to `last` that Row gives only when they are
  // known: the next `records` records, or somewhat more. Has the sums of a closed group also where
  // its total row is blank because it has batched and fed weights: all but the target, which would
  // mix them.
  SumsRead ReadSums(std::int64_t first, std::int64_t last, std::int64_t records);

  // Sets the columns whose sums a total row needs, by index, and whether it compares weights.
  // Default: Target, ActualBatch and ActualFeed, not compared.
  void SumColumns(std::vector<int> columns, bool compared = false);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace vrx
