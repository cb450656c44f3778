#include "history/outline.h"

#include <stdexcept>
#include <type_traits>

namespace vrx {

namespace {

constexpr RowSum kClosed{.rows = 1, .records = 0};

std::size_t LengthOf(std::int64_t inside) { return static_cast<std::size_t>(inside); }

}  // namespace

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

// Doubling would waste up to half of what the largest tables need.
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

std::vector<CellValue> Outline::Values(const GroupPath& path) const {
  std::vector<CellValue> values;
  for (std::size_t level = 0; level < path.size(); ++level) {
    values.push_back(std::visit(
        [](const auto& kept) -> CellValue {
          if constexpr (std::is_same_v<std::decay_t<decltype(kept)>, const std::string*>) {
            return *kept;
          } else {
            return kept;
          }
        },
        levels_[level].nodes[path[level]].value));
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

}  // namespace vrx
