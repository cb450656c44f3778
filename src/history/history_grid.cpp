#include "history/history_grid.h"

#include <algorithm>
#include <cstddef>

#include "base/date.h"

namespace vrx {
namespace {

// Only visible columns need sums.
std::vector<int> VisibleSums(const HistoryColumns& columns) {
  std::vector<int> sums;
  for (const HistoryColumn& column : HistoryColumnTable()) {
    if (column.summed && columns.IsVisible(column.index)) {
      sums.push_back(column.index);
    }
  }
  return sums;
}

bool IsLevel(const DataGroup& group, int column) {
  return std::any_of(group.levels.begin(), group.levels.end(),
                     [column](std::string_view key) { return HistoryColumnOfKey(key) == column; });
}

}  // namespace

HistoryGrid::HistoryGrid(SQLite::Database& transactions)
    : rows_(transactions), group_(&DataGroups().front()) {}

void HistoryGrid::Bind(SQLite::Database& transactions) {
  GroupedRows rows(transactions);
  rows.SumColumns(sums_, columns_.HasDifferences());
  rows.Show(*group_, name_, period_);
  if (sort_column_ != 0) {
    rows.SortBy(sort_column_, sort_ascending_);
  }
  rows_ = std::move(rows);
}

void HistoryGrid::SetUp(const DataGroup& group, std::string_view name) {
  HistoryColumns columns = columns_;
  columns.SetUp(group);
  SumVisible(columns);
  rows_.Show(group, name, period_);
  columns_ = std::move(columns);
  group_ = &group;
  name_ = name;
  sort_column_ = 0;
  column_headers_ = group.levels.empty();
}

void HistoryGrid::ShowName(std::string_view name) {
  ShowRows(name, period_);
  name_ = name;
}

void HistoryGrid::ShowPeriod(const Period& period) {
  ShowRows(name_, period);
  period_ = period;
}

void HistoryGrid::ShowRows(std::string_view name, const Period& period) {
  rows_.Show(*group_, name, period);
  if (sort_column_ != 0) {
    rows_.SortBy(sort_column_, sort_ascending_);
  }
}

void HistoryGrid::ShowDifferences(bool on) {
  columns_.ShowDifferences(on);
  rows_.SumColumns(sums_, on);
  if (!on && FindDifferenceColumn(sort_column_) != nullptr) {
    rows_.SortBy(0, true);
    sort_column_ = 0;
    sort_ascending_ = true;
  }
}

void HistoryGrid::RefreshIngredientColumns(std::span<const IngredientRecord> ingredients) {
  HistoryColumns columns = columns_;
  columns.RefreshIngredientColumns(ingredients);
  Settle(std::move(columns));
}

void HistoryGrid::EnterTab() {
  HistoryColumns columns = columns_;
  columns.EnterTab(*group_);
  Settle(std::move(columns));
}

std::vector<std::pair<std::string, std::string>> HistoryGrid::FieldCaptions() const {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const HistoryColumn& column : StoredColumns()) {
    pairs.emplace_back(column.field, columns_.Caption(column.index));
  }
  return pairs;
}

ShownRow HistoryGrid::Row(std::int64_t row) {
  return FormatRow(rows_.Row(row), *group_, columns_, tolerance_);
}

ShownRow HistoryGrid::RowOnScreen(std::int64_t row) {
  return FormatRow(rows_.Row(row, SumsWanted::kKnown), *group_, columns_, tolerance_);
}

void HistoryGrid::OpenGroup(std::int64_t row) {
  rows_.Open(row);
  UpdateColumnHeaderStrip();
}

void HistoryGrid::CloseGroup(std::int64_t row) {
  rows_.Close(row);
  UpdateColumnHeaderStrip();
}

void HistoryGrid::ApplyExpandState(bool expand_all) {
  if (expand_all) {
    rows_.OpenAll();
  } else {
    rows_.CloseAll();
  }
  UpdateColumnHeaderStrip();
}

std::int64_t HistoryGrid::SortByColumn(int column, std::int64_t row) {
  if (IsLevel(*group_, column)) {
    return row;
  }
  const bool ascending = column != sort_column_ || !sort_ascending_;
  const std::int64_t followed = rows_.SortBy(column, ascending, row);
  sort_column_ = column;
  sort_ascending_ = ascending;
  return followed;
}

std::int64_t HistoryGrid::OpenNewest(std::int64_t count) {
  const std::int64_t row = rows_.OpenNewest(count);
  UpdateColumnHeaderStrip();
  return row;
}

void HistoryGrid::Find(std::string_view typed) {
  rows_.Find(nullptr, {});
  sought_ = std::make_unique<FindText>(typed);
  searched_ = SearchedColumns();
  if (!sought_->IsEmpty()) {
    rows_.Find(sought_.get(), searched_);
  }
}

const FoundRows* HistoryGrid::Found() const {
  return searched_ == SearchedColumns() ? rows_.Found() : nullptr;
}

std::optional<FoundCell> HistoryGrid::OpenFound(std::int64_t index) {
  const RowPlace place = rows_.Found()->At(index);
  // A day is sought for what happened on it.
  const std::int64_t row = rows_.OpenTo(place, sought_->Day().has_value());
  UpdateColumnHeaderStrip();
  if (row == 0) {
    return std::nullopt;
  }
  if (place.kind == HistoryRowKind::kGroup) {
    return FoundCell{.row = row, .column = 0};
  }
  const HistoryRow record = rows_.Row(row);
  const auto found = std::find_if(searched_.begin(), searched_.end(), [&](int column) {
    const HistoryColumn& traits = HistoryColumnAt(column);
    return FindDifferenceColumn(column) != nullptr
               ? sought_->IsInText(traits, ShownCell(record, *group_, columns_, column))
               : sought_->IsIn(traits, record.cells[static_cast<std::size_t>(column) - 1]);
  });
  return found == searched_.end() ? std::nullopt : std::optional(FoundCell{row, *found});
}

std::optional<FoundCell> HistoryGrid::OpenFoundDay() {
  if (!sought_->Day() || group_->levels.empty() || group_->levels.front() != "Date") {
    return std::nullopt;
  }
  const RowPlace day{.kind = HistoryRowKind::kGroup, .groups = {StoredText(*sought_->Day())}};
  const std::int64_t row = rows_.OpenTo(day, true);
  UpdateColumnHeaderStrip();
  return row == 0 ? std::nullopt : std::optional(FoundCell{.row = row, .column = 0});
}

// Those of a record that are blank are not searched.
std::vector<int> HistoryGrid::SearchedColumns() const {
  std::vector<int> columns = columns_.VisibleColumns();
  const int depth = static_cast<int>(group_->levels.size()) + 1;
  std::erase_if(columns, [&](int column) { return IsBlanked(*group_, depth, column); });
  return columns;
}

std::int64_t HistoryGrid::FirstGroupBeginning(std::int64_t row, std::string_view typed) {
  if (rows_.KindOf(row) != HistoryRowKind::kGroup) {
    return 0;
  }
  const auto depth = static_cast<std::size_t>(rows_.Row(row).depth);
  const HistoryColumn& column = HistoryColumnAt(HistoryColumnOfKey(group_->levels.at(depth - 1)));
  return rows_.FirstGroupBeside(
      row, [&](const CellValue& value) { return BeginsWith(ShownValue(column, value), typed); });
}

std::int64_t HistoryGrid::OutermostGroup(std::string_view value) {
  if (RowCount() == 0 || group_->levels.empty()) {
    return 0;
  }
  const HistoryColumn& column = HistoryColumnAt(HistoryColumnOfKey(group_->levels.front()));
  return rows_.FirstGroupBeside(
      1, [&](const CellValue& shown) { return ShownValue(column, shown) == value; });
}

void HistoryGrid::UpdateColumnHeaderStrip() {
  if (rows_.RowCount() > 0) {
    column_headers_ = rows_.ShowsRecords();
  }
}

void HistoryGrid::Settle(HistoryColumns columns) {
  columns.ApplyIngredientColumnVisibility(*group_);
  SumVisible(columns);
  columns_ = std::move(columns);
}

void HistoryGrid::SumVisible(const HistoryColumns& columns) {
  std::vector<int> sums = VisibleSums(columns);
  if (sums != sums_) {
    rows_.SumColumns(sums, columns.HasDifferences());
    sums_ = std::move(sums);
  }
}

}  // namespace vrx
