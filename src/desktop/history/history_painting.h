#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPalette>
#include <QRect>
#include <array>
#include <cstdint>
#include <vector>

#include "history/row_format.h"

namespace vrx {

// On both sides of the text of a cell or a caption, in logical pixels.
inline constexpr int kHistoryMargin = 6;

// How a cell is drawn.
struct HistoryLook {
  QColor text;
  QColor back;
  QFont font;
};

// The format styles of the history grid in the colors of a palette. The color of an unreadable text
// changes, except in the palette's own selection.
class HistoryStyles {
 public:
  explicit HistoryStyles(const QPalette& palette);

  // The font of rows and header, on which the other styles are based.
  static QFont CellFont();
  static QFont HeaderFont();
  static QColor HeaderColor(const QPalette& palette);

  // `row` counts from 1; `selected` for the current row.
  [[nodiscard]] const HistoryLook& Row(HistoryRowKind kind, std::int64_t row, bool selected) const;

  // The style of a cell of that column in such a row.
  [[nodiscard]] const HistoryLook& Cell(HistoryRowKind kind, int column, std::int64_t row,
                                        bool selected) const;

 private:
  using Looks = std::array<HistoryLook, 9>;  // by FormatStyle

  static HistoryLook Over(const QPalette& palette, FormatStyle style, HistoryLook look);

  Looks looks_;
  Looks selected_;
};

// A column on the screen.
struct ColumnSpan {
  int column;
  int left;
  int width;
};

// Draws the rows of the history grid over the whole width of the view.
class HistoryRowPainter {
 public:
  // The view provides style and palette and outlives the object. `captions`: the columns have their
  // headers above.
  explicit HistoryRowPainter(const QWidget& view, bool captions = true);

  // `number` counts from 1, `row` is its text, `area` the view's whole line.
  void Paint(QPainter& painter, const ShownRow& row, std::int64_t number, const QRect& area,
             const std::vector<ColumnSpan>& columns, bool selected) const;

  // The mark that opens and closes a group, within the rectangle of its line.
  static QRect MarkOf(int depth, const QRect& line);

 private:
  void PaintGroup(QPainter& painter, const ShownRow& row, const QRect& area,
                  const std::vector<ColumnSpan>& columns, const HistoryLook& look,
                  bool selected) const;
  void PaintTotals(QPainter& painter, const ShownRow& row, const QRect& area,
                   const std::vector<ColumnSpan>& columns, const HistoryLook& look) const;

  const QWidget& view_;
  HistoryStyles styles_;
  QColor line_;
  bool captions_;
};

}  // namespace vrx
