#pragma once

#include <QSizeF>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "chart/charts.h"

namespace vrx::testing {

// Charts of made-up records. The same arguments give the same chart.

DeviationChart SampleDeviations(std::size_t loads, int days);
DistributionChart SampleDistribution(std::size_t loads);
OperatorChart SampleOperators(std::size_t ingredients, std::size_t operators);
WeightChart SampleWeights(std::size_t ingredients);
DeliveredChart SampleDelivered(int days);
BalanceChart SampleBalance(std::size_t batches, int days);

struct SamplePicture {
  std::string name;
  std::function<Picture(QSizeF size, const Look& look)> make;
};

// All six, and all of them without entries, with one, with many and with long names.
std::vector<SamplePicture> SamplePictures();

}  // namespace vrx::testing
