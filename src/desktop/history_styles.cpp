#include "desktop/history_styles.h"

#include "desktop/contrast.h"
#include "desktop/qt_text.h"

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

}  // namespace

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

HistoryLook HistoryStyles::Row(HistoryRowKind kind, std::int64_t row, bool selected) const {
  HistoryLook look{.text = {}, .back = {}, .font = CellFont()};
  look = Over(FormatStyle::kDefault, look);
  look = Over(RowStyle(kind, row), look);
  return selected ? Over(FormatStyle::kSelectedRow, look) : look;
}

HistoryLook HistoryStyles::Cell(HistoryRowKind kind, int column, const HistoryLook& row,
                                bool selected) const {
  const auto style = CellStyle(kind, column);
  if (!style) {
    return row;
  }
  const HistoryLook look = Over(*style, row);
  return selected ? Over(FormatStyle::kSelectedRow, look) : look;
}

HistoryLook HistoryStyles::Over(FormatStyle style, HistoryLook look) const {
  const FormatStyleLook& told = LookOf(style);
  if (told.back) {
    look.back = ColorOf(*told.back);
  }
  const StyleColor text = told.text.value_or(StyleColor{.system = SystemColor::kWindowText});
  look.text = TextOn(style, text, ColorOf(text), look.back);
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

QColor HistoryStyles::ColorOf(const StyleColor& color) const {
  return color.system ? palette_.color(RoleOf(*color.system)) : QColor(QRgb{color.rgb});
}

}  // namespace vrx
