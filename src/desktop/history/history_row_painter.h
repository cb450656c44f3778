#pragma once

#include <QPainter>
#include <QRect>
#include <cstdint>
#include <vector>

#include "desktop/history/history_painting.h"
#include "history/row_format.h"

namespace vrx {

// A column on the screen.
struct ColumnSpan {
  int column;
  int left;
  int width;
};

// Draws the rows of the history grid, each over the whole width of the view.
class HistoryRowPainter {
 public:
  // The view gives style and palette and outlives the object.
  explicit HistoryRowPainter(const QWidget& view);

  // `number` counts from 1, `row` is its text, `area` the view's whole line.
  void Paint(QPainter& painter, const ShownRow& row, std::int64_t number, const QRect& area,
             const std::vector<ColumnSpan>& columns, bool selected) const;

  // The mark that opens and closes a group, in a line that begins at `line`.
  static QRect MarkOf(int depth, const QRect& line);

 private:
  void PaintGroup(QPainter& painter, const ShownRow& row, const QRect& area,
                  const HistoryLook& look) const;

  const QWidget& view_;
  HistoryStyles styles_;
  QColor line_;
};

}  // namespace vrx
