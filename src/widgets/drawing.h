#pragma once

#include <QColor>
#include <QPalette>

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

}  // namespace vrx
