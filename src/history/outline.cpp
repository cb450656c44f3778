#include "history/outline.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include "database/schema.h"

namespace vrx {
namespace {

std::size_t LowestBit(std::size_t number) { return number & (~number + 1); }

void AddTo(RowSum& sum, RowSum change) {
  sum.rows += change.rows;
  sum.records += change.records;
}

constexpr RowSum kClosed{.rows = 1, .records = 0};

std::size_t LengthOf(std::int64_t inside) { return static_cast<std::size_t>(inside); }

// Finds the values of a level, each with one search of the index.
class ValueFinder {
 public:
  ValueFinder(Statements& statements, const GroupQuery& query, std::span<const CellValue> outer)
      : statements_(statements),
        query_(query),
        outer_(outer),
        keys_(query.Levels()[outer.size()].keys) {}

  std::vector<CellValue> FindAll() {
    FindNextKey();
    return std::move(values_);
  }

 private:
  // Finds the values of the key after those of `found_`, and for each value those of the next keys.
  void FindNextKey() {
    const LevelKey& key = keys_[found_.size()];
    std::string text = "SELECT " + key.expression + query_.From(outer_.size());
    for (std::size_t before = 0; before < found_.size(); ++before) {
      text += " AND " + keys_[before].expression + " IS " + Parameter(before);
    }
    text += " AND " + key.expression;
    const std::string bound = Parameter(found_.size()) + " ";
    const std::string next = bound + "ORDER BY " + key.expression + " LIMIT 1";
    static const CellValue kNull;
    if (Find(text + " IS " + bound + "LIMIT 1", kNull)) {
      Take(kNull);
    }
    const std::string above = text + " > " + next;
    std::optional<CellValue> value = Find(text + " >= " + next, key.lowest);
    while (value) {
      Take(*value);
      value = Find(above, *value);
    }
  }

  static std::string Parameter(std::size_t key) {
    return "?" + std::to_string(GroupQuery::kFirstOwnParameter + static_cast<int>(key));
  }

  std::optional<CellValue> Find(const std::string& text, const CellValue& bound) {
    Statements::InUse statement = statements_.Take(text);
    query_.Bind(*statement, outer_);
    int parameter = GroupQuery::kFirstOwnParameter;
    for (const CellValue& before : found_) {
      BindValue(*statement, parameter++, before);
    }
    BindValue(*statement, parameter, bound);
    return statement->executeStep() ? std::optional(ValueOf(statement->getColumn(0)))
                                    : std::nullopt;
  }

  void Take(const CellValue& value) {
    if (found_.size() + 1 == keys_.size()) {
      values_.push_back(value);
      return;
    }
    found_.push_back(value);
    FindNextKey();
    found_.pop_back();
  }

  Statements& statements_;
  const GroupQuery& query_;
  std::span<const CellValue> outer_;
  const std::vector<LevelKey>& keys_;
  std::vector<CellValue> found_;  // values of the previous keys
  std::vector<CellValue> values_;
};

std::vector<CellValue> ReadValues(Statements& statements, const GroupQuery& query,
                                  std::span<const CellValue> outer, const std::string& text) {
  Statements::InUse statement = statements.Take(text);
  query.Bind(*statement, outer);
  std::vector<CellValue> values;
  while (statement->executeStep()) {
    values.push_back(ValueOf(statement->getColumn(0)));
  }
  return values;
}

// Calls `take` with the values and the number of records of each row of an outline query.
template <typename Take>
void ReadCounts(SQLite::Statement& statement, std::size_t levels, const Take& take) {
  std::vector<CellValue> values(levels);
  while (statement.executeStep()) {
    int column = 0;
    for (CellValue& value : values) {
      value = ValueOf(statement.getColumn(column++));
    }
    take(values, statement.getColumn(column).getInt64());
  }
}

// Values of names, NULL or a text, compare in SQLite's order.
using Counts = std::map<std::vector<CellValue>, std::int64_t>;

Counts CountInRanges(Statements& statements, const GroupQuery& query) {
  Counts counts;
  for (const std::int64_t range : query.Ranges()) {
    Statements::InUse statement = statements.Take(query.WholeOutline());
    query.BindRange(*statement, {}, range);
    ReadCounts(*statement, query.Levels().size(),
               [&](const std::vector<CellValue>& values, std::int64_t records) {
                 counts[values] += records;
               });
  }
  return counts;
}

}  // namespace

// Elements of the tree are numbered from 1: element n is the sum of the LowestBit(n) entries up to
// n.

void BuildSums(std::span<RowSum> list) {
  for (std::size_t n = 1; n <= list.size(); ++n) {
    const std::size_t above = n + LowestBit(n);
    if (above <= list.size()) {
      AddTo(list[above - 1], list[n - 1]);
    }
  }
}

void AddToSums(std::span<RowSum> tree, std::size_t entry, RowSum change) {
  for (std::size_t n = entry + 1; n <= tree.size(); n += LowestBit(n)) {
    AddTo(tree[n - 1], change);
  }
}

RowSum TotalOf(std::span<const RowSum> tree) {
  RowSum total;
  for (std::size_t n = tree.size(); n > 0; n -= LowestBit(n)) {
    AddTo(total, tree[n - 1]);
  }
  return total;
}

std::size_t FindRow(std::span<const RowSum> tree, std::int64_t& row) {
  std::size_t before = 0;
  for (std::size_t step = std::bit_floor(tree.size()); step > 0; step /= 2) {
    const std::size_t next = before + step;
    if (next <= tree.size() && tree[next - 1].rows <= row) {
      before = next;
      row -= tree[next - 1].rows;
    }
  }
  return before;
}

Outline::Outline(int levels) : levels_(static_cast<std::size_t>(levels)) { table_.open = true; }

Outline::Value Outline::Keep(const CellValue& value) {
  return std::visit(
      [&](const auto& stored) -> Value {
        if constexpr (std::is_same_v<std::decay_t<decltype(stored)>, std::string>) {
          return &*texts_.insert(stored).first;
        } else {
          return stored;
        }
      },
      value);
}

// Doubling the capacity would waste up to half the memory of the largest tables.
void Outline::AddNode(Level& level, Value value) {
  if (level.nodes.size() == level.nodes.capacity()) {
    const std::size_t wanted = level.nodes.size() + level.nodes.size() / 4 + 16;
    level.nodes.reserve(wanted);
    level.sums.reserve(wanted);
  }
  level.nodes.push_back({.value = value});
  level.sums.push_back(kClosed);
}

const Outline::Node& Outline::At(const GroupPath& path) const {
  return path.empty() ? table_ : levels_[path.size() - 1].nodes[path.back()];
}

Outline::Node& Outline::At(const GroupPath& path) {
  return path.empty() ? table_ : levels_[path.size() - 1].nodes[path.back()];
}

std::span<const RowSum> Outline::SumsOf(const Node& outer, std::size_t level) const {
  if (outer.inside == kUnknown) {
    return {};
  }
  return std::span(levels_[level].sums).subspan(outer.first, LengthOf(outer.inside));
}

std::span<RowSum> Outline::SumsOf(const Node& outer, std::size_t level) {
  if (outer.inside == kUnknown) {
    return {};
  }
  return std::span(levels_[level].sums).subspan(outer.first, LengthOf(outer.inside));
}

RowSum Outline::Inside(const Node& node, std::size_t inner) const {
  if (node.inside == kUnknown) {
    return {};
  }
  return inner == levels_.size() ? RowSum{.rows = node.inside, .records = node.inside}
                                 : TotalOf(SumsOf(node, inner));
}

RowSum Outline::Taken(const Node& node, std::size_t inner) const {
  if (!node.open) {
    return kClosed;
  }
  const RowSum inside = Inside(node, inner);
  return {.rows = inside.rows + 2, .records = inside.records};
}

OutlinePlace Outline::Find(std::int64_t row) const {
  if (row < 1 || row > RowCount()) {
    throw std::out_of_range("no row " + std::to_string(row) + " of the history");
  }
  std::int64_t left = row - 1;
  OutlinePlace place;
  const Node* outer = &table_;
  for (std::size_t level = 0; level < levels_.size(); ++level) {
    const std::size_t entry = outer->first + FindRow(SumsOf(*outer, level), left);
    outer = &levels_[level].nodes[entry];
    place.path.push_back(static_cast<std::uint32_t>(entry));
    place.depth = static_cast<int>(level) + 1;
    if (left == 0) {
      place.kind = HistoryRowKind::kGroup;
      return place;
    }
    --left;
    if (left == Inside(*outer, level + 1).rows) {
      place.kind = HistoryRowKind::kTotal;
      return place;
    }
  }
  place.kind = HistoryRowKind::kRecord;
  place.depth = static_cast<int>(levels_.size()) + 1;
  place.record = left;
  return place;
}

std::int64_t Outline::RowOf(const GroupPath& path, std::int64_t record) const {
  std::int64_t rows = 0;
  const Node* outer = &table_;
  for (std::size_t level = 0; level < path.size(); ++level) {
    rows += TotalOf(SumsOf(*outer, level).first(path[level] - outer->first)).rows + 1;
    outer = &levels_[level].nodes[path[level]];
  }
  return rows + record + 1;
}

std::optional<GroupPath> Outline::FindGroup(const GroupPath& outer, const CellValue& value) const {
  Value wanted;
  if (const auto* const text = std::get_if<std::string>(&value)) {
    const auto kept = texts_.find(*text);
    if (kept == texts_.end()) {
      return std::nullopt;
    }
    wanted = &*kept;
  } else if (const auto* const whole = std::get_if<std::int64_t>(&value)) {
    wanted = *whole;
  } else if (const auto* const number = std::get_if<double>(&value)) {
    wanted = *number;
  }
  const Node& node = At(outer);
  const auto groups =
      std::span(levels_[outer.size()].nodes).subspan(node.first, LengthOf(node.inside));
  const auto found = std::find_if(groups.begin(), groups.end(),
                                  [&](const Node& group) { return group.value == wanted; });
  if (found == groups.end()) {
    return std::nullopt;
  }
  GroupPath path = outer;
  path.push_back(node.first + static_cast<std::uint32_t>(found - groups.begin()));
  return path;
}

std::int64_t Outline::FirstGroupBeside(
    std::int64_t row, const std::function<bool(const CellValue&)>& condition) const {
  OutlinePlace place = Find(row);
  if (place.kind != HistoryRowKind::kGroup) {
    return 0;
  }
  place.path.pop_back();
  const std::vector<Node>& nodes = levels_[place.path.size()].nodes;
  const Node& outer = At(place.path);
  place.path.push_back(outer.first);
  for (std::int64_t inside = 0; inside < outer.inside; ++inside, ++place.path.back()) {
    if (condition(ValueOf(nodes[place.path.back()]))) {
      return RowOf(place.path);
    }
  }
  return 0;
}

CellValue Outline::ValueOf(const Node& node) {
  return std::visit(
      [](const auto& kept) -> CellValue {
        if constexpr (std::is_same_v<std::decay_t<decltype(kept)>, const std::string*>) {
          return *kept;
        } else {
          return kept;
        }
      },
      node.value);
}

std::vector<CellValue> Outline::Values(const GroupPath& path) const {
  std::vector<CellValue> values;
  for (std::size_t level = 0; level < path.size(); ++level) {
    values.push_back(ValueOf(levels_[level].nodes[path[level]]));
  }
  return values;
}

std::int64_t Outline::RecordCount(const GroupPath& path) const { return At(path).inside; }

void Outline::SetKnown(Node& node, std::int64_t inside) {
  node.inside = inside;
  --unknown_;
}

void Outline::SetGroups(const GroupPath& path, std::span<const CellValue> values) {
  Level& level = levels_[path.size()];
  const std::size_t first = level.nodes.size();
  if (first == 0) {
    level.nodes.reserve(values.size());
    level.sums.reserve(values.size());
  }
  for (const CellValue& value : values) {
    AddNode(level, Keep(value));
  }
  BuildSums(std::span(level.sums).subspan(first));
  Node& node = At(path);
  node.first = static_cast<std::uint32_t>(first);
  SetKnown(node, static_cast<std::int64_t>(values.size()));
  unknown_ += node.inside;
}

void Outline::SetRecordCount(const GroupPath& path, std::int64_t count) {
  SetKnown(At(path), count);
}

void Outline::SetOpen(const GroupPath& path, bool open) {
  Node& node = At(path);
  const RowSum before = Taken(node, path.size());
  node.open = open;
  const RowSum after = Taken(node, path.size());
  const RowSum change{.rows = after.rows - before.rows, .records = after.records - before.records};
  const Node* outer = &table_;
  for (std::size_t level = 0; level < path.size(); ++level) {
    AddToSums(SumsOf(*outer, level), path[level] - outer->first, change);
    outer = &levels_[level].nodes[path[level]];
  }
}

void Outline::SetAllOpen(bool open) {
  for (std::size_t level = levels_.size(); level-- > 0;) {
    Level& here = levels_[level];
    for (std::size_t entry = 0; entry < here.nodes.size(); ++entry) {
      here.nodes[entry].open = open;
      here.sums[entry] = Taken(here.nodes[entry], level + 1);
    }
    const std::span<const Node> outers =
        level == 0 ? std::span<const Node>(&table_, 1) : std::span(levels_[level - 1].nodes);
    for (const Node& outer : outers) {
      BuildSums(SumsOf(outer, level));
    }
  }
}

void Outline::Append(std::span<const CellValue> values, std::int64_t records) {
  bool same = true;
  Node* outer = &table_;
  for (std::size_t level = 0; level < levels_.size(); ++level) {
    const Value value = Keep(values[level]);
    std::vector<Node>& nodes = levels_[level].nodes;
    same = same && outer->inside != kUnknown && nodes.back().value == value;
    if (!same) {
      if (outer->inside == kUnknown) {
        SetKnown(*outer, 0);
        outer->first = static_cast<std::uint32_t>(nodes.size());
      }
      ++outer->inside;
      ++unknown_;
      AddNode(levels_[level], value);
    }
    outer = &nodes.back();
  }
  SetKnown(*outer, records);
}

std::vector<CellValue> ReadLevelValues(Statements& statements, const GroupQuery& query,
                                       std::span<const CellValue> outer) {
  const GroupLevel& level = query.Levels()[outer.size()];
  const std::string from = query.From(outer.size());
  if (outer.empty() && query.IsByName()) {
    return ReadValues(statements, query, outer, "SELECT " + level.field + from + " LIMIT 1");
  }
  if (level.many_values) {
    return ReadValues(statements, query, outer,
                      "SELECT DISTINCT " + level.field + from + " ORDER BY " + level.field);
  }
  if (query.IsRanged()) {
    return ReadValues(statements, query, outer, query.ValuesInRanges(outer.size()));
  }
  return ValueFinder(statements, query, outer).FindAll();
}

std::int64_t CountRecords(Statements& statements, const GroupQuery& query,
                          std::span<const CellValue> group) {
  if (group.empty() && query.Within() != nullptr) {
    return query.Within()->rows.Count();
  }
  if (group.empty()) {
    // Without a condition SQLite counts the entries of an index page by page.
    Statements::InUse whole =
        statements.Take("SELECT count(*) FROM " + std::string(kTransactionsTable));
    whole->executeStep();
    return whole->getColumn(0).getInt64();
  }
  Statements::InUse statement = statements.Take("SELECT count(*)" + query.From(group.size()));
  query.Bind(*statement, group);
  statement->executeStep();
  return statement->getColumn(0).getInt64();
}

Outline ReadWholeOutline(Statements& statements, const GroupQuery& query) {
  const std::size_t levels = query.Levels().size();
  Outline outline(static_cast<int>(levels));
  bool any = false;
  const auto append = [&](std::span<const CellValue> values, std::int64_t records) {
    outline.Append(values, records);
    any = true;
  };
  if (query.IsRanged()) {
    for (const auto& [values, records] : CountInRanges(statements, query)) {
      append(values, records);
    }
  } else {
    Statements::InUse statement = statements.Take(query.WholeOutline());
    query.Bind(*statement, {});
    ReadCounts(*statement, levels, append);
  }
  if (!any) {
    outline.SetGroups({}, {});
  }
  outline.SetAllOpen(true);
  return outline;
}

}  // namespace vrx
