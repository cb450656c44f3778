#pragma once

#include <QHeaderView>
#include <array>
#include <vector>

#include "feed/recipe_columns.h"

// The columns of `grdREC` in their order on the screen, which the operator can change.
namespace vrx {

// Shows the columns for that way of entry. By percentage the share comes next to the ingredient.
void ShowRecipeColumns(QHeaderView& header, LineEntry entry);

// The columns that a recipe with that way of entry would show, from left to right, while the header
// shows those for `shown`.
std::vector<int> ColumnsInSight(const QHeaderView& header, LineEntry shown, LineEntry entry);

// Widths by RecipeColumn, in logical pixels.
using RecipeColumnWidths = std::array<int, kRecipeColumnCount>;

// Makes each column wide enough for its caption and for its width in `least`. The rest of `width`
// goes to the column of the ingredient up to `widest_ingredient`, then to all columns alike, so
// that a figure stays near its ingredient in a wide window.
void FitRecipeColumns(QHeaderView& header, int width, const RecipeColumnWidths& least,
                      int widest_ingredient);

// The next visible column to the left (-1) or to the right (1); the column itself if there is none.
int NextColumn(const QHeaderView& header, int column, int step);
int EdgeColumn(const QHeaderView& header, int column, int step);

// The columns for entering lines, from left to right.
std::vector<int> EnteredColumns(const QHeaderView& header, LineEntry entry);

}  // namespace vrx
