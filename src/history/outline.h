#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_set>
#include <variant>
#include <vector>

#include "history/group_query.h"

namespace vrx {

// How many rows of the view something takes, and how many of them are records.
struct RowSum {
  std::int64_t rows = 0;
  std::int64_t records = 0;
};

// Sums over a list that change and answer in O(log n): a binary indexed tree. The list holds what
// each entry takes before BuildSums and the tree from then on.
void BuildSums(std::span<RowSum> list);
void AddToSums(std::span<RowSum> tree, std::size_t entry, RowSum change);
RowSum TotalOf(std::span<const RowSum> tree);

// The entry that a row lies in. `row` counts from 0, below the total, and becomes the place inside
// the entry.
std::size_t FindRow(std::span<const RowSum> tree, std::int64_t& row);

// A group by its place on each level, from the outermost in; empty: the whole table.
using GroupPath = std::vector<std::uint32_t>;

// What a row of the view is.
struct OutlinePlace {
  HistoryRowKind kind = HistoryRowKind::kRecord;
  int depth = 1;            // as a HistoryRow's
  GroupPath path = {};      // the group, or the one that the record is in
  std::int64_t record = 0;  // of a record: its place in its group, from 0
};

// The groups of a view and which of them are open: all that has to be known to tell what a row is.
// A group's inner groups, or the number of its records on the innermost level, are unknown until
// they are set. About 50 bytes a group; a row is found in O(log n).
//
// A group that is closed keeps which of its inner groups are open.
class Outline {
 public:
  // Without levels the rows are the records of the whole table.
  explicit Outline(int levels);

  std::int64_t RowCount() const { return Inside(table_, 0).rows; }
  bool ShowsRecords() const { return Inside(table_, 0).records > 0; }

  // Rows count from 1. Throws std::out_of_range.
  OutlinePlace Find(std::int64_t row) const;

  std::vector<CellValue> Values(const GroupPath& path) const;
  bool IsInnermost(const GroupPath& path) const { return path.size() == levels_.size(); }
  bool IsOpen(const GroupPath& path) const { return At(path).open; }
  bool IsKnown(const GroupPath& path) const { return At(path).inside != kUnknown; }
  // Of an innermost group, or of the whole table without levels.
  std::int64_t RecordCount(const GroupPath& path) const;

  // Once for a path that is not known yet, all inner groups closed.
  void SetGroups(const GroupPath& path, std::span<const CellValue> values);
  void SetRecordCount(const GroupPath& path, std::int64_t count);

  // Whether every group is known.
  bool IsWhole() const { return unknown_ == 0; }

  // Only for a known group all of whose outer ones are open.
  void SetOpen(const GroupPath& path, bool open);
  // Opening takes a whole outline.
  void SetAllOpen(bool open);

  // Makes a new outline whole, one innermost group after the other in ascending order. The sums
  // stand after the SetAllOpen that has to follow.
  void Append(std::span<const CellValue> values, std::int64_t records);

 private:
  static constexpr std::int64_t kUnknown = -1;

  using Value = std::variant<std::monostate, std::int64_t, double, const std::string*>;

  struct Node {
    Value value;
    std::int64_t inside = kUnknown;  // the number of its inner groups, or of its records
    std::uint32_t first = 0;         // the place of its first inner group on the next level
    bool open = false;
  };

  // The groups of one level, those of one outer group side by side, and their sums.
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
  // What a node's rows below its group row are, and what it takes as it stands; `inner` is the
  // level below it.
  RowSum Inside(const Node& node, std::size_t inner) const;
  RowSum Taken(const Node& node, std::size_t inner) const;

  Node table_;
  std::vector<Level> levels_;
  std::int64_t unknown_ = 1;
  std::unordered_set<std::string> texts_;
};

// What an outline is filled from. None of it reads a record: an index answers all. They throw
// SQLite::Exception.

// The values of the next level inside the group with the values `outer`, ascending, NULL first.
std::vector<CellValue> ReadLevelValues(Statements& statements, const GroupQuery& query,
                                       std::span<const CellValue> outer);

// Of an innermost group; without values of the whole table, as it is at the moment.
std::int64_t CountRecords(Statements& statements, const GroupQuery& query,
                          std::span<const CellValue> group);

// Every group with its number of records, all open.
Outline ReadWholeOutline(Statements& statements, const GroupQuery& query);

}  // namespace vrx
