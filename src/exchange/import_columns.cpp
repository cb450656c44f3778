#include "exchange/import_columns.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "base/number.h"
#include "exchange/imported_data.h"

namespace vrx {
namespace {

constexpr std::array<std::string_view, kCalculatedIngPercentOfBatch> kCaptions = {
    "Transaction", "Recipe ID", "Type", "Target Wt", "Ingredient ID", "Batch Wt",
    "Pen ID",      "Feed Wt",   "Time", "Date",      "User ID",       "Ing% Of Batch"};

}  // namespace

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
