#include <chrono>
#include <limits>

#include "chart/charts.h"

namespace vrx {

DeviationChart DeviationChartOf(const Loads& loads, const Accuracy& by_day) {
  DeviationChart chart{.limit = by_day.limits.percent, .loads = loads.dots};
  for (const AccuracyGroup& group : by_day.groups) {
    const std::optional<Date> day = group.key.at(0) ? ParseStoredDate(*group.key[0]) : std::nullopt;
    if (day && group.figures.median) {
      chart.days.push_back({*day, *group.figures.median});
    }
  }
  return chart;
}

DistributionChart DistributionChartOf(const Loads& loads, const Accuracy& by_any_key) {
  return {.limit = by_any_key.limits.percent,
          .ranges = loads.ranges,
          .median = by_any_key.total.median};
}

OperatorChart OperatorChartOf(const Accuracy& by_ingredient_and_operator) {
  OperatorChart chart{.limit = by_ingredient_and_operator.limits.percent};
  for (const AccuracyGroup& group : by_ingredient_and_operator.groups) {
    chart.cells.push_back(
        {group.key.at(0), group.key.at(1), group.figures.n, group.figures.within});
  }
  return chart;
}

WeightChart WeightChartOf(const Accuracy& by_ingredient) {
  WeightChart chart{.units = by_ingredient.notes.units};
  for (const AccuracyGroup& group : by_ingredient.groups) {
    if (group.figures.gross) {
      chart.weights.push_back({group.key.at(0), *group.figures.gross});
    }
  }
  return chart;
}

DeliveredChart DeliveredChartOf(const Delivered& delivered, const std::optional<std::string>& pen) {
  DeliveredChart chart{.units = delivered.notes.units};
  for (const DeliveredLine& line : delivered.lines) {
    if (line.pen == pen) {
      chart.days.push_back({line.date, line.called, line.delivered, line.mean7, line.missed});
    }
  }
  return chart;
}

BalanceChart BalanceChartOf(const Balance& balance) {
  constexpr double kMinutesADay = 24.0 * 60;
  BalanceChart chart{.units = balance.notes.units};
  for (const BalanceLine& line : balance.lines) {
    double day = std::numeric_limits<double>::quiet_NaN();
    if (line.date) {
      day = static_cast<double>(std::chrono::sys_days(*line.date).time_since_epoch().count());
    }
    if (line.time) {
      day += (line.time->hour * 60 + line.time->minute) / kMinutesADay;
    }
    chart.batches.push_back({day, line.left, line.limit, line.state, line.transaction.value_or(0)});
  }
  return chart;
}

}  // namespace vrx
