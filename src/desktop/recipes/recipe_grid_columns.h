#pragma once

#include <QHeaderView>
#include <array>
#include <vector>

#include "feed/recipe_columns.h"

// The columns of `grdREC` in the order in which they stand on the screen, which the operator may
// change.
namespace vrx {

// Shows the columns of a recipe that is entered that way; of one by percentage the share comes next
// to the ingredient.
void ShowRecipeColumns(QHeaderView& header, LineEntry entry);

// The columns that a recipe entered that way shows, from left to right, while the header shows
// those of one entered as `shown`. Changes nothing.
std::vector<int> ColumnsInSight(const QHeaderView& header, LineEntry shown, LineEntry entry);

// Widths by RecipeColumn, in logical pixels.
using RecipeColumnWidths = std::array<int, kRecipeColumnCount>;

// Gives every caption its room, and at least the width in `least`; the column of the ingredient
// gets what is left of `width`.
void FitRecipeColumns(QHeaderView& header, int width, const RecipeColumnWidths& least);

// Of the columns to be seen, to the left (-1) or to the right (1); the column itself where it is
// the last one that way.
int NextColumn(const QHeaderView& header, int column, int step);
int EdgeColumn(const QHeaderView& header, int column, int step);

// Those that lines are entered by, from left to right.
std::vector<int> EnteredColumns(const QHeaderView& header, LineEntry entry);

}  // namespace vrx
