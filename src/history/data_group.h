#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace vrx {

inline constexpr int kDataGroupCount = 13;

// How a group treats the ingredient columns and `Ing% Of Batch`.
enum class IngredientColumns { kHidden, kShown, kShownWithoutPercent };

// Columns that have no meaning in the rows of a group level and are blank there.
struct BlankedColumns {
  int depth;
  std::vector<int> columns;
  bool ingredient_columns;  // 13 to 112 as well
};

// One of the 13 fixed views of the transactions, an item of `lstGroupBy`. The grid, the printed
// page and the exports all use this table. Columns are given by their keys.
struct DataGroup {
  int index;
  std::string_view item;                 // in the list
  std::string_view type;                 // only rows of this `Type`; empty: rows of every type
  std::string_view named_column;         // column of the picked name; empty if none is picked
  std::vector<std::string_view> levels;  // outermost first
  std::vector<std::string_view> order;   // columns from position 1 on
  std::vector<std::string_view> hidden;
  std::string_view total_column;  // has "Total:" in total rows; empty: none
  IngredientColumns ingredient_columns;
  std::vector<BlankedColumns> blanked;
  std::string_view stylesheet;  // for its XML export, in the folder XSL
};

// By index, 0 to 12.
[[nodiscard]] std::span<const DataGroup> DataGroups();

// nullptr for an invalid index.
[[nodiscard]] const DataGroup* FindDataGroup(int index);

}  // namespace vrx
