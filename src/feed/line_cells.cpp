#include "feed/line_cells.h"

#include <array>
#include <cstddef>
#include <optional>

#include "base/number.h"
#include "base/text.h"
#include "feed/key_filters.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

struct Column {
  std::string_view name;
  std::string_view takes;
};

constexpr std::array<Column, 3> kColumns = {{
    {"Ingredient", "an ingredient from the list"},
    {"Target", "digits, at most 6"},
    {"Ingredient%", "a percentage from 0 to 100 with at most two decimals"},
}};

constexpr std::size_t kTargetLimit = 6;

const Column& ColumnOf(LineColumn column) { return kColumns.at(static_cast<std::size_t>(column)); }

}  // namespace

std::string_view LineColumnName(LineColumn column) { return ColumnOf(column).name; }

int FilterLineKey(LineColumn column, std::string_view text, int key) {
  if (column == LineColumn::kIngredient) {
    return 0;
  }
  if (key == kBackspaceKey) {
    return key;
  }
  if (column == LineColumn::kTarget) {
    return text.size() < kTargetLimit ? FilterDigitKey2(key) : 0;
  }
  const int passed = FilterDecimalKey(key);
  const bool valid = passed != 0 && ValidPercentText(std::string(text) + static_cast<char>(passed));
  return valid ? passed : 0;
}

std::string PercentText(std::string_view cell) {
  const std::optional<double> percent = ParseNumber(cell);
  return percent ? Format(*percent, "0.00") : std::string(cell);
}

std::string EnterLineCell(LineColumn column, std::string_view typed) {
  std::string cell;
  for (const char character : typed) {
    const int key = static_cast<unsigned char>(character);
    const int passed = key == kBackspaceKey ? 0 : FilterLineKey(column, cell, key);
    if (passed == 0) {
      throw FieldRefusal("The '" + std::string(LineColumnName(column)) + "' field takes " +
                         std::string(ColumnOf(column).takes) + ": not '" + std::string(typed) +
                         "'.");
    }
    cell.push_back(static_cast<char>(passed));
  }
  return column == LineColumn::kIngredientPercent ? PercentText(cell) : cell;
}

}  // namespace vrx
