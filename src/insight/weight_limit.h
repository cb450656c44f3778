#pragma once

#include <string>
#include <string_view>

#include "insight/exact.h"

namespace vrx {

enum class WeightUnit { kPounds, kKilograms };

// Pounds for every text but "KG".
[[nodiscard]] WeightUnit UnitOf(std::string_view text);
[[nodiscard]] std::string TextOf(WeightUnit unit);

// A weight in its own unit. 1 lb is 0.45359237 kg exactly.
struct WeightLimit {
  double weight = 0;
  WeightUnit unit = WeightUnit::kKilograms;

  [[nodiscard]] double In(WeightUnit other) const;  // the nearest double
  bool operator==(const WeightLimit&) const = default;
};

// Compares weights in the unit of a database exactly with a limit in any unit.
class LimitTest {
 public:
  // Throws QuestionError if the limit is not a number from 0; `name` is what the text calls it.
  LimitTest(const WeightLimit& limit, WeightUnit unit, std::string_view name);

  // -1 if the weight is below the limit, 0 if it is equal, 1 if it is above.
  [[nodiscard]] int Compare(const Exact& weight) const;

 private:
  Exact factor_;  // 0 for 1
  Exact limit_;
};

// Exact number of a percentage or weight from 0. Throws QuestionError.
[[nodiscard]] Exact CheckedLimit(double limit, std::string_view name);

}  // namespace vrx
