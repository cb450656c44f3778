#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/number.h"
#include "base/translation.h"
#include "chart/charts.h"
#include "chart/scale.h"
#include "chart/sheet.h"
#include "chart/time_plot.h"
#include "insight/load_deviations.h"

namespace vrx {
namespace {

constexpr std::size_t kMostSingleDots = 1500;
constexpr double kSingleDot = 4.5;
constexpr double kPlace = 4;                                        // width and height
constexpr std::array<double, 4> kSizeOfPlace = {1.6, 2.4, 3, 3.5};  // from one load to the most
constexpr double kMostDaysWithMedianMarks = 62;

bool IsDrawable(const DeviationLoad& load) {
  return std::isfinite(load.day) && std::isfinite(load.percent);
}

struct DeviationRangeOfAxes {
  double first_day = kInfinity;
  double last_day = -kInfinity;
  ValueAxis axis = {};
};

std::int64_t LoadsOf(const DeviationLoad& entry) { return std::max<std::int64_t>(entry.loads, 1); }

std::int64_t SumOfLoads(const std::vector<DeviationLoad>& entries) {
  std::int64_t sum = 0;
  for (const DeviationLoad& entry : entries) {
    sum += LoadsOf(entry);
  }
  return sum;
}

DeviationRangeOfAxes AxesOf(const DeviationChart& chart) {
  DeviationRangeOfAxes axes;
  // An entry counts once for each load; of very many loads only a part is counted.
  constexpr double kMostCounted = 100000;
  const auto total = static_cast<double>(SumOfLoads(chart.loads));
  const double part = std::min(1.0, kMostCounted / std::max(total, 1.0));
  double counted = 0;
  std::vector<double> percents;
  double lowest = 0;
  double highest = 0;
  for (const DeviationLoad& load : chart.loads) {
    if (!IsDrawable(load)) {
      continue;
    }
    axes.first_day = std::min(axes.first_day, std::floor(load.day));
    axes.last_day = std::max(axes.last_day, std::floor(load.day) + 1);
    lowest = std::min(lowest, load.percent);
    highest = std::max(highest, load.percent);
    const double before = std::floor(counted);
    counted += static_cast<double>(LoadsOf(load)) * part;
    percents.insert(percents.end(), static_cast<std::size_t>(std::floor(counted) - before),
                    load.percent);
  }
  const double reach = ReachOf(percents, 2.5 * chart.limit);
  axes.axis = {.title = Tr("Deviation (%)"),
               .from = -reach,
               .to = reach,
               .above = highest > reach,
               .below = lowest < -reach};
  return axes;
}

// What is drawn in a square of the plot.
struct Place {
  std::size_t loads = 0;
  std::size_t farthest = 0;
};

void AddSingleLoads(Sheet& sheet, const TimePlot& plot, const DeviationChart& chart) {
  DotsShape dots{.at = {}, .symbol = Symbol::kDot, .size = kSingleDot, .ink = Ink::kFirst};
  for (std::size_t i = 0; i < chart.loads.size(); ++i) {
    if (IsDrawable(chart.loads[i])) {
      const QPointF at = plot.At(chart.loads[i].day, chart.loads[i].percent);
      dots.at.push_back(at);
      sheet.AddHit(QRectF(at.x() - kSingleDot / 2, at.y() - kSingleDot / 2, kSingleDot, kSingleDot),
                   i);
    }
  }
  sheet.Add(Layer::kMark, std::move(dots));
}

// By the logarithm, so that sizes differ at the edge as well as in the middle.
std::size_t SizeOfPlace(std::size_t loads, std::size_t most) {
  if (loads <= 1) {
    return 0;
  }
  const double part = std::log(static_cast<double>(loads)) / std::log(static_cast<double>(most));
  constexpr auto kLargest = static_cast<double>(kSizeOfPlace.size() - 1);
  return static_cast<std::size_t>(std::clamp(std::ceil(part * kLargest), 1.0, kLargest));
}

// One mark for each square with a load, whose size says how many: the time to draw does not grow
// with the loads, and a single one stays visible.
void AddPlaces(Sheet& sheet, const TimePlot& plot, const DeviationChart& chart) {
  const QRectF& area = plot.Plot();
  const auto columns = static_cast<std::size_t>(area.width() / kPlace);
  const auto rows = static_cast<std::size_t>(area.height() / kPlace);
  std::vector<Place> places(columns * rows);
  std::size_t most = 0;
  for (std::size_t i = 0; i < chart.loads.size(); ++i) {
    const DeviationLoad& load = chart.loads[i];
    if (!IsDrawable(load)) {
      continue;
    }
    const QPointF at = plot.At(load.day, load.percent) - area.topLeft();
    const auto column = std::min(static_cast<std::size_t>(at.x() / kPlace), columns - 1);
    const auto row = std::min(static_cast<std::size_t>(at.y() / kPlace), rows - 1);
    Place& place = places[row * columns + column];
    if (place.loads == 0 ||
        std::abs(load.percent) > std::abs(chart.loads[place.farthest].percent)) {
      place.farthest = i;
    }
    place.loads += static_cast<std::size_t>(LoadsOf(load));
    most = std::max(most, place.loads);
  }
  std::array<DotsShape, kSizeOfPlace.size()> dots;
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (places[i].loads > 0) {
      const std::size_t size = SizeOfPlace(places[i].loads, most);
      const std::size_t row = i / columns;
      const QRectF square(area.left() + static_cast<double>(i % columns) * kPlace,
                          area.top() + static_cast<double>(row) * kPlace, kPlace, kPlace);
      dots[size].at.push_back(square.center());
      sheet.AddHit(square, places[i].farthest, places[i].loads);
    }
  }
  for (std::size_t size = 0; size < dots.size(); ++size) {
    dots[size].symbol = Symbol::kSquare;  // fills faster than a dot
    dots[size].size = kSizeOfPlace[size];
    sheet.Add(Layer::kMark, std::move(dots[size]));
  }
}

std::string NameOfMark(bool many, bool deliveries) {
  if (deliveries) {
    return many ? Tr("Delivery (larger: more deliveries)") : Tr("Delivery");
  }
  return many ? Tr("Load (larger: more loads)") : Tr("Load");
}

void AddMedians(Sheet& sheet, const TimePlot& plot, const DeviationChart& chart) {
  QPainterPath path;
  DotsShape marks{.at = {}, .symbol = Symbol::kSquare, .size = 5, .ink = Ink::kSecond};
  for (const DeviationDay& day : chart.days) {
    const double middle = DayNumber(day.date) + 0.5;
    if (!std::isfinite(day.median) || middle < plot.Days().from || middle > plot.Days().to) {
      continue;
    }
    const QPointF at = plot.At(middle, day.median);
    path.elementCount() == 0 ? path.moveTo(at) : path.lineTo(at);
    marks.at.push_back(at);
  }
  sheet.AddCurve(path, Ink::kSecond);
  if (plot.Days().to - plot.Days().from <= kMostDaysWithMedianMarks) {
    sheet.Add(Layer::kMark, std::move(marks));
  }
}

}  // namespace

Picture PictureOf(const DeviationChart& chart, QSizeF size, const Look& look) {
  Sheet sheet(size, look, chart.texts);
  const DeviationRangeOfAxes axes = AxesOf(chart);
  if (axes.first_day > axes.last_day) {
    return sheet.FinishEmpty(chart.deliveries ? Tr("No deliveries to show")
                                              : Tr("No loads to show"));
  }
  const bool many =
      chart.loads.size() > kMostSingleDots ||
      std::ranges::any_of(chart.loads, [](const DeviationLoad& load) { return load.loads > 1; });
  std::vector<LegendEntry> legend = {{LegendMark::kSymbol, Ink::kFirst,
                                      NameOfMark(many, chart.deliveries),
                                      many ? Symbol::kSquare : Symbol::kDot}};
  if (!chart.days.empty()) {
    legend.push_back({LegendMark::kLine, Ink::kSecond, Tr("Median of the day")});
  }
  legend.push_back({LegendMark::kBox, Ink::kBand, Tr("Within %1 %", {DefaultText(chart.limit)})});
  sheet.AddLegend(legend);
  const std::size_t ground = sheet.Count();
  const TimePlot plot(sheet, axes.first_day, axes.last_day, axes.axis);
  const double top = plot.Height(chart.limit);
  QPainterPath band;
  band.addRect(plot.Plot().left(), top, plot.Plot().width(), plot.Height(-chart.limit) - top);
  sheet.Insert(ground, PathShape{.path = band, .fill = Ink::kBand});
  many ? AddPlaces(sheet, plot, chart) : AddSingleLoads(sheet, plot, chart);
  for (const double limit :
       {-chart.limit, chart.limit}) {  // over the dots, which can hide the band
    const double y = std::floor(plot.Height(limit)) + 0.5;
    sheet.AddLine(Layer::kFrame, {plot.Plot().left(), y}, {plot.Plot().right(), y}, Ink::kText, 1,
                  true);
  }
  AddMedians(sheet, plot, chart);
  return sheet.Finish(plot.Plot());
}

}  // namespace vrx
