#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "history/cell_value.h"
#include "history/data_group.h"
#include "history/group_query.h"
#include "history/outline.h"
#include "history/statements.h"

namespace vrx {

// The sums of groups, computed when asked for the first time. Those of large groups are kept; of
// the others, which are quick to come by, the ones asked for lately.
class GroupTotals {
 public:
  // Statements and query outlive it. Throws std::out_of_range for a column that is none.
  GroupTotals(Statements& statements, const GroupQuery& query, DataGroup group,
              const std::vector<int>& columns);

  // One that is not summed, or blanked on a level, gets no sum there: sums over the outer levels,
  // which take longest, are mostly blanked. Throws std::out_of_range for one that is none.
  void SetColumns(const std::vector<int>& columns);
  // For an outline read anew.
  void Forget() { totals_.clear(); }

  // By column index less 1: the sums, 0 over no value, and NULL for every other column. Nothing
  // where they have to be computed.
  std::optional<std::vector<CellValue>> Find(const GroupPath& path) const;
  // Throws SQLite::Exception.
  std::vector<CellValue> Load(const Outline& outline, const GroupPath& path);

 private:
  struct Total {
    std::int64_t records;
    std::vector<double> sums;  // of the level's columns
  };

  const std::vector<int>& ColumnsOf(const GroupPath& path) const {
    return columns_[path.size() - 1];
  }
  std::vector<CellValue> CellsOf(const GroupPath& path, const Total& total) const;

  Statements& statements_;
  const GroupQuery& query_;
  DataGroup group_;
  std::vector<std::vector<int>> columns_;            // by level
  std::unordered_map<std::uint64_t, Total> totals_;  // by level and place
};

}  // namespace vrx
