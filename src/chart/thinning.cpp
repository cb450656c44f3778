#include "chart/thinning.h"

#include <QPointF>
#include <algorithm>
#include <cmath>

namespace vrx {
namespace {

constexpr double kLineColumn = 1;  // a line is two units wide
constexpr double kDashedColumn = 4;
constexpr double kBoxColumn = 1;

// The points of a path in one column.
class LineColumn {
 public:
  LineColumn(const QPainterPath& path, int first) : path_(path), first_(first) {}

  void Take(int point) {
    highest_ = At(point).y() < At(highest_).y() ? point : highest_;
    lowest_ = At(point).y() > At(lowest_).y() ? point : lowest_;
  }

  void AddTo(QPainterPath& thinned) const {
    const auto [former, latter] = std::minmax(highest_, lowest_);
    path_.elementAt(first_).isMoveTo() ? thinned.moveTo(At(former)) : thinned.lineTo(At(former));
    if (latter != former) {
      thinned.lineTo(At(latter));
    }
  }

 private:
  [[nodiscard]] QPointF At(int point) const { return path_.elementAt(point); }

  const QPainterPath& path_;
  int first_;
  int highest_ = first_;
  int lowest_ = first_;
};

bool SharesColumn(const QPainterPath& path, int first, int next, double width) {
  return next < path.elementCount() &&
         std::floor(path.elementAt(next).x / width) == std::floor(path.elementAt(first).x / width);
}

}  // namespace

QPainterPath ThinnedLine(const QPainterPath& path) {
  QPainterPath thinned;
  for (int first = 0, next = 0; first < path.elementCount(); first = next) {
    LineColumn column(path, first);
    for (next = first + 1; SharesColumn(path, first, next, kLineColumn); ++next) {
      column.Take(next);
    }
    column.AddTo(thinned);
  }
  return thinned;
}

QPainterPath SampledLine(const QPainterPath& path) {
  if (ThinnedLine(path).elementCount() == path.elementCount()) {
    return path;
  }
  QPainterPath sampled;
  for (int first = 0, next = 0; first < path.elementCount(); first = next) {
    LineColumn(path, first).AddTo(sampled);
    next = first + 1;
    while (SharesColumn(path, first, next, kDashedColumn)) {
      ++next;
    }
  }
  return sampled;
}

std::vector<QRectF> ThinnedBoxes(const std::vector<QRectF>& boxes, bool highest) {
  std::vector<QRectF> thinned;
  for (const QRectF& box : boxes) {
    const bool joins =
        !thinned.empty() && box.width() < kBoxColumn &&
        std::floor(box.left() / kBoxColumn) == std::floor(thinned.back().left() / kBoxColumn);
    if (!joins) {
      thinned.push_back(box);
      continue;
    }
    QRectF& column = thinned.back();
    column.setRight(std::max(column.right(), box.right()));
    column.setTop(highest ? std::min(column.top(), box.top()) : std::max(column.top(), box.top()));
    column.setBottom(highest ? std::max(column.bottom(), box.bottom())
                             : std::min(column.bottom(), box.bottom()));
  }
  return thinned;
}

}  // namespace vrx
