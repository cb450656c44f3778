#include "chart/sample_charts.h"

#include <array>
#include <chrono>
#include <cmath>
#include <random>
#include <utility>

#include "chart/scale.h"
#include "insight/load_deviations.h"

namespace vrx::testing {
namespace {

constexpr std::array kIngredients = {"CORN", "HAY", "SILAGE", "MINERL", "MOLAS", "STRAW", "TALLOW"};
const Date kFirstDay = std::chrono::year(2026) / 1 / 12;

// The numbers of std::mt19937 are the same everywhere, those of the distributions are not.
class Numbers {
 public:
  double Part() { return static_cast<double>(engine_() % 1000000) / 1e6; }
  // About normal, around 0.
  double Around(double spread) {
    double sum = -6;
    for (int i = 0; i < 12; ++i) {
      sum += Part();
    }
    return sum * spread;
  }

 private:
  std::mt19937 engine_{20260112};
};

std::string IngredientName(std::size_t number) {
  const std::string name = kIngredients.at(number % kIngredients.size());
  return number < kIngredients.size() ? name : name + std::to_string(number);
}

Date DayOf(int number) { return std::chrono::sys_days(kFirstDay) + std::chrono::days(number); }

template <typename Chart>
Chart Titled(Chart chart, std::string title, std::string how) {
  chart.texts = {std::move(title), std::move(how)};
  return chart;
}

const std::string kLongName =
    "Steam-flaked corn with <molasses> & \"tallow\", second delivery of June";

OperatorChart LongOperators() {
  OperatorChart chart = SampleOperators(6, 5);
  for (OperatorCell& cell : chart.cells) {
    cell.ingredient = kLongName + ' ' + cell.ingredient.value_or("");
    cell.operator_id = "Operator of the night shift " + cell.operator_id.value_or("");
  }
  return chart;
}

WeightChart LongWeights() {
  WeightChart chart = SampleWeights(9);
  for (WeightBar& bar : chart.weights) {
    bar.ingredient = kLongName + ' ' + bar.ingredient.value_or("");
  }
  chart.texts = {kLongName + ' ' + kLongName, kLongName + ' ' + kLongName + ' ' + kLongName};
  return chart;
}

template <typename Chart>
SamplePicture Sample(std::string name, Chart chart) {
  return {std::move(name), [chart = std::move(chart)](QSizeF size, const Look& look) {
            return PictureOf(chart, size, look);
          }};
}

}  // namespace

DeviationChart SampleDeviations(std::size_t loads, int days) {
  Numbers numbers;
  DeviationChart chart;
  for (std::size_t i = 0; i < loads; ++i) {
    const double part = static_cast<double>(i) / static_cast<double>(loads);
    const double hour = 5 + 11 * numbers.Part();
    const double percent = numbers.Part() < 0.01 ? 40 * numbers.Part() : numbers.Around(2.2) - 0.4;
    chart.loads.push_back({DayNumber(kFirstDay) + std::floor(part * days) + hour / 24, percent,
                           static_cast<std::int64_t>(1000 + i)});
  }
  for (int day = 0; day < days && loads > 0; ++day) {
    chart.days.push_back({DayOf(day), numbers.Around(0.4) - 0.4});
  }
  return Titled(std::move(chart), "Deviation over time",
                "Each load's actual weight less its target, in percent of the target.");
}

DistributionChart SampleDistribution(std::size_t loads) {
  Numbers numbers;
  DistributionChart chart;
  DeviationCounts counts(chart.limit);
  for (std::size_t i = 0; i < loads; ++i) {
    counts.Add(numbers.Part() < 0.02 ? 60 * numbers.Part() - 20 : numbers.Around(2.2) - 0.4);
  }
  chart.ranges = counts.Ranges();
  if (loads > 0) {
    chart.median = -0.4;
  }
  return Titled(std::move(chart), "Distribution of the deviations",
                "Loads by their deviation from the target.");
}

OperatorChart SampleOperators(std::size_t ingredients, std::size_t operators) {
  Numbers numbers;
  OperatorChart chart;
  for (std::size_t row = 0; row < ingredients; ++row) {
    for (std::size_t column = 0; column < operators; ++column) {
      const auto loads = static_cast<std::int64_t>(numbers.Part() * 120);
      if (loads > 5) {
        chart.cells.push_back({IngredientName(row),
                               column == 0 ? std::nullopt : std::optional(std::to_string(column)),
                               loads,
                               {}});
        if (loads >= 20) {
          chart.cells.back().share = numbers.Part() * 101;
        }
      }
    }
  }
  return Titled(std::move(chart), "Ingredient by operator",
                "The share of an operator's loads within the limit, for each ingredient.");
}

WeightChart SampleWeights(std::size_t ingredients) {
  WeightChart chart{.units = "LB"};
  for (std::size_t i = 0; i < ingredients; ++i) {
    chart.weights.push_back({IngredientName(i), 4000.0 / static_cast<double>(1 + i * i % 11)});
  }
  return Titled(std::move(chart), "Where the weight goes",
                "All that was loaded too much and too little, added up for each ingredient.");
}

DeliveredChart SampleDelivered(int days) {
  Numbers numbers;
  DeliveredChart chart{.units = "LB"};
  for (int i = 0; i < days; ++i) {
    DeliveredDay day{.date = DayOf(i)};
    day.missed = i % 17 == 11;
    if (!day.missed) {
      day.called = 4000 + 20.0 * (i % 40);
      day.delivered = *day.called + numbers.Around(90);
    }
    if (i >= 6) {
      day.mean7 = 3950 + 20.0 * (i % 40);
    }
    chart.days.push_back(day);
  }
  return Titled(std::move(chart), "Called and delivered: pen 101",
                "The sum of each day's deliveries.");
}

BalanceChart SampleBalance(std::size_t batches, int days) {
  Numbers numbers;
  BalanceChart chart{.units = "LB"};
  for (std::size_t i = 0; i < batches; ++i) {
    const double part = static_cast<double>(i) / static_cast<double>(batches);
    BalanceMark mark{.day = DayNumber(kFirstDay) + part * days,
                     .left = numbers.Around(35) + 10,
                     .limit = 110.23,
                     .transaction = static_cast<std::int64_t>(i + 1)};
    const double kind = numbers.Part();
    if (kind < 0.01) {
      mark.left = 5200;
      mark.state = BalanceState::kNeverFed;
    } else if (kind < 0.02) {
      mark.left = -4800;
      mark.state = BalanceState::kNeverLoaded;
    } else if (kind < 0.05) {
      mark.left *= 3;
    }
    if (mark.state == BalanceState::kBalanced && std::abs(mark.left) > mark.limit) {
      mark.state = BalanceState::kOut;
    }
    chart.batches.push_back(mark);
  }
  return Titled(std::move(chart), "Balance of the batches", "What was loaded less what was fed.");
}

std::vector<SamplePicture> SamplePictures() {
  return {
      Sample("deviations", SampleDeviations(600, 30)),
      Sample("deviations-empty", DeviationChart{}),
      Sample("deviations-one", SampleDeviations(1, 1)),
      Sample("deviations-many", SampleDeviations(30000, 365)),
      Sample("distribution", SampleDistribution(900)),
      Sample("distribution-empty", DistributionChart{}),
      Sample("distribution-one", SampleDistribution(1)),
      Sample("operators", SampleOperators(7, 6)),
      Sample("operators-empty", OperatorChart{}),
      Sample("operators-one", SampleOperators(1, 1)),
      Sample("operators-many", SampleOperators(12, 40)),
      Sample("operators-long", LongOperators()),
      Sample("weights", SampleWeights(7)),
      Sample("weights-empty", WeightChart{}),
      Sample("weights-one", SampleWeights(1)),
      Sample("weights-many", SampleWeights(60)),
      Sample("weights-long", LongWeights()),
      Sample("delivered", SampleDelivered(30)),
      Sample("delivered-empty", DeliveredChart{}),
      Sample("delivered-one", SampleDelivered(1)),
      Sample("delivered-many", SampleDelivered(900)),
      Sample("balance", SampleBalance(250, 30)),
      Sample("balance-empty", BalanceChart{}),
      Sample("balance-one", SampleBalance(1, 1)),
      Sample("balance-many", SampleBalance(20000, 700)),
  };
}

}  // namespace vrx::testing
