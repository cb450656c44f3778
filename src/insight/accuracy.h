#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "insight/question.h"
#include "insight/weight_limit.h"

namespace vrx {

enum class AccuracyKey { kIngredient, kRecipe, kOperator, kPen, kDay, kWeek, kMonth };

// The defaults are those of the yardstick; the division is the scale's, in the database's unit.
struct AccuracyLimits {
  double percent = 2;
  WeightLimit weight = {5, WeightUnit::kKilograms};
  WeightLimit beyond = {62.5, WeightUnit::kKilograms};
  double division = 0;
};

struct AccuracyQuestion {
  Question about = {};
  bool deliveries = false;
  // One key or two. Loads have no pen, deliveries no ingredient. Recipe and operator are those of
  // the load or delivery; day, ISO week and month are those of its batch.
  std::vector<AccuracyKey> by = {AccuracyKey::kIngredient};
  AccuracyLimits limits = {};
};

struct CountAndWeight {
  std::int64_t n = 0;
  std::optional<double> weight = {};
};

// Figures of a set of loads or of deliveries. T is the target and A the actual weight, NULL counts
// 0. All but the two counts are over those with T > 0 and A > 0. Weights are in the database's unit
// and shares in percent; sums are exact and each figure is the nearest double. Nothing is a figure
// of an empty set.
struct AccuracyFigures {
  std::int64_t n = 0;
  CountAndWeight not_loaded = {};      // T > 0 and A <= 0, sum of T
  CountAndWeight without_target = {};  // T <= 0, sum of A
  std::optional<double> target = {};
  std::optional<double> actual = {};
  std::optional<double> net = {};  // sum of A - T
  std::optional<double> net_percent = {};
  std::optional<double> gross = {};  // sum of abs(A - T)
  std::optional<double> gross_percent = {};
  // Shares with abs(A - T) below the limit in percent of T or at most the division, of the loads
  // and of their targets; below the limit as a weight or at most the division; above the larger
  // limit; with A < T. Of an operator with fewer than 20 loads there are none.
  std::optional<double> within = {};
  std::optional<double> weight_within = {};
  std::optional<double> within_weight = {};
  std::optional<double> beyond = {};
  std::optional<double> below = {};
  // Of 100 (A - T) / T, by linear interpolation between the order statistics, h = (n - 1) p.
  std::optional<double> median = {};
  std::optional<double> q1 = {};
  std::optional<double> q3 = {};
  // Loads by operator only: the mean of the shares `within` of the ingredients that the operator
  // loaded, weighted by the targets that all operators of the answer have of each.
  std::optional<double> standardized = {};
  // The tolerance is taken for the target: at least 75 % are below it by more than the division and
  // the median is -0.5 % or less. Nothing below 40 loads and for deliveries.
  std::optional<bool> marked = {};
};

struct AccuracyGroup {
  std::vector<std::optional<std::string>> key = {};  // one text for each key; nothing for "(none)"
  AccuracyFigures figures = {};
};

// A share of 33 dairy herds with 386,011 loads and where the yard lies among them. No figure is
// good or bad.
struct YardstickShare {
  double loads;   // share of all loads
  double lowest;  // of a herd
  double highest;
  std::optional<double> median = {};  // of the herds
  double yard;                        // the same share of the answer
};

// M. C. Barry, abstract W324, 2015. Of loads only, never of deliveries.
struct Yardstick {
  YardstickShare within;         // 2 %
  YardstickShare within_weight;  // 5 kg
  YardstickShare beyond;         // 62.5 kg
};

inline constexpr std::string_view kYardstickSource = "M. C. Barry, abstract W324, 2015";
inline constexpr int kYardstickHerds = 33;
inline constexpr int kYardstickLoads = 386011;

struct Accuracy {
  InsightNotes notes = {};
  AccuracyLimits limits = {};              // weights in the database's unit
  std::vector<AccuracyGroup> groups = {};  // ascending by key
  AccuracyFigures total = {};
  // Only of all loads, without a filter by name, with the limits that it was made with.
  std::optional<Yardstick> yardstick = {};
};

// Throws QuestionError, QuestionCancelled and DatabaseError.
[[nodiscard]] Accuracy ReadAccuracy(SQLite::Database& database, const AccuracyQuestion& question,
                                    const InsightProgress& progress = {});
// The same with each group passed to `take`. Memory does not grow with the groups if the first of
// two keys is the day, week or month.
Accuracy StreamAccuracy(SQLite::Database& database, const AccuracyQuestion& question,
                        const TakeLine<AccuracyGroup>& take, const InsightProgress& progress = {});

// The limits with weights in a unit.
[[nodiscard]] AccuracyLimits LimitsIn(WeightUnit unit, const AccuracyLimits& limits);

// What an ingredient of a batch is too much or too little of the ration, whatever the batch weighs:
// its share of what was loaded less its share of the targets.
struct CompositionLine {
  std::optional<std::int64_t> transaction = {};
  std::optional<std::string> recipe = {};
  std::optional<std::string> ingredient = {};
  std::optional<double> points = {};  // percentage points; nothing if a sum is 0 or less
};

struct Composition {
  InsightNotes notes = {};
  std::vector<CompositionLine> lines = {};  // batches by date and number, ingredients by name
};

// Of whole batches. Throws QuestionError, QuestionCancelled and DatabaseError.
[[nodiscard]] Composition ReadComposition(SQLite::Database& database, const Question& question,
                                          const InsightProgress& progress = {});
// The same with each line passed to `take`.
InsightNotes StreamComposition(SQLite::Database& database, const Question& question,
                               const TakeLine<CompositionLine>& take,
                               const InsightProgress& progress = {});

}  // namespace vrx
