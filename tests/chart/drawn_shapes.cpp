#include "chart/drawn_shapes.h"

#include <QPainterPath>
#include <variant>

namespace vrx::testing {

std::vector<std::string> TextsOf(const Picture& picture) {
  std::vector<std::string> texts;
  for (const Shape& shape : picture.shapes) {
    if (const auto* text = std::get_if<TextShape>(&shape.what)) {
      texts.push_back(text->text.toStdString());
    }
  }
  return texts;
}

std::vector<QPointF> SymbolsOf(const Picture& picture, Symbol symbol, Ink ink) {
  std::vector<QPointF> all;
  for (const Shape& shape : picture.shapes) {
    const auto* dots = std::get_if<DotsShape>(&shape.what);
    if (shape.layer == Layer::kMark && dots != nullptr && dots->symbol == symbol &&
        dots->ink == ink) {
      all.insert(all.end(), dots->at.begin(), dots->at.end());
    }
  }
  return all;
}

std::vector<QRectF> BoxesOf(const Picture& picture, Ink ink) {
  std::vector<QRectF> boxes;
  for (const Shape& shape : picture.shapes) {
    const auto* path = std::get_if<PathShape>(&shape.what);
    if (shape.layer == Layer::kMark && path != nullptr && path->fill == ink) {
      for (const QPolygonF& polygon : path->path.toSubpathPolygons()) {
        boxes.push_back(polygon.boundingRect());
      }
    }
  }
  return boxes;
}

QRectF ExtentOf(const Shape& shape) {
  if (const auto* text = std::get_if<TextShape>(&shape.what)) {
    return text->box;
  }
  if (const auto* path = std::get_if<PathShape>(&shape.what)) {
    const double half = path->line ? path->width / 2 : 0;
    return path->path.boundingRect().adjusted(-half, -half, half, half);
  }
  const auto& dots = std::get<DotsShape>(shape.what);
  QRectF extent;
  const double half = dots.size / 2;
  for (const QPointF& at : dots.at) {
    extent = extent.united(QRectF(at.x() - half, at.y() - half, dots.size, dots.size));
  }
  return extent;
}

}  // namespace vrx::testing
