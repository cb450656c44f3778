#pragma once

#include <QPainterPath>
#include <QRectF>
#include <vector>

namespace vrx {

// Years of days are more shapes than a picture has columns. Shapes that would cover each other are
// left out, so that the time to draw depends on the width of the picture and not on the days.

// A path of lines from left to right, without the points that are hidden in their column: its
// highest and its lowest point remain. A gap within a column is closed.
[[nodiscard]] QPainterPath ThinnedLine(const QPainterPath& path);

// The same for a dashed line, which takes longer to draw and is not recognized where it goes up and
// down in a column: of each wide column, the first point remains.
[[nodiscard]] QPainterPath SampledLine(const QPainterPath& path);

// Boxes from left to right, of which those narrower than a column become one with the others that
// begin in it. It spans their whole height if `highest`, otherwise only what they have in common.
[[nodiscard]] std::vector<QRectF> ThinnedBoxes(const std::vector<QRectF>& boxes, bool highest);

}  // namespace vrx
