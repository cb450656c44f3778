#include "desktop/history/history_painting.h"

#include <QFontMetrics>
#include <QStyle>
#include <QStyleOption>
#include <QWidget>
#include <algorithm>
#include <cstddef>

#include "desktop/dialogs/about_and_splash.h"
#include "history/columns.h"
#include "widgets/drawing.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

constexpr double kHeaderPoints = 9.75;
constexpr QRgb kHeaderColor = 0xFF0000C0;

QPalette::ColorRole RoleOf(SystemColor color) {
  switch (color) {
    case SystemColor::kHighlight:
      return QPalette::Highlight;
    case SystemColor::kHighlightText:
      return QPalette::HighlightedText;
    case SystemColor::kWindow:
      return QPalette::Base;
    case SystemColor::kInfoBack:
      return QPalette::ToolTipBase;
    case SystemColor::kWindowText:
      break;
  }
  return QPalette::Text;
}

bool IsDark(const QColor& back) {
  return ContrastRatio(Qt::white, back) > ContrastRatio(Qt::black, back);
}

QColor SystemOn(const QColor& text, const QColor& back) {
  if (ContrastRatio(text, back) >= kTextContrast) {
    return text;
  }
  return IsDark(back) ? Qt::white : Qt::black;
}

QColor TextOn(FormatStyle style, const StyleColor& specified, const QColor& color,
              const QColor& back) {
  if (style == FormatStyle::kSelectedRow) {
    return color;
  }
  return specified.system ? SystemOn(color, back) : Readable(color, back, kTextContrast);
}

QColor ColorOf(const QPalette& palette, const StyleColor& color) {
  return color.system ? palette.color(RoleOf(*color.system)) : QColor(QRgb{color.rgb});
}

constexpr int kIndent = 2 * kSpacing;  // a level of groups
constexpr int kMarkSize = 2 * kSpacing;

QColor Between(const QColor& one, const QColor& other) {
  return QColor::fromRgbF((one.redF() + 3 * other.redF()) / 4,
                          (one.greenF() + 3 * other.greenF()) / 4,
                          (one.blueF() + 3 * other.blueF()) / 4);
}

// Draws a number that is slightly wider than its column narrower, so that a total loses no digit.
// In a column that the operator made much narrower, a number is elided.
bool DrawNarrower(QPainter& painter, const QRect& room, int width, int baseline,
                  const QString& text) {
  constexpr double kLeastScale = 0.65;
  const double scale = static_cast<double>(room.width()) / width;
  if (scale < kLeastScale) {
    return false;
  }
  painter.save();
  painter.translate(room.left(), baseline);
  painter.scale(scale, 1);
  painter.drawText(0, 0, text);
  painter.restore();
  return true;
}

// Centers the text vertically. Layout within a rectangle would take twice the time.
void DrawText(QPainter& painter, const QRect& room, bool right, QString text,
              const HistoryLook& look) {
  painter.setFont(look.font);
  painter.setPen(look.text);
  const QFontMetrics metrics = painter.fontMetrics();
  const int baseline = room.top() + (room.height() + metrics.ascent() - metrics.descent() + 1) / 2;
  int left = room.left();
  const bool surely_fits = text.size() * metrics.maxWidth() <= room.width();
  if (right || !surely_fits) {
    const int width = metrics.horizontalAdvance(text);
    if (width > room.width()) {
      if (right && DrawNarrower(painter, room, width, baseline, text)) {
        return;
      }
      text = metrics.elidedText(text, Qt::ElideRight, room.width());
    } else if (right) {
      left += room.width() - width;
    }
  }
  painter.drawText(left, baseline, text);
}

void DrawCell(QPainter& painter, const ShownRow& row, const ColumnSpan& span, const QRect& cell,
              const HistoryLook& look) {
  const std::string& text = row.cells.at(static_cast<std::size_t>(span.column) - 1);
  if (!text.empty()) {
    DrawText(painter, cell.adjusted(kHistoryMargin, 0, -kHistoryMargin, 0),
             HistoryColumnAt(span.column).right_aligned, ToQString(text), look);
  }
}

}  // namespace

HistoryStyles::HistoryStyles(const QPalette& palette) {
  const HistoryLook usual =
      Over(palette, FormatStyle::kDefault, {.text = {}, .back = {}, .font = CellFont()});
  for (std::size_t i = 0; i < looks_.size(); ++i) {
    looks_.at(i) = Over(palette, static_cast<FormatStyle>(i), usual);
    selected_.at(i) = Over(palette, FormatStyle::kSelectedRow, looks_.at(i));
  }
}

QFont HistoryStyles::CellFont() {
  const FormatStyleLook& look = LookOf(FormatStyle::kDefault);
  QFont font(ToQString(look.font));
  font.setStyleHint(QFont::Monospace);
  font.setPointSizeF(look.points);
  return font;
}

QFont HistoryStyles::HeaderFont() {
  QFont font(QStringLiteral("Arial"));
  font.setStyleHint(QFont::SansSerif);
  font.setPointSizeF(kHeaderPoints);
  font.setBold(true);
  return font;
}

QColor HistoryStyles::HeaderColor(const QPalette& palette) {
  return Readable(QColor(kHeaderColor), palette.color(QPalette::Button), kTextContrast);
}

const HistoryLook& HistoryStyles::Row(HistoryRowKind kind, std::int64_t row, bool selected) const {
  return (selected ? selected_ : looks_).at(static_cast<std::size_t>(RowStyle(kind, row)));
}

const HistoryLook& HistoryStyles::Cell(HistoryRowKind kind, int column, std::int64_t row,
                                       bool selected) const {
  const auto style = CellStyle(kind, column);
  return style ? (selected ? selected_ : looks_).at(static_cast<std::size_t>(*style))
               : Row(kind, row, selected);
}

HistoryLook HistoryStyles::Over(const QPalette& palette, FormatStyle style, HistoryLook look) {
  const FormatStyleLook& specified = LookOf(style);
  if (specified.back) {
    look.back = ColorOf(palette, *specified.back);
  }
  const StyleColor text = specified.text.value_or(StyleColor{.system = SystemColor::kWindowText});
  look.text = TextOn(style, text, ColorOf(palette, text), look.back);
  if (!specified.font.empty()) {
    look.font.setFamily(ToQString(specified.font));
  }
  if (specified.points > 0) {
    look.font.setPointSizeF(specified.points);
  }
  if (specified.bold) {
    look.font.setBold(true);
  }
  return look;
}

HistoryRowPainter::HistoryRowPainter(const QWidget& view, bool captions)
    : view_(view),
      styles_(view.palette()),
      line_(Between(view.palette().color(QPalette::Text), view.palette().color(QPalette::Mid))),
      captions_(captions) {
  line_.setAlphaF(0.35F);
}

QRect HistoryRowPainter::MarkOf(int depth, const QRect& line) {
  const int left = line.left() + kHistoryMargin + (depth - 1) * kIndent;
  return {left, line.center().y() - kMarkSize / 2, kMarkSize, kMarkSize};
}

void HistoryRowPainter::Paint(QPainter& painter, const ShownRow& row, std::int64_t number,
                              const QRect& area, const std::vector<ColumnSpan>& columns,
                              bool selected) const {
  const HistoryLook& look = styles_.Row(row.kind, number, selected);
  painter.fillRect(area, look.back);
  if (row.kind == HistoryRowKind::kGroup) {
    PaintGroup(painter, row, area, columns, look, selected);
  } else {
    for (const ColumnSpan& span : columns) {
      const QRect cell{span.left, area.top(), span.width, area.height()};
      const HistoryLook& own = styles_.Cell(row.kind, span.column, number, selected);
      if (own.back != look.back) {
        painter.fillRect(cell, own.back);
      }
      if (row.IsMarked(span.column)) {
        HistoryLook marked = own;
        marked.font.setBold(true);
        DrawCell(painter, row, span, cell, marked);
      } else {
        DrawCell(painter, row, span, cell, own);
      }
      painter.setPen(line_);
      painter.drawLine(cell.topRight(), cell.bottomRight());
    }
  }
  painter.setPen(line_);
  painter.drawLine(area.bottomLeft(), area.bottomRight());
}

void HistoryRowPainter::PaintGroup(QPainter& painter, const ShownRow& row, const QRect& area,
                                   const std::vector<ColumnSpan>& columns, const HistoryLook& look,
                                   bool selected) const {
  QStyleOption mark;
  mark.initFrom(&view_);
  mark.rect = MarkOf(row.depth, area);
  mark.state |= QStyle::State_Children;
  mark.state.setFlag(QStyle::State_Open, row.open);
  mark.palette.setColor(QPalette::Text, look.text);
  mark.palette.setColor(QPalette::WindowText, look.text);
  view_.style()->drawPrimitive(QStyle::PE_IndicatorBranch, &mark, &painter, &view_);
  const QRect room = area.adjusted(mark.rect.right() + 1 + kHistoryMargin - area.left(), 0, 0, 0);
  DrawText(painter, room, false, ToQString(row.caption), look);
  if (!row.totals.empty()) {
    HistoryLook totals = look;
    if (!selected) {
      totals.text = Readable(Between(look.text, look.back), look.back, kTextContrast);
    }
    const int captioned = QFontMetrics(look.font).horizontalAdvance(ToQString(row.caption));
    PaintTotals(painter, row, room.adjusted(captioned + 2 * kSpacing, 0, -kHistoryMargin, 0),
                columns, totals);
  }
}

// Below their headers the figures are in their columns. Without headers, or where the group's own
// caption is in the way, they have captions of their own.
void HistoryRowPainter::PaintTotals(QPainter& painter, const ShownRow& row, const QRect& area,
                                    const std::vector<ColumnSpan>& columns,
                                    const HistoryLook& look) const {
  const QFontMetrics metrics(look.font);
  const bool in_columns =
      captions_ && std::all_of(columns.begin(), columns.end(), [&](const ColumnSpan& span) {
        const std::string& figure = row.cells.at(static_cast<std::size_t>(span.column) - 1);
        return figure.empty() || span.left + span.width - kHistoryMargin -
                                         metrics.horizontalAdvance(ToQString(figure)) >=
                                     area.left();
      });
  if (!in_columns) {
    DrawText(painter, area, false, ToQString(row.totals), look);
    return;
  }
  for (const ColumnSpan& span : columns) {
    HistoryLook figure = look;
    figure.font.setBold(row.IsMarked(span.column));
    DrawCell(painter, row, span, {span.left, area.top(), span.width, area.height()}, figure);
  }
}

}  // namespace vrx
