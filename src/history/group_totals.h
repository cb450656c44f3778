#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "database/exact_sum.h"
#include "history/data_group.h"
#include "history/difference.h"
#include "history/group_query.h"
#include "history/outline.h"

namespace vrx {

// Sums of a group: of columns, by index - 1, and of both kinds of records.
struct GroupSums {
  std::vector<CellValue> cells = {};  // 0 without values, NULL for columns that are not summed
  Comparisons comparisons = {};
  std::int64_t records = 0;
};

// Cache of the sums of total rows, computed on demand. Keeps the sums of large groups and the
// recently used ones of small groups.
class GroupTotals {
 public:
  // Statements and query must outlive it. Throws std::out_of_range for an invalid column.
  GroupTotals(Statements& statements, const GroupQuery& query, DataGroup group,
              const std::vector<int>& columns);

  // Columns that are not summed, or blank on a level, get no sum there. This saves most sums of the
  // outer levels, which take longest. Throws std::out_of_range for an invalid column.
  void SetColumns(const std::vector<int>& columns);
  // To be called when the outline is reloaded.
  void Forget() { totals_.clear(); }

  // Whether Find returns them. True if the level has no sums.
  [[nodiscard]] bool Knows(const GroupPath& path) const;
  // GroupSums::cells. Nothing if the sums are not in the cache.
  [[nodiscard]] std::optional<std::vector<CellValue>> Find(const GroupPath& path) const;
  // The same of sums that have at least these columns.
  [[nodiscard]] std::vector<CellValue> Of(const GroupPath& path, const GroupSums& sums) const;
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

// Cache of all sums of groups, also of those that a total row does not need: both actual weights on
// a level that has batched and fed weights but no target for them, and the compared weights. A
// group can have most of the table, so its records can be read in slices.
class SlicedTotals {
 public:
  // Statements and query must outlive it.
  SlicedTotals(Statements& statements, const GroupQuery& query, DataGroup group);

  // As GroupTotals::SetColumns; `compared` for the compared weights.
  void SetColumns(const std::vector<int>& columns, bool compared);
  void Forget();

  // nullptr if they are not known yet. Valid until the next call of Load or Read.
  [[nodiscard]] const GroupSums* Find(const GroupPath& path) const;
  // Reads all records. Throws SQLite::Exception.
  const GroupSums& Load(const Outline& outline, const GroupPath& path);
  // Continues with the next records of this group, and returns how many it read, searches included:
  // at most `records` and kSearchCost for the last one. A record with many columns counts more than
  // once. The sums are known when all are read. Several groups can be read by turns. Throws
  // SQLite::Exception and then keeps what was read before.
  std::int64_t Read(const Outline& outline, const GroupPath& path, std::int64_t records);

  // What a search of an index costs, in records read.
  static constexpr std::int64_t kSearchCost = 16;

 private:
  // How far the records of a group are read, in the order of an index: those of a ranged query
  // range by range, within it by the next column of the index, without a value first, and by their
  // rowids.
  struct Progress {
    std::vector<CellValue> values;
    std::string key;  // the next column; empty if the index has the rowids next
    std::vector<std::string> terms;
    std::vector<std::optional<ExactSum>> sums;
    std::int64_t records = 0;
    std::size_t range = 0;
    bool keyed = false;  // past the records without a key
    // Of the last record in this range.
    CellValue last_key = {};
    std::int64_t last_rowid = 0;
  };

  [[nodiscard]] std::vector<std::string> TermsOf(const GroupPath& path) const;
  [[nodiscard]] bool CanSlice() const;
  [[nodiscard]] Progress Start(const Outline& outline, const GroupPath& path) const;
  void StartPart(Progress& progress) const;
  [[nodiscard]] bool StartNextPart(Progress& progress) const;
  std::int64_t ReadPart(Progress& progress, std::int64_t records);
  std::int64_t ReadRows(Progress& progress, const std::string& rows, std::int64_t records);
  const GroupSums& Keep(const GroupPath& path, std::int64_t records,
                        const std::vector<std::optional<double>>& sums);

  Statements& statements_;
  const GroupQuery& query_;
  DataGroup group_;
  std::vector<std::vector<int>> columns_;  // by level
  bool compared_ = false;
  // By level and place.
  std::unordered_map<std::uint64_t, GroupSums> known_;
  std::unordered_map<std::uint64_t, Progress> reading_;
};

}  // namespace vrx
