#include "chart/time_plot.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace vrx {
namespace {

constexpr double kLane = 16;
constexpr double kHalfMark = 5;
constexpr double kTickLength = 4;
constexpr double kLeastPlot = 110;

int MostValueTicks(double height) { return std::max(2, static_cast<int>(height / 26)); }

// Lines one unit wide fill whole pixels of a screen.
double Sharp(double place) { return std::floor(place) + 0.5; }

std::string Beyond(const char* sign, double value, const std::vector<Tick>& ticks) {
  const double step = ticks.size() < 2 ? 1 : ticks[1].value - ticks[0].value;
  return sign + StepText(value, std::min(step, 1.0));
}

}  // namespace

TimePlot::TimePlot(Sheet& sheet, double first_day, double last_day, const ValueAxis& axis)
    : above_(axis.above), below_(axis.below) {
  sheet.AddLine(axis.title);
  const double labels = 2 * sheet.LineOf(Letters::kSmall) + kTickLength + 2;
  const QRectF room = sheet.Room(kLeastPlot + labels);
  plot_ = room.adjusted(0, 2, -kHalfMark, -labels);
  const double lane_above = above_ ? kLane : 0;
  const double lane_below = below_ ? kLane : 0;
  values_ = {axis.from, axis.to, plot_.bottom() - kHalfMark - lane_below,
             plot_.top() + kHalfMark + lane_above};
  plot_.setLeft(std::ceil(room.left() + LabelsWidth(sheet, axis) + kTickLength + 2));
  days_ = {first_day, last_day, plot_.left() + kHalfMark, plot_.right() - kHalfMark};
  DrawValues(sheet, axis);
  DrawDays(sheet, axis.shortest);
}

double TimePlot::Height(double value) const {
  if (value > values_.to) {
    return above_ ? plot_.top() + kLane / 2 : values_.high;
  }
  if (value < values_.from) {
    return below_ ? plot_.bottom() - kLane / 2 : values_.low;
  }
  return values_.At(value);
}

QRectF TimePlot::Inner() const {
  return {QPointF(plot_.left(), values_.high), QPointF(plot_.right(), values_.low)};
}

double TimePlot::LabelsWidth(const Sheet& sheet, const ValueAxis& axis) const {
  const std::vector<Tick> ticks = NumberTicks(axis.from, axis.to, MostValueTicks(Inner().height()));
  double width = 0;
  for (const Tick& tick : ticks) {
    width = std::max(width, sheet.WidthOf(ToText(tick.text), Letters::kSmall));
  }
  for (const auto& [beyond, text] : {std::pair{above_, Beyond("> ", axis.to, ticks)},
                                     std::pair{below_, Beyond("< ", axis.from, ticks)}}) {
    width = std::max(width, beyond ? sheet.WidthOf(ToText(text), Letters::kSmall) : 0);
  }
  return width;
}

void TimePlot::DrawValues(Sheet& sheet, const ValueAxis& axis) {
  const double right = plot_.left() - kTickLength;
  const double drop = sheet.AscentOf(Letters::kSmall) * 0.36;  // from the middle to the base line
  const auto label = [&](double y, const std::string& text) {
    sheet.AddText(Layer::kFrame, {right, y + drop}, Anchor::kEnd, ToText(text), Letters::kSmall,
                  Ink::kQuiet);
  };
  const std::vector<Tick> ticks = NumberTicks(axis.from, axis.to, MostValueTicks(Inner().height()));
  const double line = sheet.LineOf(Letters::kSmall);
  for (const Tick& tick : ticks) {
    const double y = Sharp(values_.At(tick.value));
    sheet.AddLine(Layer::kFrame, {plot_.left(), y}, {plot_.right(), y},
                  tick.value == 0 ? Ink::kQuiet : Ink::kGrid);
    const bool free_above = !above_ || y - plot_.top() - kLane / 2 >= line;
    const bool free_below = !below_ || plot_.bottom() - kLane / 2 - y >= line;
    if (free_above && free_below) {
      label(y, tick.text);
    }
  }
  for (const auto& [beyond, edge, y, text] :
       {std::tuple{above_, plot_.top() + kLane, plot_.top() + kLane / 2,
                   Beyond("> ", axis.to, ticks)},
        std::tuple{below_, plot_.bottom() - kLane, plot_.bottom() - kLane / 2,
                   Beyond("< ", axis.from, ticks)}}) {
    if (beyond) {
      sheet.AddLine(Layer::kFrame, {plot_.left(), Sharp(edge)}, {plot_.right(), Sharp(edge)},
                    Ink::kQuiet, 1, true);
      label(y, text);
    }
  }
}

void TimePlot::DrawDays(Sheet& sheet, TickSpan shortest) {
  const double base = Sharp(plot_.bottom());
  sheet.AddLine(Layer::kFrame, {plot_.left(), base}, {plot_.right(), base}, Ink::kQuiet);
  const double first_line = base + kTickLength + sheet.AscentOf(Letters::kSmall);
  const double second_line = first_line + sheet.LineOf(Letters::kSmall);
  const double widest = sheet.WidthOf(QStringLiteral("30-Mar"), Letters::kSmall);
  constexpr double kLabelGap = 8;
  double free = 0;  // the end of the texts so far
  double free_below = 0;
  const double end = plot_.right() + kHalfMark;
  const std::vector<Tick> ticks = DayTicks(
      days_.from, days_.to, static_cast<int>(plot_.width() / (widest + kLabelGap)), shortest);
  const bool at_middle =
      shortest == TickSpan::kDays && (ticks.size() < 2 || ticks[1].value - ticks[0].value < 28);
  for (const Tick& tick : ticks) {
    const double x = Sharp(days_.At(tick.value + (at_middle ? 0.5 : 0)));
    if (x > days_.high + 1) {
      break;  // the middle of the day after the last one
    }
    sheet.AddLine(Layer::kFrame, {x, base}, {x, base + kTickLength}, Ink::kQuiet);
    for (const auto& [text, y, taken] : {std::tuple{&tick.text, first_line, &free},
                                         std::tuple{&tick.below, second_line, &free_below}}) {
      const double half = sheet.WidthOf(ToText(*text), Letters::kSmall) / 2;
      if (!text->empty() && x - half >= *taken && x + half <= end) {
        sheet.AddText(Layer::kFrame, {x, y}, Anchor::kMiddle, ToText(*text), Letters::kSmall,
                      Ink::kQuiet);
        *taken = x + half + kLabelGap;
      }
    }
  }
}

}  // namespace vrx
