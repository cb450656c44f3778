#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <vector>

#include "base/translation.h"
#include "chart/charts.h"
#include "chart/scale.h"
#include "chart/sheet.h"
#include "chart/thinning.h"
#include "chart/time_plot.h"

namespace vrx {
namespace {

struct StateLook {
  std::string_view text;
  Symbol symbol;
  Ink ink;
  double size;
};

// In the order of BalanceState.
constexpr std::array<StateLook, 4> kStates = {{
    {TrMark("Balanced"), Symbol::kDot, Ink::kFirst, 5},
    {TrMark("Out of balance"), Symbol::kDiamond, Ink::kSecond, 8},
    {TrMark("Never fed"), Symbol::kSquare, Ink::kSecond, 6},
    {TrMark("Never loaded"), Symbol::kCross, Ink::kText, 7},
}};
constexpr double kPlaceOfMark = 3;

bool IsDrawable(const BalanceMark& mark) {
  return std::isfinite(mark.day) && std::isfinite(mark.left);
}

struct BalanceAxes {
  double first_day = kInfinity;
  double last_day = -kInfinity;
  ValueAxis axis = {};
};

BalanceAxes AxesOf(const BalanceChart& chart) {
  BalanceAxes axes;
  std::vector<double> weights;
  double least = 0;
  double most = 0;
  double limit = 0;
  for (const BalanceMark& mark : chart.batches) {
    if (IsDrawable(mark)) {
      axes.first_day = std::min(axes.first_day, std::floor(mark.day));
      axes.last_day = std::max(axes.last_day, std::floor(mark.day) + 1);
      if (mark.state == BalanceState::kBalanced || mark.state == BalanceState::kOut) {
        weights.push_back(mark.left);  // the others are whole batches
      }
      least = std::min(least, mark.left);
      most = std::max(most, mark.left);
      limit = std::max(limit, std::isfinite(mark.limit) ? mark.limit : 0);
    }
  }
  const double reach = ReachOf(weights, std::max(1.5 * limit, 1e-3));
  axes.axis = {.title = Tr("Loaded less fed (%1)", {UnitText(chart.units)}),
               .from = -reach,
               .to = reach,
               .above = most > reach,
               .below = least < -reach};
  return axes;
}

// The smallest limit of each day: what is within it is balanced, whatever the batch weighs.
void InsertBand(Sheet& sheet, std::size_t ground, const TimePlot& plot, const BalanceChart& chart) {
  std::map<double, double> limits;
  for (const BalanceMark& mark : chart.batches) {
    if (IsDrawable(mark) && std::isfinite(mark.limit)) {
      const auto [day, is_new] = limits.try_emplace(std::floor(mark.day), mark.limit);
      day->second = std::min(day->second, mark.limit);
    }
  }
  std::vector<QRectF> boxes;
  for (auto day = limits.begin(); day != limits.end(); ++day) {
    const auto next = std::next(day);
    const double left = plot.Days().At(day->first);
    const double right = plot.Days().At(next == limits.end() ? plot.Days().to : next->first);
    const double top = plot.Height(day->second);
    boxes.emplace_back(left, top, right - left, plot.Height(-day->second) - top);
  }
  QPainterPath band;
  for (const QRectF& box : ThinnedBoxes(boxes, false)) {
    band.addRect(box);
  }
  sheet.Insert(ground, PathShape{.path = band, .fill = Ink::kBand});
}

// Batches of one state. Those at the same place are one mark.
void AddState(Sheet& sheet, const TimePlot& plot, const BalanceChart& chart, BalanceState state) {
  const StateLook& look = kStates[static_cast<std::size_t>(state)];
  std::map<std::pair<int, int>, Hit> places;
  for (std::size_t i = 0; i < chart.batches.size(); ++i) {
    const BalanceMark& mark = chart.batches[i];
    if (mark.state != state || !IsDrawable(mark)) {
      continue;
    }
    const QPointF at = plot.At(mark.day, mark.left);
    const std::pair place{static_cast<int>(at.x() / kPlaceOfMark),
                          static_cast<int>(at.y() / kPlaceOfMark)};
    const QRectF area(at.x() - look.size / 2, at.y() - look.size / 2, look.size, look.size);
    const auto [known, is_new] = places.try_emplace(place, Hit{area, i, 1});
    if (!is_new) {
      ++known->second.count;
    }
  }
  DotsShape dots{.at = {}, .symbol = look.symbol, .size = look.size, .ink = look.ink};
  for (const auto& [place, hit] : places) {
    dots.at.push_back(hit.area.center());
    sheet.AddHit(hit.area, hit.index, hit.count);
  }
  sheet.Add(Layer::kMark, std::move(dots));
}

std::vector<LegendEntry> BalanceLegend(const BalanceChart& chart) {
  std::vector<LegendEntry> legend;
  for (std::size_t state = 0; state < kStates.size(); ++state) {
    const bool met = std::ranges::any_of(chart.batches, [&](const BalanceMark& mark) {
      return IsDrawable(mark) && static_cast<std::size_t>(mark.state) == state;
    });
    if (met) {
      const StateLook& look = kStates[state];
      legend.push_back({LegendMark::kSymbol, look.ink, Tr(look.text), look.symbol});
    }
  }
  legend.push_back({LegendMark::kBox, Ink::kBand, Tr("Within the limit (the day's smallest)")});
  return legend;
}

}  // namespace

Picture PictureOf(const BalanceChart& chart, QSizeF size, const Look& look) {
  Sheet sheet(size, look, chart.texts);
  const BalanceAxes axes = AxesOf(chart);
  if (axes.first_day > axes.last_day) {
    return sheet.FinishEmpty(Tr("No batches to show"));
  }
  sheet.AddLegend(BalanceLegend(chart));
  const std::size_t ground = sheet.Count();
  const TimePlot plot(sheet, axes.first_day, axes.last_day, axes.axis);
  InsertBand(sheet, ground, plot, chart);
  for (std::size_t state = 0; state < kStates.size(); ++state) {
    AddState(sheet, plot, chart, static_cast<BalanceState>(state));
  }
  return sheet.Finish(plot.Plot());
}

}  // namespace vrx
