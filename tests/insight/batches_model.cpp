#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

#include "base/date.h"
#include "insight/insight_model.h"

namespace vrx::testing {
namespace {

std::optional<double> PercentOf(Wide part, Wide whole) {
  return whole > 0 ? std::optional(Nearest(100 * part, whole)) : std::nullopt;
}

// Minutes since 1970; the random yards have no seconds.
std::optional<std::int64_t> MomentOf(const ModelRow& row) {
  const auto date = row.date ? ParseStoredDate(*row.date) : std::nullopt;
  const auto time = row.time ? ParseStoredTime(*row.time) : std::nullopt;
  if (!date || !time) {
    return std::nullopt;
  }
  return std::chrono::sys_days(*date).time_since_epoch().count() * 1440 + time->hour * 60 +
         time->minute;
}

using Minutes = std::optional<std::int64_t>;

struct ModelTimes {
  bool left_out = false;
  Minutes preparing = {};
  Minutes waiting = {};
  Minutes feeding = {};
};

ModelTimes TimesOf(const std::vector<ModelRow>& rows) {
  ModelTimes times;
  std::vector<std::int64_t> loads;
  std::vector<std::int64_t> deliveries;
  Minutes before;
  for (const ModelRow& row : rows) {
    Minutes now = MomentOf(row);
    if (!now) {
      return {.left_out = true};
    }
    if (before) {
      while (*now < *before - 720) {
        *now += 1440;
      }
      if (*now < *before) {
        return {.left_out = true};
      }
    }
    before = now;
    (row.IsLoad() ? loads : deliveries).push_back(*now);
  }
  if (loads.size() > 1) {
    times.preparing = loads.back() - loads.front();
  }
  if (!loads.empty() && !deliveries.empty()) {
    times.waiting = deliveries.front() - loads.back();
  }
  if (deliveries.size() > 1) {
    times.feeding = deliveries.back() - deliveries.front();
  }
  return times;
}

TimesFigures FiguresOf(std::vector<std::int64_t> minutes) {
  if (minutes.empty()) {
    return {};
  }
  std::vector<ModelQuotient> quotients;
  for (const std::int64_t minute : minutes) {
    quotients.push_back({minute, 1});
  }
  SortQuotients(quotients);
  const auto at = [&](std::size_t quarter) {
    const ModelQuotient place = Quantile(quotients, quarter);
    return Nearest(place.dividend, place.divisor);
  };
  return {.median = at(2), .q1 = at(1), .q3 = at(3)};
}

}  // namespace

Balance Model::ReadBalance(const BalanceQuestion& question) const {
  Balance answer;
  std::map<std::string, std::pair<Wide, Wide>> days;  // loaded and left
  for (const ModelBatch& batch : Chosen(question.about)) {
    Wide loaded = 0;
    Wide fed = 0;
    int loads = 0;
    for (const std::size_t i : batch) {
      (rows_[i].IsLoad() ? loaded : fed) += rows_[i].Actual();
      loads += rows_[i].IsLoad() ? 1 : 0;
    }
    const Wide left = loaded - fed;
    const Wide amount = left < 0 ? -left : left;
    BalanceLine line;
    if (loads == static_cast<int>(batch.size())) {
      line.state = BalanceState::kNeverFed;
      ++answer.never_fed;
    } else if (loads == 0) {
      line.state = BalanceState::kNeverLoaded;
      ++answer.never_loaded;
    } else if (amount * 100'000 > loaded * static_cast<Wide>(question.percent * 1000 + 0.5) &&
               LimitAgainst(question.weight, units_, amount) < 0) {
      line.state = BalanceState::kOut;
      ++answer.out;
    }
    ++answer.batches;
    const auto day = DayOf(batch);
    if (day) {
      days[*day].first += loaded;
      days[*day].second += left;
      line.date = ParseStoredDate(*day);
    }
    line.transaction = rows_[batch.front()].number;
    line.recipe = NameOr(rows_[batch.front()].recipe);
    line.operator_id = UserOf(rows_[batch.front()]);
    line.loaded = loads > 0 ? std::optional(Weight(loaded)) : std::nullopt;
    line.fed = loads < static_cast<int>(batch.size()) ? std::optional(Weight(fed)) : std::nullopt;
    line.left = Weight(left);
    line.left_percent = PercentOf(left, loaded);
    if (question.all || line.state != BalanceState::kBalanced) {
      answer.lines.push_back(line);
    }
  }
  for (const auto& [day, weights] : days) {
    BalanceDay shown{.date = *ParseStoredDate(day),
                     .loaded = Weight(weights.first),
                     .left = Weight(weights.second),
                     .left_percent = PercentOf(weights.second, weights.first)};
    std::vector<ModelQuotient> month;
    for (const auto& [other, others] : days) {
      const auto distance =
          std::chrono::sys_days(shown.date) - std::chrono::sys_days(*ParseStoredDate(other));
      if (distance.count() >= 0 && distance.count() < 30 && others.first > 0) {
        month.push_back({100 * others.second, others.first});
      }
    }
    if (!month.empty()) {
      SortQuotients(month);
      const ModelQuotient median = Quantile(month, 2);
      shown.median = Nearest(median.dividend, median.divisor);
    }
    answer.days.push_back(shown);
  }
  return answer;
}

Times Model::ReadTimes(const TimesQuestion& question) const {
  struct Group {
    TimesGroup shown;
    std::vector<std::int64_t> preparing;
    std::vector<std::int64_t> waiting;
    std::vector<std::int64_t> feeding;
  };
  Times answer;
  std::map<std::string, Group> groups;
  for (const ModelBatch& batch : Chosen(question.about)) {
    std::vector<ModelRow> rows;
    for (const std::size_t i : batch) {
      rows.push_back(rows_[i]);
    }
    const ModelTimes times = TimesOf(rows);
    const bool by_recipe = question.by == TimesKey::kRecipe;
    Group& group =
        groups[KeyOf(by_recipe ? AccuracyKey::kRecipe : AccuracyKey::kOperator, rows[0], batch)];
    group.shown.key = by_recipe ? NameOr(rows[0].recipe) : UserOf(rows[0]);
    group.shown.batches += times.left_out ? 0 : 1;
    group.shown.left_out += times.left_out ? 1 : 0;
    const auto add = [](std::vector<std::int64_t>& minutes, const Minutes& value) {
      if (value) {
        minutes.push_back(*value);
      }
    };
    add(group.preparing, times.preparing);
    add(group.waiting, times.waiting);
    add(group.feeding, times.feeding);
    const auto day = DayOf(batch);
    answer.batches.push_back({.transaction = rows[0].number,
                              .date = day ? ParseStoredDate(*day) : std::nullopt,
                              .recipe = NameOr(rows[0].recipe),
                              .operator_id = UserOf(rows[0]),
                              .left_out = times.left_out,
                              .preparing = times.preparing,
                              .waiting = times.waiting,
                              .feeding = times.feeding});
  }
  for (auto& [key, group] : groups) {
    group.shown.preparing = FiguresOf(group.preparing);
    group.shown.waiting = FiguresOf(group.waiting);
    group.shown.feeding = FiguresOf(group.feeding);
    answer.groups.push_back(group.shown);
  }
  return answer;
}

}  // namespace vrx::testing
