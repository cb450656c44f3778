#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "database/records.h"
#include "feed/batch_type.h"
#include "feed/ration.h"

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

// The columns of `grdREC` that are ever seen, in the order of a recipe by weight.
enum RecipeColumn : int {
  kColumnIngredient,
  kColumnTarget,
  kColumnRationPercent,
  kColumnDryMatterPercent,
  kColumnDryMatter,
  kColumnBatchTarget,
  kColumnHandAdd,
  kColumnIngredientPercent,
};
inline constexpr int kRecipeColumnCount = 8;

enum class CellRole {
  kEntered,
  kReadOnly,  // the ingredient's
  kComputed,
};

struct RecipeColumnRow {
  std::string_view key;
  std::string_view caption;
  bool tells_unit;  // in its caption, once it is known
  CellRole manner;
  std::string RecipeLineRecord::*cell;  // none for a column that is no text
  const char* total_label = nullptr;
  std::string TotalsRow::*total = nullptr;
  std::optional<LineColumn> entered_as = std::nullopt;
};

// By RecipeColumn.
std::span<const RecipeColumnRow> RecipeColumns();

// A recipe by percent shows `Ingredient%` in place of `Target` and `Ration%`.
bool IsColumnShown(int column, LineEntry entry);

// The column that the lines are entered by; it is seen next to that of the ingredient.
int EnteredColumn(LineEntry entry);

// What a line shows in a column: the ID of its ingredient, "Yes" or "No" for `HandAdd`, and
// `Ingredient%` with two decimals, however it is stored.
std::string CellText(const RecipeLineRecord& line, int column);

// Those that are shown, from left to right.
std::vector<int> ColumnsInSight(LineEntry entry);

// "Dry Matter (lb)"; without a unit the caption alone.
std::string WithUnit(std::string_view caption, std::string_view unit);
std::string ColumnCaption(int column, std::string_view unit);

}  // namespace vrx
