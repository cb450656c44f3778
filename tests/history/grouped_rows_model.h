#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "history/data_group.h"
#include "history/grouped_rows.h"
#include "history/history_table.h"
#include "history/period.h"

namespace vrx::testing {

// Simplest implementation of GroupedRows: every row in memory, and the list of visible rows rebuilt
// after every change.
class GroupedRowsModel {
 public:
  // The records of the table in stored order.
  explicit GroupedRowsModel(std::vector<std::vector<CellValue>> table) : table_(std::move(table)) {}

  void Show(const DataGroup& group, const std::string& name, const Period& period = {});
  void SetOpen(std::int64_t row, bool open);
  void SetAllOpen(bool open);
  void SortBy(int column, bool ascending);
  void SumColumns(std::vector<int> columns, bool compared);

  const std::vector<HistoryRow>& Rows() const { return rows_; }
  // The row for the screen when all sums are known.
  HistoryRow OnScreen(std::size_t index) const;
  std::int64_t UndatedCount() const { return undated_; }
  bool ShowsRecords() const;

 private:
  using Record = std::vector<CellValue>;
  using Values = std::vector<CellValue>;

  void Refresh();
  void AddGroups(const Values& path, const std::vector<const Record*>& records);
  void AddRecords(std::vector<const Record*> records);
  void AddRow(HistoryRow row, Values path, std::vector<const Record*> records = {});
  bool IsBlanked(int column, int depth) const;
  HistoryRow TotalRow(const std::vector<const Record*>& records, int depth) const;
  CellValue Sum(const std::vector<const Record*>& records, int column) const;
  static Comparisons Compared(const std::vector<const Record*>& records);

  std::vector<Record> table_;
  const DataGroup* group_ = nullptr;
  std::vector<int> levels_;
  std::vector<const Record*> shown_;
  std::int64_t undated_ = 0;
  std::set<Values> open_;
  bool opens_all_ = false;
  int sort_column_ = 0;
  bool ascending_ = true;
  std::vector<int> sums_{7, 8, 11};
  std::vector<HistoryRow> rows_;
  bool compared_ = false;
  std::vector<Values> paths_;                        // of each row
  std::vector<std::vector<const Record*>> members_;  // of each group row
};

}  // namespace vrx::testing
