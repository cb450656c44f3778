#include "exchange/imported_data.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string_view>

#include "base/number.h"

namespace vrx {
namespace {

constexpr std::array<std::string_view, kFirstIngredientWeight - 1> kLeadingKeys = {
    "Imported_TransactionNumber",
    "Imported_RecipeID",
    "Imported_Type",
    "Imported_Target",
    "Imported_IngredientID",
    "Imported_ActualBatch",
    "Imported_PenID",
    "Imported_ActualFeed",
    "Imported_Time",
    "Imported_Date",
    "Imported_UserID",
    "Calculated_Ing%OfBatch",
};

constexpr std::array<std::string_view, kCalculatedIngPercentOfBatch> kCaptions = {
    "Transaction", "Recipe ID", "Type", "Target Wt", "Ingredient ID", "Batch Wt",
    "Pen ID",      "Feed Wt",   "Time", "Date",      "User ID",       "Ing% Of Batch"};

template <typename Cells>
auto FindCell(Cells& cells, int column) {
  return std::lower_bound(cells.begin(), cells.end(), column,
                          [](const auto& cell, int wanted) { return cell.first < wanted; });
}

}  // namespace

void ImportedData::Resize(std::size_t rows) {
  filled_ = {};
  texts_ = {};
  unread_feeds_ = {};
  row_count_ = rows;
}

std::string_view ImportedData::Cell(std::size_t row, int column) const {
  if (!Filled(row)) {
    return {};
  }
  const auto& cells = filled_[row - 1].cells;
  const auto found = FindCell(cells, column);
  return found != cells.end() && found->first == column ? found->second : std::string_view();
}

void ImportedData::SetCell(std::size_t row, int column, std::string_view text) {
  if (row < 1 || row > row_count_ || column < 1 || column > kImportColumns) {
    throw std::out_of_range("cell outside the imported data");
  }
  if (row > filled_.size()) {
    filled_.resize(row);
  }
  const std::string_view held = *texts_.emplace(text).first;
  auto& cells = filled_[row - 1].cells;
  const auto place = FindCell(cells, column);
  if (place != cells.end() && place->first == column) {
    place->second = held;
  } else {
    cells.emplace(place, column, held);
  }
}

bool ImportedData::Filled(std::size_t row) const {
  return row >= 1 && row <= filled_.size() && !filled_[row - 1].cells.empty();
}

std::string ImportColumnKey(int column) {
  if (column < 1 || column > kImportColumns) {
    return {};
  }
  if (column < kFirstIngredientWeight) {
    return std::string(kLeadingKeys[static_cast<std::size_t>(column - 1)]);
  }
  const int ingredient = column - kFirstIngredientWeight + 1;
  return std::string("Calculated_Ing") + (ingredient < 10 ? "0" : "") + std::to_string(ingredient) +
         "Wt";
}

std::string DesignImportCaption(int column) {
  if (column < kFirstIngredientWeight) {
    return std::string(kCaptions.at(static_cast<std::size_t>(column - 1)));
  }
  return "Ing" + Format(static_cast<double>(column - kCalculatedIngPercentOfBatch), "00") + " Wt";
}

bool IsImportText(int column) {
  return column == kImportedType || column == kImportedTime || column == kImportedDate;
}

}  // namespace vrx
