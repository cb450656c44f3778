#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "base/translation.h"
#include "chart/charts.h"
#include "chart/scale.h"
#include "chart/sheet.h"
#include "chart/thinning.h"
#include "chart/time_plot.h"

namespace vrx {
namespace {

constexpr double kPartOfDay = 0.7;  // the width of a bar
constexpr double kLeastOutlined = 4;
constexpr double kPale = 0.35;
constexpr double kWidestBar = 40;
constexpr double kBetweenCrosses = 1;
constexpr double kMostDaysWithMarks = 62;

bool IsShown(const std::optional<double>& weight) { return weight && std::isfinite(*weight); }

bool HasDelivery(const DeliveredDay& day) {
  return IsShown(day.called) || IsShown(day.delivered) || IsShown(day.mean7);
}

ValueAxis AxisOf(const DeliveredChart& chart) {
  double least = 0;
  double most = 0;
  for (const DeliveredDay& day : chart.days) {
    for (const std::optional<double>& weight : {day.called, day.delivered, day.mean7}) {
      if (IsShown(weight)) {
        least = std::min(least, *weight);
        most = std::max(most, *weight);
      }
    }
  }
  return {.title = Tr("Weight (%1)", {UnitText(chart.units)}),
          .from = least,
          .to = most > least ? most : least + 1,
          .shortest = TickSpan::kDays};
}

void AddBars(Sheet& sheet, const TimePlot& plot, const DeliveredChart& chart) {
  const double width = std::clamp(plot.DayWidth() * kPartOfDay, 0.8, kWidestBar);
  const double zero = plot.Height(0);
  std::vector<QRectF> bars;
  DotsShape missed{.at = {}, .symbol = Symbol::kCross, .size = 8, .ink = Ink::kSecond};
  for (std::size_t i = 0; i < chart.days.size(); ++i) {
    const DeliveredDay& day = chart.days[i];
    const double x = plot.Days().At(DayNumber(day.date) + 0.5);
    const double half = std::max(plot.DayWidth(), 1.0) / 2;
    sheet.AddHit(QRectF(x - half, plot.Plot().top(), 2 * half, plot.Plot().height()), i);
    if (day.missed) {
      if (missed.at.empty() || x - missed.at.back().x() >= kBetweenCrosses) {
        missed.at.emplace_back(x, zero - missed.size / 2 - 1);
      }
    } else if (IsShown(day.delivered)) {
      const double y = plot.Height(*day.delivered);
      bars.emplace_back(x - width / 2, std::min(y, zero), width, std::abs(zero - y));
    }
  }
  QPainterPath path;
  for (const QRectF& bar : ThinnedBoxes(bars, true)) {
    path.addRect(bar);
  }
  // Pale bars with an outline let lines be seen on them.
  PathShape shape{.path = path, .fill = Ink::kFirst};
  if (width >= kLeastOutlined) {
    shape.opacity = kPale;
    shape.line = Ink::kFirst;
  }
  sheet.Add(Layer::kMark, std::move(shape));
  sheet.Add(Layer::kMark, std::move(missed));
}

// A line through the days that follow each other with a weight.
void AddWeightLine(Sheet& sheet, const TimePlot& plot, const DeliveredChart& chart,
                   std::optional<double> DeliveredDay::*weight, Ink ink, bool dashed) {
  QPainterPath path;
  DotsShape marks{.at = {}, .symbol = Symbol::kDiamond, .size = 7, .ink = ink};
  double last = -kInfinity;
  for (const DeliveredDay& day : chart.days) {
    if (!IsShown(day.*weight)) {
      continue;
    }
    const double number = DayNumber(day.date);
    const QPointF at = plot.At(number + 0.5, *(day.*weight));
    number == last + 1 ? path.lineTo(at) : path.moveTo(at);
    last = number;
    marks.at.push_back(at);
  }
  sheet.Add(Layer::kMark, PathShape{.path = dashed ? SampledLine(path) : ThinnedLine(path),
                                    .line = ink,
                                    .width = 2,
                                    .dashed = dashed});
  if (!dashed && plot.Days().to - plot.Days().from <= kMostDaysWithMarks) {
    sheet.Add(Layer::kMark, std::move(marks));
  }
}

std::vector<LegendEntry> DeliveredLegend(const DeliveredChart& chart) {
  std::vector<LegendEntry> legend = {
      {LegendMark::kBox, Ink::kFirst, Tr("Delivered")},
      {LegendMark::kLine, Ink::kSecond, Tr("Called")},
      {LegendMark::kDashed, Ink::kText, Tr("Delivered, mean of 7 days")}};
  if (std::ranges::any_of(chart.days, &DeliveredDay::missed)) {
    legend.push_back({LegendMark::kSymbol, Ink::kSecond, Tr("Missed day"), Symbol::kCross});
  }
  return legend;
}

}  // namespace

Picture PictureOf(const DeliveredChart& chart, QSizeF size, const Look& look) {
  Sheet sheet(size, look, chart.texts);
  if (std::ranges::none_of(chart.days, HasDelivery)) {
    return sheet.FinishEmpty(Tr("No deliveries to show"));
  }
  sheet.AddLegend(DeliveredLegend(chart));
  const TimePlot plot(sheet, DayNumber(chart.days.front().date),
                      DayNumber(chart.days.back().date) + 1, AxisOf(chart));
  AddBars(sheet, plot, chart);
  AddWeightLine(sheet, plot, chart, &DeliveredDay::mean7, Ink::kText, true);
  AddWeightLine(sheet, plot, chart, &DeliveredDay::called, Ink::kSecond, false);
  return sheet.Finish(plot.Plot());
}

}  // namespace vrx
