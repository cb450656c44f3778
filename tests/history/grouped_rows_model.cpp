#include "history/grouped_rows_model.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <map>
#include <optional>

#include "base/date.h"
#include "database/exact_sum.h"
#include "history/columns.h"

namespace vrx::testing {

namespace {

constexpr int kUserColumn = 4;
constexpr int kDateColumn = 10;

const CellValue& Cell(const std::vector<CellValue>& record, int column) {
  return record[static_cast<std::size_t>(column) - 1];
}

// A CellValue is compared by kind first: NULL, numbers, texts.
CellValue SortKey(int column, const CellValue& value) {
  const auto* text = std::get_if<std::string>(&value);
  if (column == kUserColumn && text != nullptr) {
    return std::int64_t{std::strtoll(text->c_str(), nullptr, 10)};
  }
  return value;
}

// Empty for a row without a readable date.
std::string StoredDay(const std::vector<CellValue>& record) {
  const auto* const text = std::get_if<std::string>(&Cell(record, kDateColumn));
  return text != nullptr && ParseStoredDate(*text) ? *text : std::string();
}

// Stored days compare like their texts.
bool IsInside(const std::string& day, const Period& period) {
  return period.IsAll() || ((!period.from || StoredText(*period.from) <= day) &&
                            (!period.to || day <= StoredText(*period.to)));
}

using LevelKey = std::pair<CellValue, CellValue>;

}  // namespace

void GroupedRowsModel::Show(const DataGroup& group, const std::string& name, const Period& period) {
  group_ = &group;
  levels_.clear();
  for (const std::string_view key : group.levels) {
    levels_.push_back(HistoryColumnOfKey(key));
  }
  shown_.clear();
  undated_ = 0;
  for (const Record& record : table_) {
    const bool type_fits =
        group.type.empty() || Cell(record, 3) == CellValue(std::string(group.type));
    const bool name_fits = group.named_column.empty() ||
                           Cell(record, HistoryColumnOfKey(group.named_column)) == CellValue(name);
    if (!type_fits || !name_fits) {
      continue;
    }
    if (!period.IsAll() && StoredDay(record).empty()) {
      ++undated_;
    } else if (IsInside(StoredDay(record), period)) {
      shown_.push_back(&record);
    }
  }
  open_.clear();
  sort_column_ = 0;
  Refresh();
}

void GroupedRowsModel::SetOpen(std::int64_t row, bool open) {
  const auto index = static_cast<std::size_t>(row) - 1;
  if (rows_.at(index).kind != HistoryRowKind::kGroup) {
    return;
  }
  if (open) {
    open_.insert(paths_[index]);
  } else {
    open_.erase(paths_[index]);
  }
  Refresh();
}

void GroupedRowsModel::SetAllOpen(bool open) {
  open_.clear();
  opens_all_ = open;
  Refresh();
  opens_all_ = false;
}

void GroupedRowsModel::SortBy(int column, bool ascending) {
  sort_column_ = column;
  ascending_ = ascending;
  Refresh();
}

void GroupedRowsModel::SumColumns(std::vector<int> columns, bool compared) {
  sums_ = std::move(columns);
  compared_ = compared;
  Refresh();
}

bool GroupedRowsModel::ShowsRecords() const {
  return std::any_of(rows_.begin(), rows_.end(),
                     [](const HistoryRow& row) { return row.kind == HistoryRowKind::kRecord; });
}

void GroupedRowsModel::Refresh() {
  rows_.clear();
  paths_.clear();
  members_.clear();
  AddGroups({}, shown_);
}

void GroupedRowsModel::AddRow(HistoryRow row, Values path, std::vector<const Record*> records) {
  rows_.push_back(std::move(row));
  paths_.push_back(std::move(path));
  members_.push_back(std::move(records));
}

HistoryRow GroupedRowsModel::OnScreen(std::size_t index) const {
  HistoryRow row = rows_.at(index);
  if (row.kind != HistoryRowKind::kGroup || row.open) {
    return row;
  }
  row.cells.resize(kHistoryColumnCount);
  for (const int column : sums_) {
    if (column == kActualBatchColumn || column == kActualFeedColumn ||
        !IsBlanked(column, row.depth)) {
      row.cells[static_cast<std::size_t>(column) - 1] = Sum(members_[index], column);
    }
  }
  if (compared_) {
    row.comparisons = Compared(members_[index]);
  }
  return row;
}

CellValue GroupedRowsModel::Sum(const std::vector<const Record*>& records, int column) const {
  ExactSum sum;
  for (const Record* record : records) {
    const auto* weight = std::get_if<double>(&Cell(*record, column));
    sum.Add(weight == nullptr ? 0 : *weight);
  }
  return sum.Value();
}

Comparisons GroupedRowsModel::Compared(const std::vector<const Record*>& records) {
  const auto sum = [&](bool batch, int column) -> std::optional<double> {
    std::optional<ExactSum> total;
    for (const Record* record : records) {
      const auto* const type = std::get_if<std::string>(&Cell(*record, kTypeColumn));
      const auto* const weight = std::get_if<double>(&Cell(*record, column));
      if (type != nullptr && (*type == "BATCH") == batch && weight != nullptr) {
        total = total.value_or(ExactSum());
        total->Add(*weight);
      }
    }
    return total ? std::optional(total->Value()) : std::nullopt;
  };
  return {{{.target = sum(true, kTargetColumn), .actual = sum(true, kActualBatchColumn)},
           {.target = sum(false, kTargetColumn), .actual = sum(false, kActualFeedColumn)}}};
}

void GroupedRowsModel::AddGroups(const Values& path, const std::vector<const Record*>& records) {
  if (path.size() == levels_.size()) {
    AddRecords(records);
    return;
  }
  const int column = levels_[path.size()];
  std::map<LevelKey, std::vector<const Record*>> groups;
  for (const Record* record : records) {
    const CellValue& value = Cell(*record, column);
    groups[{SortKey(column, value), value}].push_back(record);
  }
  for (const auto& [key, members] : groups) {
    Values inner = path;
    inner.push_back(key.second);
    if (opens_all_) {
      open_.insert(inner);
    }
    const bool open = open_.contains(inner);
    const int depth = static_cast<int>(inner.size());
    AddRow({.kind = HistoryRowKind::kGroup, .depth = depth, .group = key.second, .open = open},
           inner, members);
    if (open) {
      AddGroups(inner, members);
      HistoryRow total = TotalRow(members, depth);
      total.depth = depth;
      total.group = key.second;
      AddRow(std::move(total), inner);
    }
  }
}

bool GroupedRowsModel::IsBlanked(int column, int depth) const {
  for (const BlankedColumns& blanked : group_->blanked) {
    if (blanked.depth != depth) {
      continue;
    }
    for (const int other : blanked.columns) {
      if (other == column) {
        return true;
      }
    }
    return column >= kFirstIngredientColumn && blanked.ingredient_columns;
  }
  return false;
}

HistoryRow GroupedRowsModel::TotalRow(const std::vector<const Record*>& records, int depth) const {
  HistoryRow total{.kind = HistoryRowKind::kTotal};
  total.cells.resize(kHistoryColumnCount);
  for (const int column : sums_) {
    if (IsBlanked(column, depth)) {
      continue;
    }
    total.cells[static_cast<std::size_t>(column) - 1] = Sum(records, column);
  }
  if (compared_) {
    total.comparisons = Compared(records);
  }
  return total;
}

void GroupedRowsModel::AddRecords(std::vector<const Record*> records) {
  if (sort_column_ != 0) {
    std::stable_sort(records.begin(), records.end(), [&](const Record* one, const Record* other) {
      const CellValue left = SortKey(sort_column_, Cell(*one, sort_column_));
      const CellValue right = SortKey(sort_column_, Cell(*other, sort_column_));
      return ascending_ ? left < right : right < left;
    });
  }
  for (const Record* record : records) {
    AddRow({.kind = HistoryRowKind::kRecord,
            .depth = static_cast<int>(levels_.size()) + 1,
            .cells = *record},
           {});
  }
}

}  // namespace vrx::testing
