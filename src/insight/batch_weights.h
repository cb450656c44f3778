#pragma once

#include <algorithm>
#include <cstdint>

#include "insight/batches.h"
#include "insight/exact.h"
#include "insight/record_reader.h"
#include "insight/weight_limit.h"

namespace vrx {

// What was loaded and delivered of a batch.
struct BatchWeights {
  Exact loaded;
  Exact fed;
  std::int32_t seconds = kNoTime;  // of the first row with a time
  std::int64_t rows = 0;

  void Add(const Record& record) {
    (record.is_load ? loaded : fed) += record.actual;
    seconds = seconds == kNoTime ? record.seconds : seconds;
    ++rows;
  }
};

// The limits of a question about balance as exact tests.
class BalanceTests {
 public:
  // Throws QuestionError for a limit that is not a number from 0.
  BalanceTests(const BalanceQuestion& question, WeightUnit unit)
      : percent_(CheckedLimit(question.percent, "percent")),
        weight_(question.weight, unit, "weight"),
        least_(question.weight.In(unit)) {}

  [[nodiscard]] BalanceState StateOf(const Batch& batch, const BatchWeights& weights) const {
    if (!batch.has_delivery) {
      return BalanceState::kNeverFed;
    }
    if (!batch.has_load) {
      return BalanceState::kNeverLoaded;
    }
    const Exact amount = (weights.loaded - weights.fed).Abs();
    const bool out =
        amount * Exact::Whole(100) > weights.loaded * percent_ && weight_.Compare(amount) > 0;
    return out ? BalanceState::kOut : BalanceState::kBalanced;
  }

  // The larger limit.
  [[nodiscard]] double LimitOf(const BatchWeights& weights) const {
    return std::max(Quotient(weights.loaded * percent_, Exact::Whole(100)), least_);
  }

 private:
  Exact percent_;
  LimitTest weight_;
  double least_;  // the limit as a weight, in the database's unit
};

}  // namespace vrx
