#include "chart/charts.h"

namespace vrx {

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

}  // namespace vrx
