#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/number.h"
#include "base/translation.h"
#include "chart/charts.h"
#include "chart/scale.h"
#include "chart/sheet.h"

namespace vrx {
namespace {

constexpr double kLeastHeight = 110;
constexpr double kTick = 4;

// What the numbers of an open range are drawn at: as wide as its neighbor.
struct Drawn {
  double from;
  double to;
  bool open;
};

std::vector<Drawn> DrawnRanges(const std::vector<DeviationRange>& ranges) {
  double width = 1;
  for (const DeviationRange& range : ranges) {
    if (std::isfinite(range.from) && std::isfinite(range.to)) {
      width = range.to - range.from;
      break;
    }
  }
  std::vector<Drawn> drawn;
  for (const DeviationRange& range : ranges) {
    const bool open = !std::isfinite(range.from) || !std::isfinite(range.to);
    drawn.push_back({std::isfinite(range.from) ? range.from : range.to - width,
                     std::isfinite(range.to) ? range.to : range.from + width, open});
  }
  return drawn;
}

bool IsWithin(const Drawn& range, double limit) {
  return !range.open && range.from >= -limit - 1e-9 && range.to <= limit + 1e-9;
}

class DistributionPlot {
 public:
  DistributionPlot(Sheet& sheet, const DistributionChart& chart)
      : sheet_(sheet), chart_(chart), drawn_(DrawnRanges(chart.ranges)) {
    std::int64_t most = 1;
    for (const DeviationRange& range : chart.ranges) {
      most = std::max(most, range.count);
    }
    highest_ = static_cast<double>(most);
    const double line = sheet.LineOf(Letters::kSmall);
    plot_ =
        sheet.Room(kLeastHeight + 2 * line + kTick).adjusted(0, 2, -kTick, -2 * line - kTick - 2);
    counts_ = {0, highest_ * 1.05, plot_.bottom(), plot_.top()};
    double labels = 0;
    for (const Tick& tick : CountTicks()) {
      labels = std::max(labels, sheet.WidthOf(ToText(tick.text), Letters::kSmall));
    }
    plot_.setLeft(plot_.left() + labels + 2 * kTick);
    percents_ = {drawn_.front().from, drawn_.back().to, plot_.left() + kTick,
                 plot_.right() - kTick};
  }

  Picture Draw() {
    DrawBand();
    DrawCounts();
    DrawBars();
    DrawPercents();
    if (chart_.median && std::isfinite(*chart_.median)) {
      const double x =
          percents_.At(std::clamp(*chart_.median, drawn_.front().from, drawn_.back().to));
      sheet_.AddLine(Layer::kMark, {x, plot_.top()}, {x, plot_.bottom()}, Ink::kPaper, 4);
      sheet_.AddLine(Layer::kMark, {x, plot_.top()}, {x, plot_.bottom()}, Ink::kText, 2, true);
    }
    return sheet_.Finish(plot_);
  }

 private:
  void DrawBand() {
    const double left = percents_.At(std::max(-chart_.limit, drawn_.front().from));
    const double right = percents_.At(std::min(chart_.limit, drawn_.back().to));
    sheet_.AddBox(Layer::kFrame, {left, plot_.top(), right - left, plot_.height()}, Ink::kBand);
  }

  [[nodiscard]] std::vector<Tick> CountTicks() const {
    const int most = std::max(2, static_cast<int>(plot_.height() / 26));
    const int whole = static_cast<int>(std::min(std::ceil(counts_.to), 100.0));
    return NumberTicks(0, counts_.to, std::min(most, whole));
  }

  void DrawCounts() {
    const double drop = sheet_.AscentOf(Letters::kSmall) * 0.36;
    for (const Tick& tick : CountTicks()) {
      const double y = std::floor(counts_.At(tick.value)) + 0.5;
      sheet_.AddLine(Layer::kFrame, {plot_.left(), y}, {plot_.right(), y},
                     tick.value == 0 ? Ink::kQuiet : Ink::kGrid);
      sheet_.AddText(Layer::kFrame, {plot_.left() - kTick, y + drop}, Anchor::kEnd,
                     ToText(tick.text), Letters::kSmall, Ink::kQuiet);
    }
  }

  void DrawBars() {
    for (std::size_t i = 0; i < drawn_.size(); ++i) {
      const double left = percents_.At(drawn_[i].from) + 0.5;
      const double right = percents_.At(drawn_[i].to) - 0.5;
      sheet_.AddHit({left, plot_.top(), right - left, plot_.height()}, i);
      const std::int64_t count = chart_.ranges[i].count;
      if (count <= 0) {
        continue;
      }
      const double top = std::min(counts_.At(static_cast<double>(count)), plot_.bottom() - 1);
      const QRectF bar(left, top, right - left, plot_.bottom() - top);
      if (IsWithin(drawn_[i], chart_.limit)) {
        sheet_.AddBox(Layer::kMark, bar, Ink::kFirst);
      } else if (drawn_[i].open) {
        sheet_.AddHatching(Layer::kMark, bar, Ink::kSecond);
      } else {
        sheet_.AddBox(Layer::kMark, bar, Ink::kSecond);
      }
    }
  }

  void DrawPercents() {
    const double base = plot_.bottom() + kTick + sheet_.AscentOf(Letters::kSmall);
    const double from = drawn_.front().open ? drawn_.front().to : drawn_.front().from;
    const double to = drawn_.back().open ? drawn_.back().from : drawn_.back().to;
    const int most = std::max(2, static_cast<int>(plot_.width() / 46));
    for (const Tick& tick : NumberTicks(from, to, most)) {
      const double x = std::floor(percents_.At(tick.value)) + 0.5;
      sheet_.AddLine(Layer::kFrame, {x, plot_.bottom()}, {x, plot_.bottom() + kTick}, Ink::kQuiet);
      sheet_.AddText(Layer::kFrame, {x, base}, Anchor::kMiddle, ToText(tick.text), Letters::kSmall,
                     Ink::kQuiet);
    }
    sheet_.AddText(Layer::kFrame, {plot_.right(), base + sheet_.LineOf(Letters::kSmall)},
                   Anchor::kEnd, ToText(Tr("Deviation (%)")), Letters::kSmall, Ink::kQuiet);
  }

  Sheet& sheet_;
  const DistributionChart& chart_;
  std::vector<Drawn> drawn_;
  QRectF plot_;
  Scale counts_;
  Scale percents_;
  double highest_ = 1;
};

std::vector<LegendEntry> DistributionLegend(const DistributionChart& chart) {
  std::vector<LegendEntry> legend = {
      {LegendMark::kBox, Ink::kFirst, Tr("Within %1 %", {DefaultText(chart.limit)})},
      {LegendMark::kBox, Ink::kSecond, Tr("Beyond")}};
  const DeviationRange& first = chart.ranges.front();
  const DeviationRange& last = chart.ranges.back();
  if (!std::isfinite(first.from) || !std::isfinite(last.to)) {
    legend.push_back({LegendMark::kHatched, Ink::kSecond, Tr("Beyond the axis")});
  }
  if (chart.median && std::isfinite(*chart.median)) {
    legend.push_back(
        {LegendMark::kDashed, Ink::kText, Tr("Median %1 %", {Format(*chart.median, "0.0")})});
  }
  return legend;
}

bool HasNumbers(const DistributionChart& chart) {
  for (const DeviationRange& range : chart.ranges) {
    if (range.count > 0 && (std::isfinite(range.from) || std::isfinite(range.to))) {
      return true;
    }
  }
  return false;
}

}  // namespace

Picture PictureOf(const DistributionChart& chart, QSizeF size, const Look& look) {
  Sheet sheet(size, look, chart.texts);
  if (!HasNumbers(chart)) {
    return sheet.FinishEmpty(chart.deliveries ? Tr("No deliveries to show")
                                              : Tr("No loads to show"));
  }
  sheet.AddLegend(DistributionLegend(chart));
  sheet.AddLine(chart.deliveries ? Tr("Deliveries") : Tr("Loads"));
  return DistributionPlot(sheet, chart).Draw();
}

}  // namespace vrx
