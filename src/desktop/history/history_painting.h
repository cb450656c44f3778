#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <array>
#include <cstdint>

#include "history/format_style.h"

namespace vrx {

// On both sides of the text of a cell or a caption, in logical pixels.
inline constexpr int kHistoryMargin = 6;

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
  explicit HistoryStyles(const QPalette& palette);

  // Of rows and header; the other looks build on them.
  static QFont CellFont();
  static QFont HeaderFont();
  static QColor HeaderColor(const QPalette& palette);

  // By its number from 1; `selected` for the row that the operator is on.
  const HistoryLook& Row(HistoryRowKind kind, std::int64_t row, bool selected) const;

  // Of a cell of that column, on such a row.
  const HistoryLook& Cell(HistoryRowKind kind, int column, std::int64_t row, bool selected) const;

 private:
  using Looks = std::array<HistoryLook, 9>;  // by FormatStyle

  static HistoryLook Over(const QPalette& palette, FormatStyle style, HistoryLook look);

  Looks looks_;
  Looks selected_;
};

}  // namespace vrx
