#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <string>
#include <vector>

#include "chart/picture.h"

namespace vrx::testing {

inline constexpr QSizeF kPictureSize(600, 300);

// All texts of a picture, in the order in which they are drawn.
std::vector<std::string> TextsOf(const Picture& picture);

// The symbols of one ink and kind.
std::vector<QPointF> SymbolsOf(const Picture& picture, Symbol symbol, Ink ink);

// The boxes of the marks that one ink fills.
std::vector<QRectF> BoxesOf(const Picture& picture, Ink ink);

// What a shape covers, with the width of its lines.
QRectF ExtentOf(const Shape& shape);

}  // namespace vrx::testing
