#pragma once

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QRect>
#include <QSize>
#include <QString>
#include <QSvgRenderer>
#include <QWidget>
#include <string_view>

#include "platform/operator.h"

namespace vrx {

// The contrast ratio of two opaque colors, from 1 to 21, as defined by the accessibility
// guidelines.
double ContrastRatio(const QColor& one, const QColor& other);

// The minimum for small text, and for lines of a drawing.
inline constexpr double kTextContrast = 4.5;
inline constexpr double kGraphicsContrast = 3.0;

// The color itself if it is readable on the background, otherwise the same hue with the nearest
// readable lightness.
QColor Readable(const QColor& color, const QColor& background, double contrast);

// The specified colors of the status line, as far as they are readable on the background.
QColor StatusTextColor(StatusColor color, const QColor& background);

// The palette with a contrast of 4.5 for every text: some desktops have a selection that is as
// light as its text, or a dark theme without a color for hints, which then remains that of a light
// one. Sets no color that can be read.
QPalette WithReadableTexts(QPalette palette);

// Frames the current cell of a grid, in a color that is readable on the cell's background: thick in
// the grid that has the focus, thin in another one.
void PaintCurrentCell(QPainter& painter, const QRect& cell, const QColor& background,
                      bool has_focus);

// An icon of data/icons by its file name without extension. Rendered for each size and scale in the
// colors of the current palette: black becomes the text color of buttons, royal blue the color of a
// selection.
//
// The drawings are 24 pixels square. Their lines are 2 wide with edges on even pixels, so they stay
// sharp at a scale of 1.5.
QIcon SvgIcon(std::string_view name);

// An SVG drawing, sharp at every scale of the screen.
class SvgImage : public QWidget {
  Q_OBJECT

 public:
  // `size` in logical pixels.
  SvgImage(const QString& path, QSize size, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QSvgRenderer renderer_;
};

}  // namespace vrx
