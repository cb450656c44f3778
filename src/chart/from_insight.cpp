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

}  // namespace vrx
