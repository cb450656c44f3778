#pragma once

#include <QColor>
#include <QIcon>
#include <QPalette>
#include <QSize>
#include <QString>
#include <QSvgRenderer>
#include <QWidget>
#include <string_view>

#include "platform/operator.h"

namespace vrx {

// How far two opaque colours stand apart, from 1 to 21 as the accessibility guidelines reckon it.
double ContrastRatio(const QColor& one, const QColor& other);

// What small text needs, and what lines of a drawing need.
inline constexpr double kTextContrast = 4.5;
inline constexpr double kGraphicsContrast = 3.0;

// The colour as it is where it can be read on the background, else the nearest lightness of the
// same hue that can.
QColor Readable(const QColor& color, const QColor& background, double contrast);

// The told colours of the status line: as they are on a light background, and as they can be read
// on a dark one.
QColor StatusTextColor(StatusColor color, const QColor& background);

// A palette whose hints in empty fields can be read: some desktops tell the colours of a dark look
// but for these, which then stay those of a light one. Nothing else of it is set.
QPalette WithReadableHints(QPalette palette);

// An icon of data/icons by its file's name without extension. Drawn anew for each size and scale,
// in the colours of the application's present palette: what the drawing has in black takes the text
// colour of buttons, what it has in royal blue that of a selection.
//
// The drawings are 24 pixels square, their lines 2 wide with their edges on even pixels, so that
// they stay sharp when everything is drawn half as large again.
QIcon SvgIcon(std::string_view name);

// A drawing, sharp at every scale of the screen.
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
