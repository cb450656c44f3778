#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <unordered_set>
#include <variant>
#include <vector>

#include "history/group_query.h"

namespace vrx {

// Number of visible rows of a part of the view, and of the records among them.
struct RowSum {
  std::int64_t rows = 0;
  std::int64_t records = 0;
};

// Prefix sums with updates and queries in O(log n): a binary indexed tree. BuildSums converts a
// list of entries to the tree in place.
void BuildSums(std::span<RowSum> list);
void AddToSums(std::span<RowSum> tree, std::size_t entry, RowSum change);
[[nodiscard]] RowSum TotalOf(std::span<const RowSum> tree);

// Returns the entry that contains a row. `row` starts at 0, is less than the total, and becomes the
// row within the entry.
[[nodiscard]] std::size_t FindRow(std::span<const RowSum> tree, std::int64_t& row);

// Indexes of a group on each level, outermost first; empty for the whole table.
using GroupPath = std::vector<std::uint32_t>;

// Identifies a row of the view.
struct OutlinePlace {
  HistoryRowKind kind = HistoryRowKind::kRecord;
  int depth = 1;            // as in HistoryRow
  GroupPath path = {};      // the group, or the group of the record
  std::int64_t record = 0;  // index of a record in its group, from 0
};

// The groups of a view and which of them are open; this determines the contents of each row. The
// inner groups of a group, or the number of records on the innermost level, are unknown until they
// are set. About 50 bytes per group; a row is found in O(log n).
//
// A closed group remembers which of its inner groups are open.
class Outline {
 public:
  // Without levels, the rows are the records of the whole table.
  explicit Outline(int levels);

  [[nodiscard]] std::int64_t RowCount() const { return Inside(table_, 0).rows; }
  [[nodiscard]] bool ShowsRecords() const { return Inside(table_, 0).records > 0; }

  // Rows are numbered from 1. Throws std::out_of_range.
  OutlinePlace Find(std::int64_t row) const;

  // The row of a record, if all groups of the path are open.
  [[nodiscard]] std::int64_t RowOf(const GroupPath& path, std::int64_t record) const;
  // The row of a group, if the groups around it are open.
  [[nodiscard]] std::int64_t RowOf(const GroupPath& path) const { return RowOf(path, -1); }

  // The group with that value inside a known group; nothing if there is none. Linear in the number
  // of groups there.
  [[nodiscard]] std::optional<GroupPath> FindGroup(const GroupPath& outer,
                                                   const CellValue& value) const;

  // The first group row beside that group row, or itself, whose value fulfills the condition; 0 if
  // there is none, and for any other row.
  [[nodiscard]] std::int64_t FirstGroupBeside(
      std::int64_t row, const std::function<bool(const CellValue&)>& condition) const;

  [[nodiscard]] std::vector<CellValue> Values(const GroupPath& path) const;
  [[nodiscard]] bool IsInnermost(const GroupPath& path) const {
    return path.size() == levels_.size();
  }
  [[nodiscard]] bool IsOpen(const GroupPath& path) const { return At(path).open; }
  [[nodiscard]] bool IsKnown(const GroupPath& path) const { return At(path).inside != kUnknown; }
  // For an innermost group, or the whole table without levels.
  [[nodiscard]] std::int64_t RecordCount(const GroupPath& path) const;

  // Call once for a path that is not known yet. All inner groups are closed.
  void SetGroups(const GroupPath& path, std::span<const CellValue> values);
  void SetRecordCount(const GroupPath& path, std::int64_t count);

  // True if every group is known.
  [[nodiscard]] bool IsWhole() const { return unknown_ == 0; }

  // Only for a known group whose outer groups are all open.
  void SetOpen(const GroupPath& path, bool open);
  // Opening requires IsWhole.
  void SetAllOpen(bool open);

  // Fills a new outline completely, one call per innermost group in ascending order. SetAllOpen
  // must be called afterwards to compute the sums.
  void Append(std::span<const CellValue> values, std::int64_t records);

 private:
  static constexpr std::int64_t kUnknown = -1;

  using Value = std::variant<std::monostate, std::int64_t, double, const std::string*>;

  struct Node {
    Value value;
    std::int64_t inside = kUnknown;  // number of inner groups or records
    std::uint32_t first = 0;         // index of the first inner group on the next level
    bool open = false;
  };

  // The groups of one level, consecutive for each outer group, and their sums.
  struct Level {
    std::vector<Node> nodes;
    std::vector<RowSum> sums;
  };

  Value Keep(const CellValue& value);
  static void AddNode(Level& level, Value value);
  Node& At(const GroupPath& path);
  const Node& At(const GroupPath& path) const;
  void SetKnown(Node& node, std::int64_t inside);
  std::span<RowSum> SumsOf(const Node& outer, std::size_t level);
  std::span<const RowSum> SumsOf(const Node& outer, std::size_t level) const;
  // Rows of a node below its group row, and visible rows of the node now; `inner` is the next
  // level.
  RowSum Inside(const Node& node, std::size_t inner) const;
  RowSum Taken(const Node& node, std::size_t inner) const;
  static CellValue ValueOf(const Node& node);

  Node table_;
  std::vector<Level> levels_;
  std::int64_t unknown_ = 1;
  std::unordered_set<std::string> texts_;
};

// Queries that fill an outline. They read indexes only, no records, and throw SQLite::Exception.

// Values of the next level inside the group with the values `outer`, ascending, NULL first.
[[nodiscard]] std::vector<CellValue> ReadLevelValues(Statements& statements,
                                                     const GroupQuery& query,
                                                     std::span<const CellValue> outer);

// Number of records of an innermost group, or of the whole table without values.
[[nodiscard]] std::int64_t CountRecords(Statements& statements, const GroupQuery& query,
                                        std::span<const CellValue> group);

// All groups, open, with their numbers of records.
[[nodiscard]] Outline ReadWholeOutline(Statements& statements, const GroupQuery& query);

}  // namespace vrx
