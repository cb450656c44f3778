#pragma once

#include <QPointF>
#include <QRectF>
#include <string>

#include "chart/scale.h"
#include "chart/sheet.h"

namespace vrx {

struct ValueAxis {
  std::string title = {};  // with the unit
  double from = 0;
  double to = 1;
  // Hours may be marked; otherwise the entries are days, whose labels are at their middle.
  TickSpan shortest = TickSpan::kHours;
  // Values that are farther out are drawn in a lane of their own at the edge.
  bool above = false;
  bool below = false;
};

// A plot of values over days. Draws axes and grid; its inner part leaves room for half a mark at
// each edge.
class TimePlot {
 public:
  // Between two day numbers.
  TimePlot(Sheet& sheet, double first_day, double last_day, const ValueAxis& axis);

  [[nodiscard]] QPointF At(double day, double value) const {
    return {days_.At(day), Height(value)};
  }
  [[nodiscard]] double Height(double value) const;
  [[nodiscard]] const Scale& Days() const { return days_; }
  [[nodiscard]] double DayWidth() const { return days_.At(1) - days_.At(0); }
  [[nodiscard]] const QRectF& Plot() const { return plot_; }
  // The part for values from `from` to `to`, without lanes.
  [[nodiscard]] QRectF Inner() const;

 private:
  void DrawValues(Sheet& sheet, const ValueAxis& axis);
  void DrawDays(Sheet& sheet, TickSpan shortest);
  [[nodiscard]] double LabelsWidth(const Sheet& sheet, const ValueAxis& axis) const;

  QRectF plot_;
  Scale days_;
  Scale values_;
  bool above_;
  bool below_;
};

}  // namespace vrx
