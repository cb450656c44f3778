#pragma once

#include <QPainter>
#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "chart/look.h"

namespace vrx {

// A picture is a list of shapes in units of its own. Laid out once, it is painted on a screen, a
// printer or a PDF file, or written as SVG, with the same lines and texts everywhere.

struct PathShape {
  QPainterPath path = {};  // straight lines only
  std::optional<Ink> fill = {};
  double opacity = 1;  // of the fill
  std::optional<Ink> line = {};
  double width = 1;
  bool dashed = false;
};

enum class Symbol { kDot, kDiamond, kSquare, kCross };

struct DotsShape {
  std::vector<QPointF> at = {};
  Symbol symbol = Symbol::kDot;
  double size = 4;  // width and height of a symbol
  Ink ink = Ink::kFirst;
};

enum class Anchor { kStart, kMiddle, kEnd };

struct TextShape {
  QPointF at = {};  // on the base line
  Anchor anchor = Anchor::kStart;
  QString text = {};
  Letters letters = Letters::kMarks;
  Ink ink = Ink::kText;
  QRectF box = {};  // what the text takes
};

// What is around the marks; the marks, which lie within the plot; texts on marks.
enum class Layer { kFrame, kMark };

// NOLINTNEXTLINE(bugprone-exception-escape): moving the shapes does not throw
struct Shape {
  Layer layer = Layer::kFrame;
  std::variant<PathShape, DotsShape, TextShape> what = {};
};

// A mark that stands for entries of the chart's input.
struct Hit {
  QRectF area = {};
  std::size_t index = 0;  // in the list that the chart names; the most remarkable of several
  std::size_t count = 1;  // entries that this mark stands for
};

struct Picture {
  QSizeF size = {};
  QRectF plot = {};  // empty if there is nothing to show
  QString title = {};
  std::vector<Shape> shapes = {};
  std::vector<Hit> hits = {};
};

// The mark at a point, or the nearest one within `reach`.
[[nodiscard]] std::optional<Hit> HitAt(const Picture& picture, QPointF point, double reach = 6);

// Paints the picture with its upper left corner at the painter's origin. A device with another
// resolution is scaled by the caller. The look has the family and size that the picture was laid
// out with; it may be dark or light.
void Paint(QPainter& painter, const Picture& picture, const Look& look);

enum class SvgUse { kFile, kInPage };

// The picture as SVG without script and without references. The attributes have the colors of the
// light look and each element names its inks as classes. A file has a ground of its own and
// the style for dark screens; in a page the ground is the page's, and the page has SvgStyle() once.
[[nodiscard]] std::string SvgText(const Picture& picture, const Look& look, SvgUse use);

// A text as the contents of an element or attribute of SVG and HTML. Characters that XML does not
// have become U+FFFD.
[[nodiscard]] std::string MarkupText(const QString& text);

// The rules of CSS that make pictures dark on a dark screen, and light in print.
[[nodiscard]] std::string SvgStyle();

}  // namespace vrx
