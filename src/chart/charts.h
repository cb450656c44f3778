#pragma once

#include <QSizeF>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/date.h"
#include "chart/look.h"
#include "chart/picture.h"
#include "insight/accuracy.h"
#include "insight/batches.h"
#include "insight/loads.h"
#include "insight/pens.h"

namespace vrx {

// The six pictures: each is a plain struct and a function that lays it out in a size. A picture may
// become taller than the size, never wider, where its texts or rows need it. Hits have the index of
// an entry of the list that the struct names. Entries with numbers that are not finite are left
// out; without any entry a sentence takes the place of the plot.

// What the caller says about a picture, drawn above it. Both may be empty.
struct ChartTexts {
  std::string title = {};
  std::string how = {};  // how the figure is made
};

// Each load's deviation from its target. Many loads are drawn as one mark for each place of the
// plot.
struct DeviationDay {
  Date date = {};
  double median = 0;  // in percent
};

struct DeviationChart {
  ChartTexts texts = {};
  double limit = 2;                       // percent; the band is within it
  std::vector<DeviationLoad> loads = {};  // hits
  std::vector<DeviationDay> days = {};    // ascending
  bool deliveries = false;                // not loads
};

[[nodiscard]] Picture PictureOf(const DeviationChart& chart, QSizeF size, const Look& look);

// How many loads deviate by how much. The ranges ascend without gaps.
struct DistributionChart {
  ChartTexts texts = {};
  double limit = 2;
  std::vector<DeviationRange> ranges = {};  // hits
  std::optional<double> median = {};
  bool deliveries = false;  // not loads
};

[[nodiscard]] Picture PictureOf(const DistributionChart& chart, QSizeF size, const Look& look);

// The share of loads within the limit by ingredient and operator. A cell without a share is blank.
// Rows are in the order of first appearance; columns begin with no operator, then come numbers,
// then names.
struct OperatorCell {
  std::optional<std::string> ingredient = {};
  std::optional<std::string> operator_id = {};
  std::int64_t loads = 0;
  std::optional<double> share = {};  // percent
};

struct OperatorChart {
  ChartTexts texts = {};
  double limit = 2;
  std::vector<OperatorCell> cells = {};  // hits
};

[[nodiscard]] Picture PictureOf(const OperatorChart& chart, QSizeF size, const Look& look);

// The sum of abs(A - T) by ingredient. Drawn largest first; what does not fit is one bar at the
// end.
struct WeightBar {
  std::optional<std::string> ingredient = {};
  double gross = 0;
};

struct WeightChart {
  ChartTexts texts = {};
  std::string units = {};               // "LB" or "KG"
  std::vector<WeightBar> weights = {};  // hits, in any order
};

[[nodiscard]] Picture PictureOf(const WeightChart& chart, QSizeF size, const Look& look);

// The days of a pen.
struct DeliveredDay {
  Date date = {};
  std::optional<double> called = {};
  std::optional<double> delivered = {};  // nothing on a missed day
  std::optional<double> mean7 = {};
  bool missed = false;
};

struct DeliveredChart {
  ChartTexts texts = {};
  std::string units = {};
  std::vector<DeliveredDay> days = {};  // hits; ascending
};

[[nodiscard]] Picture PictureOf(const DeliveredChart& chart, QSizeF size, const Look& look);

// What was left of each batch, R = L - F.
struct BalanceMark {
  double day = 0;
  double left = 0;
  double limit = 0;  // out of balance if abs(left) is above it
  BalanceState state = BalanceState::kBalanced;
  std::int64_t transaction = 0;
};

struct BalanceChart {
  ChartTexts texts = {};
  std::string units = {};
  std::vector<BalanceMark> batches = {};  // hits
};

[[nodiscard]] Picture PictureOf(const BalanceChart& chart, QSizeF size, const Look& look);

// The charts of answers that hold all they need. The texts are the caller's.
[[nodiscard]] DeviationChart DeviationChartOf(const Loads& loads, const Accuracy& by_day);
[[nodiscard]] DistributionChart DistributionChartOf(const Loads& loads, const Accuracy& by_any_key);
[[nodiscard]] OperatorChart OperatorChartOf(const Accuracy& by_ingredient_and_operator);
[[nodiscard]] WeightChart WeightChartOf(const Accuracy& by_ingredient);
[[nodiscard]] DeliveredChart DeliveredChartOf(const Delivered& delivered,
                                              const std::optional<std::string>& pen);
// Batches without a date are at no place of the axis; a hit has the index of its line.
[[nodiscard]] BalanceChart BalanceChartOf(const Balance& balance);

}  // namespace vrx
