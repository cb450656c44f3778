#include "history/group_totals.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

#include "database/schema.h"
#include "history/history_column.h"

namespace vrx {

namespace {

constexpr std::size_t kTotalsHeld = 4096;
constexpr std::int64_t kLargeGroup = 1000;

std::uint64_t KeyOf(const GroupPath& path) {
  return static_cast<std::uint64_t>(path.size()) << 32U | path.back();
}

bool IsBlanked(const DataGroup& group, int depth, int column) {
  return std::any_of(
      group.blanked.begin(), group.blanked.end(), [&](const BlankedColumns& blanked) {
        return blanked.depth == depth &&
               ((blanked.ingredient_columns && IngredientSlot(column) != 0) ||
                std::count(blanked.columns.begin(), blanked.columns.end(), column) != 0);
      });
}

}  // namespace

GroupTotals::GroupTotals(Statements& statements, const GroupQuery& query, DataGroup group,
                         const std::vector<int>& columns)
    : statements_(statements), query_(query), group_(std::move(group)) {
  SetColumns(columns);
}

void GroupTotals::SetColumns(const std::vector<int>& columns) {
  std::vector<std::vector<int>> by_level(group_.levels.size());
  for (const int column : columns) {
    const bool summed = HistoryColumnAt(column).summed;
    int depth = 1;
    for (std::vector<int>& level : by_level) {
      if (summed && !IsBlanked(group_, depth, column)) {
        level.push_back(column);
      }
      ++depth;
    }
  }
  if (by_level != columns_) {
    columns_ = std::move(by_level);
    Forget();
  }
}

std::optional<std::vector<CellValue>> GroupTotals::Find(const GroupPath& path) const {
  if (ColumnsOf(path).empty()) {
    return CellsOf(path, {});
  }
  const auto total = totals_.find(KeyOf(path));
  return total == totals_.end() ? std::nullopt : std::optional(CellsOf(path, total->second));
}

std::vector<CellValue> GroupTotals::Load(const Outline& outline, const GroupPath& path) {
  std::string text = "SELECT count(*)";
  for (const int column : ColumnsOf(path)) {
    text += ", exact_sum(" + Bracketed(HistoryColumnAt(column).field) + ")";
  }
  Statements::InUse statement = statements_.Take(text + query_.From(path.size()));
  query_.Bind(*statement, outline.Values(path));
  statement->executeStep();
  Total total{.records = statement->getColumn(0).getInt64(), .sums = {}};
  for (std::size_t i = 0; i < ColumnsOf(path).size(); ++i) {
    total.sums.push_back(statement->getColumn(static_cast<int>(i) + 1).getDouble());  // 0 for NULL
  }
  if (totals_.size() >= kTotalsHeld) {
    std::erase_if(totals_, [](const auto& held) { return held.second.records < kLargeGroup; });
  }
  return CellsOf(path, totals_.insert_or_assign(KeyOf(path), std::move(total)).first->second);
}

std::vector<CellValue> GroupTotals::CellsOf(const GroupPath& path, const Total& total) const {
  const std::vector<int>& columns = ColumnsOf(path);
  std::vector<CellValue> cells(kHistoryColumnCount);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    cells[static_cast<std::size_t>(columns[i]) - 1] = total.sums[i];
  }
  return cells;
}

}  // namespace vrx
