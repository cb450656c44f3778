#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "insight/accuracy.h"
#include "insight/deviations.h"
#include "insight/exact.h"

namespace vrx {

// The limits of a question as exact tests.
class AccuracyTests {
 public:
  AccuracyTests(const AccuracyLimits& limits, WeightUnit unit);

  // All of a load with a positive target and the amount of its difference.
  [[nodiscard]] bool IsWithin(const Exact& amount, const Exact& target) const;
  [[nodiscard]] bool IsWithinWeight(const Exact& amount) const;
  [[nodiscard]] bool IsBeyond(const Exact& amount) const { return beyond_.Compare(amount) > 0; }
  [[nodiscard]] const Exact& Division() const { return division_; }

 private:
  Exact percent_;
  Exact division_;
  LimitTest weight_;
  LimitTest beyond_;
};

// What the figures of a set of loads are made of.
class AccuracySums {
 public:
  // True if the load is within the limit in percent; false also if the measures leave it out.
  bool Add(const Exact& target, const Exact& actual, const AccuracyTests& tests);
  // Adds the loads of another set.
  void Append(AccuracySums&& other);

  // Finds the quartiles, so it changes the order of the loads.
  [[nodiscard]] AccuracyFigures Figures(bool deliveries);
  // Of several sets together, each of other loads.
  [[nodiscard]] static AccuracyFigures FiguresOf(std::span<AccuracySums> sets, bool deliveries);

 private:
  void AddCounts(const AccuracySums& other);
  [[nodiscard]] AccuracyFigures Figures(const std::optional<Quartiles>& quartiles,
                                        bool deliveries) const;

  std::int64_t n_ = 0;
  std::int64_t within_ = 0;
  std::int64_t within_weight_ = 0;
  std::int64_t beyond_ = 0;
  std::int64_t below_ = 0;
  std::int64_t well_below_ = 0;  // by more than the division
  std::int64_t not_loaded_ = 0;
  std::int64_t without_target_ = 0;
  Exact target_;
  Exact actual_;
  Exact gross_;
  Exact target_within_;
  Exact not_loaded_target_;
  Exact without_target_actual_;
  Deviations deviations_;
};

// 100 part / whole.
[[nodiscard]] double Percent(const Exact& part, const Exact& whole);
[[nodiscard]] double Percent(std::int64_t part, std::int64_t whole);

}  // namespace vrx
