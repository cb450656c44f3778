#include <algorithm>
#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>

#include "insight/batches.h"
#include "insight/deviations.h"
#include "insight/names.h"
#include "insight/record_parts.h"
#include "insight/record_reader.h"

namespace vrx {
namespace {

constexpr std::int64_t kSecondsADay = std::int64_t{24} * 60 * 60;
constexpr std::int64_t kHalfADay = kSecondsADay / 2;

// Seconds since 1970-01-01 of the rows of a batch, in stored order.
struct Clock {
  std::int64_t last = 0;
  std::int64_t first_load = 0;
  std::int64_t last_load = 0;
  std::int64_t first_delivery = 0;
  std::int64_t last_delivery = 0;
  std::int64_t loads = 0;
  std::int64_t deliveries = 0;
  bool left_out = false;

  void Add(const Record& record) {
    if (record.day == kNoDay || record.seconds == kNoTime) {
      left_out = true;
    }
    if (left_out) {
      return;
    }
    std::int64_t now = record.day * kSecondsADay + record.seconds;
    if (loads + deliveries > 0 && now < last) {
      if (const std::int64_t too_early = last - now - kHalfADay; too_early > 0) {
        now += (too_early + kSecondsADay - 1) / kSecondsADay * kSecondsADay;
      }
      left_out = now < last;
    }
    last = now;
    if (record.is_load) {
      first_load = loads == 0 ? now : first_load;
      last_load = now;
      ++loads;
    } else {
      first_delivery = deliveries == 0 ? now : first_delivery;
      last_delivery = now;
      ++deliveries;
    }
  }

  [[nodiscard]] std::optional<std::int64_t> Preparing() const {
    return loads >= 2 ? std::optional(last_load - first_load) : std::nullopt;
  }
  [[nodiscard]] std::optional<std::int64_t> Waiting() const {
    return loads >= 1 && deliveries >= 1 ? std::optional(first_delivery - last_load) : std::nullopt;
  }
  [[nodiscard]] std::optional<std::int64_t> Feeding() const {
    return deliveries >= 2 ? std::optional(last_delivery - first_delivery) : std::nullopt;
  }
};

// Durations of a group.
class Durations {
 public:
  void Add(const std::optional<std::int64_t>& seconds) {
    if (seconds) {
      // A percentage of a hundred minutes is a count of minutes.
      values_.Add(Exact::Whole(*seconds), Exact::Whole(100 * kSecondsAMinute));
    }
  }
  TimesFigures Figures() {
    const auto quartiles = values_.FindQuartiles(Exact());
    if (!quartiles) {
      return {};
    }
    return {.median = quartiles->median, .q1 = quartiles->q1, .q3 = quartiles->q3};
  }

 private:
  Deviations values_;
};

struct TimedGroup {
  TimesGroup shown;
  Durations preparing;
  Durations waiting;
  Durations feeding;

  void Add(const Clock& clock) {
    if (clock.left_out) {
      ++shown.left_out;
      return;
    }
    ++shown.batches;
    preparing.Add(clock.Preparing());
    waiting.Add(clock.Waiting());
    feeding.Add(clock.Feeding());
  }
};

std::optional<double> Minutes(const std::optional<std::int64_t>& seconds) {
  return seconds ? std::optional(Quotient(Exact::Whole(*seconds), Exact::Whole(kSecondsAMinute)))
                 : std::nullopt;
}

BatchTimes TimesOf(const Batch& batch, const Clock& clock, const RecordReader& reader) {
  BatchTimes times{.transaction = batch.Number(),
                   .date = ToDate(batch.day),
                   .recipe = reader.NamesOf(NameKind::kRecipe).Name(batch.recipe),
                   .operator_id = reader.NamesOf(NameKind::kOperator).Name(batch.operator_id),
                   .left_out = clock.left_out};
  if (!clock.left_out) {
    times.preparing = Minutes(clock.Preparing());
    times.waiting = Minutes(clock.Waiting());
    times.feeding = Minutes(clock.Feeding());
  }
  return times;
}

std::vector<TimesGroup> FinishGroups(std::unordered_map<std::string, TimedGroup>& groups,
                                     NameKind kind) {
  std::vector<TimesGroup> finished;
  for (auto& [name, group] : groups) {
    group.shown.preparing = group.preparing.Figures();
    group.shown.waiting = group.waiting.Figures();
    group.shown.feeding = group.feeding.Figures();
    finished.push_back(std::move(group.shown));
  }
  std::sort(finished.begin(), finished.end(), [kind](const auto& left, const auto& right) {
    return NameIsBefore(kind, left.key, right.key);
  });
  return finished;
}

}  // namespace

Times StreamTimes(SQLite::Database& database, const TimesQuestion& question,
                  const TakeLine<BatchTimes>& take, const InsightProgress& progress) {
  const bool by_recipe = question.by == TimesKey::kRecipe;
  const NameKind kind = by_recipe ? NameKind::kRecipe : NameKind::kOperator;
  std::unordered_map<std::string, TimedGroup> groups;  // a missing name is empty
  Times answer;
  answer.notes = BatchParts(database, question.about, progress).Read([&](RecordReader& reader) {
    std::vector<Clock> clocks;
    reader.Read(kReadBoth | kReadBatch | kReadRecipe | kReadOperator | kReadDate | kReadTime,
                [&](const Record& record) {
                  clocks.resize(reader.Batches().size());
                  clocks[record.batch].Add(record);
                });
    for (const std::uint32_t index : reader.BatchesInOrder()) {
      const Batch& batch = reader.Batches()[index];
      const NameId key = by_recipe ? batch.recipe : batch.operator_id;
      TimedGroup& group = groups[reader.NamesOf(kind).Text(key)];
      group.shown.key = reader.NamesOf(kind).Name(key);
      group.Add(clocks[index]);
      take(TimesOf(batch, clocks[index], reader));
    }
  });
  answer.groups = FinishGroups(groups, kind);
  return answer;
}

Times ReadTimes(SQLite::Database& database, const TimesQuestion& question,
                const InsightProgress& progress) {
  std::vector<BatchTimes> batches;
  Times answer = StreamTimes(
      database, question, [&](BatchTimes&& batch) { batches.push_back(std::move(batch)); },
      progress);
  answer.batches = std::move(batches);
  return answer;
}

}  // namespace vrx
