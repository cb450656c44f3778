#include "desktop/history/history_painting.h"

#include <cstddef>

#include "widgets/drawing.h"
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

// A told colour stays on a light background, however faint it is there.
QColor ToldOn(const QColor& told, const QColor& back) {
  return IsDark(back) ? Readable(told, back, kTextContrast) : told;
}

QColor SystemOn(const QColor& text, const QColor& back) {
  if (ContrastRatio(text, back) >= kTextContrast) {
    return text;
  }
  return IsDark(back) ? Qt::white : Qt::black;
}

QColor TextOn(FormatStyle style, const StyleColor& told, const QColor& color, const QColor& back) {
  if (style == FormatStyle::kSelectedRow) {
    return color;
  }
  return told.system ? SystemOn(color, back) : ToldOn(color, back);
}

QColor ColorOf(const QPalette& palette, const StyleColor& color) {
  return color.system ? palette.color(RoleOf(*color.system)) : QColor(QRgb{color.rgb});
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
  return ToldOn(QColor(kHeaderColor), palette.color(QPalette::Button));
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
  const FormatStyleLook& told = LookOf(style);
  if (told.back) {
    look.back = ColorOf(palette, *told.back);
  }
  const StyleColor text = told.text.value_or(StyleColor{.system = SystemColor::kWindowText});
  look.text = TextOn(style, text, ColorOf(palette, text), look.back);
  if (!told.font.empty()) {
    look.font.setFamily(ToQString(told.font));
  }
  if (told.points > 0) {
    look.font.setPointSizeF(told.points);
  }
  if (told.bold) {
    look.font.setBold(true);
  }
  return look;
}

}  // namespace vrx
