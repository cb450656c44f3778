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

  // GroupSums::cells. Nothing if the sums are not in the cache.
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

// Cache of the sums that a total row does not need: those of a closed group, also on a level that
// has both batched and fed weights but no target for them, and the compared weights of any group. A
// group of an outer level can have most of the table, so its records can be read in slices.
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
  // Continues with the next records, about `records` of them, and returns how many it read. The
  // sums are known when all are read. Another group begins anew. Throws SQLite::Exception.
  std::int64_t Read(const Outline& outline, const GroupPath& path, std::int64_t records);

 private:
  // How far the records of a group are read.
  struct Progress {
    GroupPath path = {};
    std::vector<CellValue> values = {};
    std::vector<std::optional<ExactSum>> sums = {};
    std::size_t next_range = 0;
    CellValue key = {};  // of the last record, with its rowid
    std::int64_t rowid = 0;
    bool keyed = false;  // past the records without a key
  };

  [[nodiscard]] std::vector<std::string> TermsOf(const GroupPath& path) const;
  [[nodiscard]] bool CanSlice() const;
  std::int64_t ReadRange(Progress& progress);
  std::int64_t ReadSlice(Progress& progress, std::int64_t records);
  std::int64_t ReadRows(Progress& progress, const std::string& key, const std::string& rows,
                        std::int64_t records);
  std::int64_t Add(SQLite::Statement& statement, Progress& progress, int first_term);
  const GroupSums& Keep(const GroupPath& path, const std::vector<std::optional<double>>& sums);

  Statements& statements_;
  const GroupQuery& query_;
  DataGroup group_;
  std::vector<std::vector<int>> columns_;  // by level
  bool compared_ = false;
  std::unordered_map<std::uint64_t, GroupSums> known_;  // by level and place
  std::optional<Progress> reading_;
};

}  // namespace vrx
