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

}  // namespace

GroupTotals::GroupTotals(Statements& statements, const GroupQuery& query,
                         const std::vector<int>& columns)
    : statements_(statements), query_(query) {
  SetColumns(columns);
}

void GroupTotals::SetColumns(const std::vector<int>& columns) {
  std::vector<int> summed;
  std::copy_if(columns.begin(), columns.end(), std::back_inserter(summed),
               [](int column) { return HistoryColumnAt(column).summed; });
  if (summed != columns_) {
    columns_ = std::move(summed);
    Forget();
  }
}

std::optional<std::vector<CellValue>> GroupTotals::Find(const GroupPath& path) const {
  const auto total = totals_.find(KeyOf(path));
  return total == totals_.end() ? std::nullopt : std::optional(CellsOf(total->second));
}

std::vector<CellValue> GroupTotals::Load(const Outline& outline, const GroupPath& path) {
  std::string text = "SELECT count(*)";
  for (const int column : columns_) {
    text += ", exact_sum(" + Bracketed(HistoryColumnAt(column).field) + ")";
  }
  Statements::InUse statement = statements_.Take(text + query_.From(path.size()));
  query_.Bind(*statement, outline.Values(path));
  statement->executeStep();
  Total total{.records = statement->getColumn(0).getInt64(), .sums = {}};
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    total.sums.push_back(statement->getColumn(static_cast<int>(i) + 1).getDouble());  // 0 for NULL
  }
  if (totals_.size() >= kTotalsHeld) {
    std::erase_if(totals_, [](const auto& held) { return held.second.records < kLargeGroup; });
  }
  return CellsOf(totals_.insert_or_assign(KeyOf(path), std::move(total)).first->second);
}

std::vector<CellValue> GroupTotals::CellsOf(const Total& total) const {
  std::vector<CellValue> cells(kHistoryColumnCount);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    cells[static_cast<std::size_t>(columns_[i]) - 1] = total.sums[i];
  }
  return cells;
}

}  // namespace vrx
