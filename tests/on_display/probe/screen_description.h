#pragma once

#include <QJsonObject>

namespace vrx::testing {

// All visible widgets of the program, each as
//   name, class, text, window (the title of its window), modal (whether a dialog blocks it),
//   enabled, focus, checked, x, y, width, height,
// with the parts it has:
//   items: what can be clicked in a menu, a menu bar, a tab strip or a header, and the texts of a
//     combo box; each with text, enabled, checked and its place;
//   cells: the visible cells of a list or a grid, each with row, column, text, current and its
//   place; rows, columns: the size of the whole list or grid.
// Places are pixels of the display.
QJsonObject DescribeScreen();

}  // namespace vrx::testing
