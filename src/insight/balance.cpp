#include <algorithm>
#include <chrono>
#include <cstddef>
#include <map>
#include <utility>

#include "base/translation.h"
#include "insight/accuracy_figures.h"
#include "insight/batch_weights.h"
#include "insight/batches.h"
#include "insight/deviations.h"
#include "insight/record_parts.h"
#include "insight/record_reader.h"

namespace vrx {
namespace {

constexpr DayNumber kMedianDays = 30;

std::optional<double> PercentIfPositive(const Exact& part, const Exact& whole) {
  return whole.Sign() > 0 ? std::optional(Percent(part, whole)) : std::nullopt;
}

void CountState(Balance& answer, BalanceState state) {
  ++answer.batches;
  answer.out += state == BalanceState::kOut ? 1 : 0;
  answer.never_fed += state == BalanceState::kNeverFed ? 1 : 0;
  answer.never_loaded += state == BalanceState::kNeverLoaded ? 1 : 0;
}

std::vector<BalanceDay> DaysOf(const std::map<DayNumber, BatchWeights>& weights) {
  std::vector<BalanceDay> days;
  for (auto day = weights.begin(); day != weights.end(); ++day) {
    const auto& [loaded, fed, seconds, rows] = day->second;
    BalanceDay shown{.date = *ToDate(day->first),
                     .loaded = loaded.ToDouble(),
                     .left = (loaded - fed).ToDouble(),
                     .left_percent = PercentIfPositive(loaded - fed, loaded)};
    Deviations month;
    for (auto before = weights.upper_bound(day->first - kMedianDays); before != std::next(day);
         ++before) {
      if (before->second.loaded.Sign() > 0) {
        month.Add(before->second.loaded - before->second.fed, before->second.loaded);
      }
    }
    if (const auto quartiles = month.FindQuartiles(Exact())) {
      shown.median = quartiles->median;
    }
    days.push_back(shown);
  }
  return days;
}

// The batches of a question, part by part.
class BalanceReader {
 public:
  BalanceReader(const BalanceQuestion& question, const TakeLine<BalanceLine>& take)
      : question_(question), take_(take) {}

  Balance Read(SQLite::Database& database, const InsightProgress& progress) {
    answer_.notes =
        BatchParts(database, question_.about, progress).Read([this](RecordReader& reader) {
          TakePart(reader);
        });
    answer_.days = DaysOf(days_);
    return std::move(answer_);
  }

 private:
  void TakePart(RecordReader& reader) {
    const BalanceTests tests(question_, reader.Unit());
    std::vector<BatchWeights> weights;
    reader.Read(
        kReadBoth | kReadBatch | kReadRecipe | kReadOperator | kReadWeights | kReadDate | kReadTime,
        [&](const Record& record) {
          weights.resize(reader.Batches().size());
          weights[record.batch].Add(record);
        });
    for (const std::uint32_t index : reader.BatchesInOrder()) {
      const Batch& batch = reader.Batches()[index];
      const BalanceState state = tests.StateOf(batch, weights[index]);
      CountState(answer_, state);
      if (batch.day != kNoDay) {
        days_[batch.day].loaded += weights[index].loaded;
        days_[batch.day].fed += weights[index].fed;
      }
      if (state != BalanceState::kBalanced || question_.all) {
        take_(LineOf(reader, batch, weights[index], tests, state));
      }
    }
  }

  static BalanceLine LineOf(const RecordReader& reader, const Batch& batch,
                            const BatchWeights& weights, const BalanceTests& tests,
                            BalanceState state) {
    const auto& [loaded, fed, seconds, rows] = weights;
    BalanceLine line{.transaction = batch.Number(),
                     .date = ToDate(batch.day),
                     .recipe = reader.NamesOf(NameKind::kRecipe).Name(batch.recipe),
                     .operator_id = reader.NamesOf(NameKind::kOperator).Name(batch.operator_id),
                     .left = (loaded - fed).ToDouble(),
                     .left_percent = PercentIfPositive(loaded - fed, loaded),
                     .state = state,
                     .time = ToTime(seconds),
                     .limit = tests.LimitOf(weights)};
    if (batch.has_load) {
      line.loaded = loaded.ToDouble();
    }
    if (batch.has_delivery) {
      line.fed = fed.ToDouble();
    }
    return line;
  }

  const BalanceQuestion& question_;
  const TakeLine<BalanceLine>& take_;
  Balance answer_;
  std::map<DayNumber, BatchWeights> days_;
};

}  // namespace

std::string_view TextOf(BalanceState state) {
  switch (state) {
    case BalanceState::kOut:
      return TrMark("out");
    case BalanceState::kNeverFed:
      return TrMark("never fed");
    case BalanceState::kNeverLoaded:
      return TrMark("never loaded");
    case BalanceState::kBalanced:
      break;
  }
  return TrMark("balanced");
}

Balance StreamBalance(SQLite::Database& database, const BalanceQuestion& question,
                      const TakeLine<BalanceLine>& take, const InsightProgress& progress) {
  BalanceReader reader(question, take);
  return reader.Read(database, progress);
}

Balance ReadBalance(SQLite::Database& database, const BalanceQuestion& question,
                    const InsightProgress& progress) {
  std::vector<BalanceLine> lines;
  Balance answer = StreamBalance(
      database, question, [&](BalanceLine&& line) { lines.push_back(std::move(line)); }, progress);
  answer.lines = std::move(lines);
  return answer;
}

}  // namespace vrx
