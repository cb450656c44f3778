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

// Cells of a recipe line that the operator enters. All others are computed.
enum class LineColumn {
  kIngredient,         // chosen from the list of ingredients in use, never typed
  kTarget,             // dry-matter weight: digits, at most 6
  kIngredientPercent,  // 0 to 100, at most two decimals
};

// "Ingredient", "Target", "Ingredient%"
[[nodiscard]] std::string_view LineColumnName(LineColumn column);

// Filters a key in a cell that contains `text`; returns 0 to drop it.
[[nodiscard]] int FilterLineKey(LineColumn column, std::string_view text, int key);

// A key that the operator types into such a cell: every decimal key types a point.
struct LineKey {
  int code = 0;                   // 0 for a dropped key
  std::string_view refusal = {};  // why it is dropped: "Only one decimal point"
};
[[nodiscard]] LineKey TypeLineKey(LineColumn column, std::string_view text, int key);

// `Ingredient%` with two decimals. Returns a text that is not a number unchanged.
[[nodiscard]] std::string PercentText(std::string_view cell);

// Text of an empty cell after `typed` was typed into it key by key; a percentage gets two decimals.
// Throws FieldRefusal if the grid would drop a key.
std::string EnterLineCell(LineColumn column, std::string_view typed);

// Columns of `grdREC`, in the order of a recipe by weight.
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
  kReadOnly,  // copied from the ingredient
  kComputed,
};

struct RecipeColumnRow {
  std::string_view key;
  std::string_view caption;
  bool has_unit;  // the caption includes the weight unit
  CellRole role;
  std::string RecipeLineRecord::*cell;  // nullptr for `HandAdd`, which is not a text
  const char* total_label = nullptr;
  std::string TotalsRow::*total = nullptr;
  std::optional<LineColumn> entered_as = std::nullopt;
};

// Indexed by RecipeColumn.
[[nodiscard]] std::span<const RecipeColumnRow> RecipeColumns();

// A recipe by percent shows `Ingredient%` instead of `Target` and `Ration%`.
[[nodiscard]] bool IsColumnShown(int column, LineEntry entry);

// The column for entering weights or percentages. It is next to the ingredient.
[[nodiscard]] int EnteredColumn(LineEntry entry);

// Text of a line in a column: the ID of its ingredient, "Yes" or "No" for `HandAdd`, and
// `Ingredient%` with two decimals.
[[nodiscard]] std::string CellText(const RecipeLineRecord& line, int column);

// Why nothing can be entered in a column: "Computed from the other columns". Empty for a column of
// entries.
[[nodiscard]] std::string_view WhyClosed(int column);

// The shown columns from left to right.
[[nodiscard]] std::vector<int> ColumnsInSight(LineEntry entry);

// "Dry Matter (lb)"; the caption alone if `unit` is empty.
[[nodiscard]] std::string WithUnit(std::string_view caption, std::string_view unit);
[[nodiscard]] std::string ColumnCaption(int column, std::string_view unit);

}  // namespace vrx
