#pragma once

#include <string>
#include <string_view>

namespace vrx {

// The cells of a recipe's line that the operator fills; all others follow from them.
enum class LineColumn {
  kIngredient,         // chosen from the list of ingredients in use, never typed
  kTarget,             // dry-matter weight: digits, at most 6
  kIngredientPercent,  // 0 to 100, at most two decimals
};

// "Ingredient", "Target", "Ingredient%"
std::string_view LineColumnName(LineColumn column);

// A key in a cell that holds `text`: the code to let through, 0 to drop it.
int FilterLineKey(LineColumn column, std::string_view text, int key);

// `Ingredient%` as it is shown: with two decimals. A text that is no number comes back as it is.
std::string PercentText(std::string_view cell);

// What the cell holds after a text was typed key by key into the empty cell; a percentage gets its
// two decimals. Where the grid would drop a key, this throws FieldRefusal with nothing half taken.
std::string EnterLineCell(LineColumn column, std::string_view typed);

}  // namespace vrx
