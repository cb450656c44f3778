#include "chart/picture.h"

#include <QPen>
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <limits>

namespace vrx {
namespace {

double DistanceTo(const QRectF& area, QPointF point) {
  const double x = std::max({area.left() - point.x(), 0.0, point.x() - area.right()});
  const double y = std::max({area.top() - point.y(), 0.0, point.y() - area.bottom()});
  return std::hypot(x, y);
}

double DistanceToMiddle(const QRectF& area, QPointF point) {
  return std::hypot(area.center().x() - point.x(), area.center().y() - point.y());
}

class Painting {
 public:
  Painting(QPainter& painter, const Look& look) : painter_(painter), look_(look) {}

  void operator()(const PathShape& shape) const {
    if (shape.fill) {
      QColor color = ColorOf(*shape.fill, look_.dark);
      color.setAlphaF(static_cast<float>(shape.opacity));
      FillInPieces(shape.path, color);
    }
    if (shape.line) {
      QPen pen(ColorOf(*shape.line, look_.dark), shape.width);
      pen.setJoinStyle(Qt::RoundJoin);
      if (shape.dashed) {
        pen.setDashPattern({5, 3});
      }
      const bool is_long = shape.path.elementCount() > kLongPath;
      pen.setCapStyle(is_long ? Qt::RoundCap : Qt::FlatCap);
      is_long && !shape.dashed ? StrokeInPieces(shape.path, pen)
                               : painter_.strokePath(shape.path, pen);
    }
  }

  void operator()(const DotsShape& shape) const {
    const QColor color = ColorOf(shape.ink, look_.dark);
    const double half = shape.size / 2;
    painter_.setPen(shape.symbol == Symbol::kCross ? QPen(color, 1.5) : QPen(Qt::NoPen));
    painter_.setBrush(color);
    for (const QPointF& at : shape.at) {
      switch (shape.symbol) {
        case Symbol::kDot:
          painter_.drawEllipse(at, half, half);
          break;
        case Symbol::kDiamond:
          painter_.drawConvexPolygon(QPolygonF({at + QPointF(0, -half), at + QPointF(half, 0),
                                                at + QPointF(0, half), at + QPointF(-half, 0)}));
          break;
        case Symbol::kSquare:
          painter_.fillRect(QRectF(at.x() - half, at.y() - half, shape.size, shape.size), color);
          break;
        case Symbol::kCross:
          painter_.drawLine(at + QPointF(-half, -half), at + QPointF(half, half));
          painter_.drawLine(at + QPointF(-half, half), at + QPointF(half, -half));
          break;
      }
    }
  }

  void operator()(const TextShape& shape) const {
    painter_.setFont(FontOf(look_, shape.letters));
    painter_.setPen(ColorOf(shape.ink, look_.dark));
    painter_.drawText(QPointF(shape.box.left(), shape.at.y()), shape.text);
  }

 private:
  // Elements of a path. A longer one is drawn in pieces: the time grows faster than its length.
  static constexpr int kLongPath = 16;
  static constexpr int kPieceOfLine = 4;

  void StrokeInPieces(const QPainterPath& path, const QPen& pen) const {
    QPainterPath piece;
    for (int i = 0; i < path.elementCount(); ++i) {
      const QPainterPath::Element element = path.elementAt(i);
      if (element.isMoveTo()) {
        piece.moveTo(element);
        continue;
      }
      piece.lineTo(element);
      if (piece.elementCount() >= kPieceOfLine) {
        painter_.strokePath(piece, pen);
        piece = QPainterPath(element);
      }
    }
    painter_.strokePath(piece, pen);
  }

  // A piece has whole parts.
  void FillInPieces(const QPainterPath& path, const QColor& color) const {
    QPainterPath piece;
    for (int i = 0; i < path.elementCount(); ++i) {
      const QPainterPath::Element element = path.elementAt(i);
      if (!element.isMoveTo()) {
        piece.lineTo(element);
        continue;
      }
      if (piece.elementCount() >= kLongPath) {
        painter_.fillPath(piece, color);
        piece = QPainterPath();
      }
      piece.moveTo(element);
    }
    painter_.fillPath(piece, color);
  }

  QPainter& painter_;
  const Look& look_;
};

}  // namespace

std::optional<Hit> HitAt(const Picture& picture, QPointF point, double reach) {
  std::optional<Hit> nearest;
  std::pair<double, double> least{reach, std::numeric_limits<double>::infinity()};
  for (const Hit& hit : picture.hits) {
    const std::pair here{DistanceTo(hit.area, point), DistanceToMiddle(hit.area, point)};
    if (here < least) {
      least = here;
      nearest = hit;
    }
  }
  return nearest;
}

void Paint(QPainter& painter, const Picture& picture, const Look& look) {
  painter.save();
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  painter.fillRect(QRectF({0, 0}, picture.size), ColorOf(Ink::kPaper, look.dark));
  for (const Shape& shape : picture.shapes) {
    std::visit(Painting(painter, look), shape.what);
  }
  painter.restore();
}

}  // namespace vrx
