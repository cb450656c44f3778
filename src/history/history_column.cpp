#include "history/history_column.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <vector>

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

}  // namespace

std::span<const HistoryColumn> HistoryColumnTable() {
  static const std::vector<HistoryColumn> table = MakeTable();
  return table;
}

const HistoryColumn& HistoryColumnAt(int index) {
  if (index < 1 || index > kHistoryColumnCount) {
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

}  // namespace vrx
