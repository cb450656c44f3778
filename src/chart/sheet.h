#pragma once

#include <QFontMetricsF>
#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "chart/charts.h"
#include "chart/look.h"
#include "chart/picture.h"
#include "chart/thinning.h"

namespace vrx {

inline QString ToText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The name, "(none)" if it is missing.
[[nodiscard]] QString NameText(const std::optional<std::string>& name);

// "kg" or "lb" of a database's unit.
[[nodiscard]] std::string UnitText(std::string_view units);

enum class LegendMark { kSymbol, kLine, kDashed, kBox, kHatched };

struct LegendEntry {
  LegendMark mark = LegendMark::kSymbol;
  Ink ink = Ink::kFirst;
  std::string text = {};
  Symbol symbol = Symbol::kDot;
};

// Takes the shapes of a picture, from its title down.
class Sheet {
 public:
  // Draws title and explanation, broken into lines.
  Sheet(QSizeF size, const Look& look, const ChartTexts& texts);

  // Draws entries from left to right, in as many lines as they need.
  void AddLegend(const std::vector<LegendEntry>& entries);
  // A line of small letters at the left, for the title of a value axis.
  void AddLine(const std::string& text);

  // What is left below. Grows the picture if that is lower than `height`.
  [[nodiscard]] QRectF Room(double height);
  // Makes the picture as tall as what was drawn, if that ends at `bottom`.
  void EndAt(double bottom);

  void AddText(Layer layer, QPointF base, Anchor anchor, const QString& text, Letters letters,
               Ink ink = Ink::kText);
  void AddLine(Layer layer, QPointF from, QPointF to, Ink ink, double width = 1,
               bool dashed = false);
  // A line of marks with a seam of paper, so that it is seen on other marks.
  void AddCurve(const QPainterPath& path, Ink ink) {
    const QPainterPath thinned = ThinnedLine(path);
    Add(Layer::kMark, PathShape{.path = thinned, .line = Ink::kPaper, .width = 4});
    Add(Layer::kMark, PathShape{.path = thinned, .line = ink, .width = 2});
  }
  void AddBox(Layer layer, const QRectF& box, Ink ink, double opacity = 1);
  void AddHatching(Layer layer, const QRectF& box, Ink ink);
  // Shapes of nothing are left out.
  void Add(Layer layer, PathShape shape);
  void Add(Layer layer, DotsShape shape);
  // Shapes so far. Insert puts a shape below those that were added after.
  [[nodiscard]] std::size_t Count() const { return picture_.shapes.size(); }
  void Insert(std::size_t place, PathShape shape) {
    picture_.shapes.insert(picture_.shapes.begin() + static_cast<std::ptrdiff_t>(place),
                           {Layer::kFrame, std::move(shape)});
  }
  void AddHit(const QRectF& area, std::size_t index, std::size_t count = 1) {
    picture_.hits.push_back({area, index, count});
  }

  [[nodiscard]] double WidthOf(const QString& text, Letters letters) const;
  [[nodiscard]] double LineOf(Letters letters) const;    // height of a line
  [[nodiscard]] double AscentOf(Letters letters) const;  // of its letters above the base line
  // The text with an ellipsis if it is wider.
  [[nodiscard]] QString Fitted(const QString& text, double width, Letters letters) const;

  // The picture, which leaves the sheet.
  [[nodiscard]] Picture Finish(const QRectF& plot);
  [[nodiscard]] Picture FinishEmpty(const std::string& sentence);

 private:
  [[nodiscard]] const QFontMetricsF& MetricsOf(Letters letters) const;
  void AddParagraph(const std::string& text, Letters letters, Ink ink);
  void AddLegendMark(const LegendEntry& entry, QPointF middle);

  Look look_;
  QFontMetricsF title_;
  QFontMetricsF marks_;
  QFontMetricsF small_;
  Picture picture_;
  double top_;  // of what is free
};

}  // namespace vrx
