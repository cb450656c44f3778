#include "history/columns.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "base/number.h"
#include "base/text.h"
#include "database/schema.h"

namespace vrx {
namespace {

constexpr bool kRight = true;
constexpr bool kLeft = false;
constexpr bool kSummed = true;

std::vector<HistoryColumn> MakeTable() {
  using enum ColumnContent;
  std::vector<HistoryColumn> table{
      {1, "Transaction", "Transaction", "Transaction", "Trans:", kLeft, !kSummed, kNumber},
      {2, "Recipe", "Recipe", "Recipe", "Recipe:", kLeft, !kSummed, kText},
      {3, "Type", "Type", "Type", "", kLeft, !kSummed, kText},
      {4, "UserID", "UserID", "User ID", "User ID:", kLeft, !kSummed, kNumber},
      {5, "Ingredient", "Ingredient", "Ingredient", "Ingred:  ", kLeft, !kSummed, kText},
      {6, "Pen", "Pen", "Pen", "Pen:", kLeft, !kSummed, kText},
      {7, "Target", "Target", "Target Wt", "", kRight, kSummed, kWeight},
      {8, "ActualBatch", "ActualBatch", "Batch Wt", "", kRight, kSummed, kWeight},
      {9, "Time", "Time", "Time", "", kLeft, !kSummed, kTime},
      {10, "Date", "Date", "Date", "Date:", kLeft, !kSummed, kDate},
      {11, "ActualFeed", "ActualFeed", "Feed Wt", "", kRight, kSummed, kWeight},
      {12, "Calculated_Ing%OfBatch", "IngPercent", "Ing% Of Batch", "", kRight, !kSummed, kWeight},
  };
  for (int slot = 1; slot <= kWeightColumnCount; ++slot) {
    const std::string field = IngredientWeightColumn(slot);
    table.push_back({kIngPercentColumn + slot, "Calculated_" + field, field,
                     field.substr(0, field.size() - 2) + "_Wt", "", kRight, kSummed, kWeight});
  }
  // No field may be a part of another one: exports look for fields in lists of them.
  table.insert(table.end(), {{113, "Calculated_BatchDifference", "BatchDifference", "Batch Diff",
                              "", kRight, !kSummed, kWeight},
                             {114, "Calculated_BatchDiffPercent", "BatchDiffPercent",
                              "Batch Diff %", "", kRight, !kSummed, kWeight},
                             {115, "Calculated_FeedDifference", "FeedDifference", "Feed Diff", "",
                              kRight, !kSummed, kWeight},
                             {116, "Calculated_FeedDiffPercent", "FeedDiffPercent", "Feed Diff %",
                              "", kRight, !kSummed, kWeight}});
  return table;
}

template <typename Member>
int IndexOf(std::string_view wanted, Member member) {
  const auto table = HistoryColumnTable();
  const auto column = std::find_if(table.begin(), table.end(), [&](const HistoryColumn& entry) {
    return EqualsIgnoringCase(entry.*member, wanted);
  });
  return column == table.end() ? 0 : column->index;
}

constexpr int kMissingIngredient = 33;

constexpr std::size_t kVisibleColumnSlots = 501;

std::size_t Place(int column) {
  return static_cast<std::size_t>(HistoryColumnAt(column).index) - 1;
}

// "ING007", the name of a slot that is not in use.
std::string FormatIngredientNumber(int slot) { return "ING" + Format(slot, "000"); }

}  // namespace

std::span<const HistoryColumn> HistoryColumnTable() {
  static const std::vector<HistoryColumn> table = MakeTable();
  return table;
}

std::span<const HistoryColumn> StoredColumns() {
  return HistoryColumnTable().first(kHistoryColumnCount);
}

const DifferenceColumn* FindDifferenceColumn(int column) {
  const auto* const found =
      std::find_if(kDifferenceColumns.begin(), kDifferenceColumns.end(),
                   [&](const DifferenceColumn& entry) { return entry.column == column; });
  return found == kDifferenceColumns.end() ? nullptr : found;
}

const HistoryColumn& HistoryColumnAt(int index) {
  if (index < 1 || index > kGridColumnCount) {
    throw std::out_of_range("no column " + std::to_string(index) + " of the history");
  }
  return HistoryColumnTable()[static_cast<std::size_t>(index) - 1];
}

int HistoryColumnOfKey(std::string_view key) { return IndexOf(key, &HistoryColumn::key); }

int HistoryColumnOfField(std::string_view field) { return IndexOf(field, &HistoryColumn::field); }

int IngredientSlot(int column) {
  return column >= kFirstIngredientColumn && column <= kHistoryColumnCount
             ? column - kIngPercentColumn
             : 0;
}

bool IsBlanked(const DataGroup& group, int depth, int column) {
  return std::any_of(
      group.blanked.begin(), group.blanked.end(), [&](const BlankedColumns& blanked) {
        return blanked.depth == depth &&
               ((blanked.ingredient_columns && IngredientSlot(column) != 0) ||
                std::count(blanked.columns.begin(), blanked.columns.end(), column) != 0);
      });
}

std::optional<std::size_t> IngredientColumnNames::Place(std::string_view key) {
  if (key.size() != 7 || !key.starts_with("Ing") || !key.ends_with("Wt") || !IsDigitChar(key[3]) ||
      !IsDigitChar(key[4])) {
    return std::nullopt;
  }
  const int ingredient = (key[3] - '0') * 10 + (key[4] - '0');
  if (ingredient < 1 || ingredient > kPlaces || ingredient == kMissingIngredient) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(ingredient - 1);
}

void IngredientColumnNames::SetIngredientColumnName(std::string_view column_key,
                                                    std::string_view name) {
  if (const auto place = Place(column_key)) {
    names_[*place] = name;
  }
}

std::string IngredientColumnNames::GetIngredientColumnName(std::string_view column_key) const {
  const auto place = Place(column_key);
  return place ? names_[*place] : std::string();
}

HistoryColumns::HistoryColumns() {
  for (const HistoryColumn& column : HistoryColumnTable()) {
    At(column.index).caption = column.caption;
    order_.at(Place(column.index)) = column.index;
  }
  ArrangeDifferences();
}

void HistoryColumns::SetUp(const DataGroup& group) {
  PutDifferencesLast();
  int position = 0;
  for (const std::string_view key : group.order) {
    Move(HistoryColumnOfKey(key), ++position);
  }
  for (const HistoryColumn& column : StoredColumns()) {
    At(column.index).visible = true;
  }
  for (const std::string_view key : group.hidden) {
    At(HistoryColumnOfKey(key)).visible = false;
  }
  ApplyIngredientColumnVisibility(group);
  SetTotalCaption(group.total_column);
  ArrangeDifferences();
}

void HistoryColumns::ShowDifferences(bool on) {
  differences_ = on;
  PutDifferencesLast();
  ArrangeDifferences();
}

void HistoryColumns::RefreshIngredientColumns(std::span<const IngredientRecord> ingredients) {
  for (int column = kFirstIngredientColumn; column <= kHistoryColumnCount; ++column) {
    At(column).caption.clear();
  }
  for (const IngredientRecord& ingredient : ingredients) {
    const int column = ingredient.id + kIngPercentColumn;
    if (IngredientSlot(column) != 0) {
      At(column).caption = UnicodeUpperCase(ingredient.name);
    }
  }
  for (int column = kFirstIngredientColumn; column <= kHistoryColumnCount; ++column) {
    At(column).visible = !Caption(column).empty();
  }
}

void HistoryColumns::ApplyIngredientColumnVisibility(const DataGroup& group) {
  At(kIngPercentColumn).visible = group.ingredient_columns == IngredientColumns::kShown;
  EnterTab(group);
}

void HistoryColumns::EnterTab(const DataGroup& group) {
  if (group.ingredient_columns == IngredientColumns::kHidden) {
    HideIngredientColumns();
  } else {
    ShowNamedIngredientColumns();
  }
}

const std::string& HistoryColumns::Caption(int column) const { return At(column).caption; }

bool HistoryColumns::IsVisible(int column) const { return At(column).visible; }

int HistoryColumns::Position(int column) const {
  const auto* const place = std::find(order_.begin(), order_.end(), HistoryColumnAt(column).index);
  return static_cast<int>(std::distance(order_.begin(), place)) + 1;
}

void HistoryColumns::Move(int column, int position) {
  auto* const from = order_.begin() + (Position(column) - 1);
  auto* const to = order_.begin() + static_cast<std::ptrdiff_t>(Place(position));
  if (from < to) {
    std::rotate(from, from + 1, to + 1);
  } else {
    std::rotate(to, from, from + 1);
  }
}

std::string_view HistoryColumns::TotalText(int column) const {
  return At(column).total ? "Total:" : "";
}

std::vector<int> HistoryColumns::VisibleColumns() const {
  std::vector<int> visible;
  std::copy_if(order_.begin(), order_.end(), std::back_inserter(visible),
               [this](int column) { return IsVisible(column); });
  return visible;
}

std::vector<std::string> HistoryColumns::GetVisibleColumnList() const {
  std::vector<std::string> slots(kVisibleColumnSlots);
  for (const int column : VisibleColumns()) {
    slots.at(static_cast<std::size_t>(Position(column))) = HistoryColumnAt(column).field;
  }
  return slots;
}

HistoryColumns::State& HistoryColumns::At(int column) { return columns_.at(Place(column)); }

const HistoryColumns::State& HistoryColumns::At(int column) const {
  return columns_.at(Place(column));
}

void HistoryColumns::ShowNamedIngredientColumns() {
  for (int column = kFirstIngredientColumn; column <= kHistoryColumnCount; ++column) {
    State& state = At(column);
    state.visible =
        !state.caption.empty() && state.caption != FormatIngredientNumber(IngredientSlot(column));
  }
}

void HistoryColumns::HideIngredientColumns() {
  for (int column = kFirstIngredientColumn; column <= kHistoryColumnCount; ++column) {
    At(column).visible = false;
  }
}

void HistoryColumns::PutDifferencesLast() {
  for (const DifferenceColumn& difference : kDifferenceColumns) {
    Move(difference.column, kGridColumnCount);
  }
}

void HistoryColumns::ArrangeDifferences() {
  for (const DifferenceColumn& difference : kDifferenceColumns) {
    At(difference.column).visible = differences_ && IsVisible(difference.actual_column);
    if (differences_) {
      const int after = Position(difference.actual_column) + 1;
      Move(difference.column, difference.percent ? after + 1 : after);
    }
  }
}

void HistoryColumns::SetTotalCaption(std::string_view column_key) {
  for (const HistoryColumn& column : HistoryColumnTable()) {
    At(column.index).total = !column_key.empty() && EqualsIgnoringCase(column.key, column_key);
  }
}

}  // namespace vrx
