#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <cstdint>

#include "history/format_style.h"

namespace vrx {

// On both sides of the text of a cell or a caption, in logical pixels.
inline constexpr int kHistoryMargin = 4;

// How a cell is drawn.
struct HistoryLook {
  QColor text;
  QColor back;
  QFont font;
};

// The format styles of the history grid in the colours of a palette. Told colours stay as they are;
// a text that could not be read on what lies behind it gives way, but for a told colour on a light
// background and for the palette's own selection.
class HistoryStyles {
 public:
  explicit HistoryStyles(const QPalette& palette) : palette_(palette) {}

  // Of rows and header; the other looks build on them.
  static QFont CellFont();
  static QFont HeaderFont();
  static QColor HeaderColor(const QPalette& palette);

  // By its number from 1; `selected` for the row that the operator is on.
  HistoryLook Row(HistoryRowKind kind, std::int64_t row, bool selected) const;

  // Of a cell of that column, on a row that looks so. A selected row takes the colours from it.
  HistoryLook Cell(HistoryRowKind kind, int column, const HistoryLook& row, bool selected) const;

 private:
  HistoryLook Over(FormatStyle style, HistoryLook look) const;
  QColor ColorOf(const StyleColor& color) const;

  QPalette palette_;
};

}  // namespace vrx
