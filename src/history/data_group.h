#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace vrx {

inline constexpr int kDataGroupCount = 13;

// How a group treats the ingredient columns and `Ing% Of Batch`.
enum class IngredientColumns { kHidden, kShown, kShownWithoutPercent };

// Columns that mean nothing on the rows of a group level and are blanked there.
struct BlankedColumns {
  int depth;
  std::vector<int> columns;
  bool ingredient_columns;  // 13 to 112 as well
};

// One of the 13 fixed views of the transactions: the choice of `lstGroupBy`. The grid, the printed
// page and the exports all go by this table. Columns are named by their keys.
struct DataGroup {
  int index;
  std::string_view item;                 // in the list
  std::string_view type;                 // only rows of this `Type`; empty: of every type
  std::string_view named_column;         // picked by name: only rows with that name; else empty
  std::vector<std::string_view> levels;  // from the outside in
  std::vector<std::string_view> order;   // the columns at positions 1, 2, 3 on
  std::vector<std::string_view> hidden;
  std::string_view total_column;  // where a total row says "Total:"; empty: nowhere
  IngredientColumns ingredient_columns;
  std::vector<BlankedColumns> blanked;
  std::string_view stylesheet;  // of its XML, in the folder XSL
};

// By index, 0 to 12.
std::span<const DataGroup> DataGroups();

// nullptr for an index that is none.
const DataGroup* FindDataGroup(int index);

// Whether a column means nothing on the rows of that depth.
bool IsBlanked(const DataGroup& group, int depth, int column);

}  // namespace vrx
