#pragma once

#include <QColor>
#include <QPalette>

#include "feed/recipe_columns.h"

namespace vrx {

// Within a cell and within a total below it, in logical pixels, between the edge and the text.
inline constexpr int kCellMargin = 6;

struct RecipeCellLook {
  QColor background;
  QColor text;
  QColor frame = {};  // of what looks like a field; invalid for none
};

// By the palette alone, but for the blue of what is computed. The row that the grid stands on is
// tinted by the colour of a selection.
RecipeCellLook LookOfCell(CellManner manner, bool current_row, const QPalette& palette);

}  // namespace vrx
