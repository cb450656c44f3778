#include <algorithm>
#include <chrono>
#include <map>
#include <set>
#include <utility>

#include "base/date.h"
#include "insight/insight_model.h"

namespace vrx::testing {
namespace {

std::optional<std::string> DateOf(const ModelRow& row) {
  return row.date && ParseStoredDate(*row.date) ? row.date : std::nullopt;
}

std::optional<Date> ToDay(const std::optional<std::string>& date) {
  return date ? ParseStoredDate(*date) : std::nullopt;
}

int DayOfText(const std::string& date) {
  return static_cast<int>(std::chrono::sys_days(*ParseStoredDate(date)).time_since_epoch().count());
}

std::string TextOfDay(int day) {
  return StoredText(Date(std::chrono::sys_days(std::chrono::days(day))));
}

std::optional<int> MinuteOf(const ModelRow& row) {
  const auto time = row.time ? ParseStoredTime(*row.time) : std::nullopt;
  return time ? std::optional(time->hour * 60 + time->minute) : std::nullopt;
}

}  // namespace

std::vector<TraceLine> Model::TraceIngredient(const Question& question) const {
  std::vector<TraceLine> lines;
  for (const ModelBatch& batch : Chosen(question)) {
    Wide loaded = 0;
    Wide fed = 0;
    Wide weight = 0;
    for (const std::size_t i : batch) {
      (rows_[i].IsLoad() ? loaded : fed) += rows_[i].Actual();
      if (rows_[i].IsLoad() && rows_[i].ingredient == question.ingredient) {
        weight += rows_[i].Actual();
      }
    }
    const ModelRow& first = rows_[batch.front()];
    const auto add = [&](TraceLine line, Wide amount) {
      line.transaction = first.number;
      line.recipe = NameOr(first.recipe);
      line.ingredient = question.ingredient;
      if (loaded > 0) {
        line.weight = Nearest(weight * amount, loaded * kBillion);
        line.share = Nearest(100 * weight, loaded);
      }
      lines.push_back(line);
    };
    for (const std::size_t i : batch) {
      const ModelRow& row = rows_[i];
      if (row.IsDelivery() && (!question.pen || row.pen == question.pen)) {
        add({.date = ToDay(DateOf(row)), .operator_id = UserOf(row), .pen = NameOr(row.pen)},
            row.Actual());
      }
    }
    add({.date = ToDay(DayOf(batch)), .operator_id = UserOf(first), .stayed = true}, loaded - fed);
  }
  return lines;
}

double Model::LoadedAndTraced(const Question& question) const {
  Wide sum = 0;
  for (const ModelBatch& batch : Chosen(question)) {
    Wide loaded = 0;
    Wide weight = 0;
    for (const std::size_t i : batch) {
      loaded += rows_[i].IsLoad() ? rows_[i].Actual() : 0;
      weight +=
          rows_[i].IsLoad() && rows_[i].ingredient == question.ingredient ? rows_[i].Actual() : 0;
    }
    sum += loaded > 0 ? weight : 0;
  }
  return Weight(sum);
}

std::vector<TraceLine> Model::TracePen(const Question& question) const {
  std::vector<TraceLine> lines;
  for (const ModelBatch& batch : Chosen(question)) {
    Wide loaded = 0;
    std::map<std::optional<std::string>, Wide> ingredients;
    for (const std::size_t i : batch) {
      if (rows_[i].IsLoad()) {
        loaded += rows_[i].Actual();
        ingredients[NameOr(rows_[i].ingredient)] += rows_[i].Actual();
      }
    }
    for (const std::size_t i : batch) {
      const ModelRow& row = rows_[i];
      if (!row.IsDelivery() || row.pen != question.pen) {
        continue;
      }
      TraceLine line{.transaction = rows_[batch.front()].number,
                     .date = ToDay(DateOf(row)),
                     .recipe = NameOr(rows_[batch.front()].recipe),
                     .operator_id = UserOf(row),
                     .pen = question.pen};
      if (ingredients.empty()) {
        lines.push_back(line);
      }
      for (const auto& [ingredient, weight] : ingredients) {
        if (question.ingredient && ingredient != question.ingredient) {
          continue;
        }
        line.ingredient = ingredient;
        if (loaded > 0) {
          line.weight = Nearest(weight * row.Actual(), loaded * kBillion);
          line.share = Nearest(100 * weight, loaded);
        }
        lines.push_back(line);
      }
    }
  }
  return lines;
}

std::vector<DeliveredLine> Model::ReadDelivered(const Question& question,
                                                const std::vector<HeadCount>& heads) const {
  Question without_period = question;
  without_period.from = without_period.to = std::nullopt;
  std::set<std::size_t> chosen;
  for (const ModelBatch& batch : Chosen(without_period)) {
    chosen.insert(batch.begin(), batch.end());
  }
  std::map<std::optional<std::string>, std::vector<ModelRow>> pens;
  for (const std::size_t i : chosen) {
    const ModelRow& row = rows_[i];
    if (row.IsDelivery() && DateOf(row) && (!question.pen || row.pen == question.pen)) {
      pens[NameOr(row.pen)].push_back(row);
    }
  }
  std::vector<DeliveredLine> lines;
  for (auto& [pen, rows] : pens) {
    std::stable_sort(rows.begin(), rows.end(), [](const ModelRow& one, const ModelRow& other) {
      return std::pair(one.date, MinuteOf(one)) < std::pair(other.date, MinuteOf(other));
    });
    const int begin = DayOfText(*rows.front().date);
    const int end = DayOfText(*rows.back().date);
    const auto of_day = [&](int day) {
      std::vector<ModelRow> some;
      for (const ModelRow& row : rows) {
        if (DayOfText(*row.date) == day) {
          some.push_back(row);
        }
      }
      return some;
    };
    const auto first_of = [&](int day) -> std::optional<int> {
      for (const ModelRow& row : of_day(day)) {
        if (const auto minute = MinuteOf(row)) {
          return minute;
        }
      }
      return std::nullopt;
    };
    for (int day = begin; day <= end; ++day) {
      DeliveredLine line{.pen = pen, .date = *ParseStoredDate(TextOfDay(day))};
      if ((question.from && line.date < *question.from) ||
          (question.to && line.date > *question.to)) {
        continue;
      }
      Wide week = 0;
      for (int before = day - 6; before <= day; ++before) {
        for (const ModelRow& row : of_day(before)) {
          week += row.Actual();
        }
      }
      if (day >= begin + 6) {
        line.mean7 = Nearest(week, 7 * kBillion);
      }
      const std::vector<ModelRow> today = of_day(day);
      line.missed = today.empty();
      if (line.missed) {
        lines.push_back(line);
        continue;
      }
      Wide called = 0;
      Wide delivered = 0;
      for (const ModelRow& row : today) {
        called += row.Target();
        delivered += row.Actual();
      }
      line.called = Weight(called);
      line.delivered = Weight(delivered);
      line.difference = Weight(delivered - called);
      line.feedings = static_cast<std::int64_t>(today.size());
      line.recipe = NameOr(today.back().recipe);
      for (std::size_t i = 1; i < rows.size(); ++i) {
        if (rows[i].date == today[0].date && NameOr(rows[i].recipe) != NameOr(rows[i - 1].recipe)) {
          line.recipe_changed = true;
        }
      }
      if (const auto first = first_of(day)) {
        line.first = TimeOfDay{*first / 60, *first % 60, 0};
        std::vector<ModelQuotient> shifts;
        for (int before = day - 14; before < day; ++before) {
          if (const auto other = first_of(before)) {
            shifts.push_back({*first - *other, 1});
          }
        }
        if (!shifts.empty()) {
          SortQuotients(shifts);
          const ModelQuotient median = Quantile(shifts, 2);
          line.first_shift = Nearest(median.dividend, median.divisor);
        }
      }
      std::optional<HeadCount> in_force;
      for (const HeadCount& count : heads) {
        if (pen == count.pen && count.from <= line.date &&
            (!in_force || in_force->from <= count.from)) {
          in_force = count;
        }
      }
      if (in_force && in_force->heads > 0) {
        line.per_head = Nearest(delivered, static_cast<Wide>(in_force->heads + 0.5) * kBillion);
      }
      lines.push_back(line);
    }
  }
  return lines;
}

bool Model::IsIncomplete(const std::optional<std::string>& from, const std::string& to) const {
  for (const ModelImport& import : imports_) {
    const std::string stored = import.at.substr(0, 10);
    const std::string first = import.first_date.value_or(stored);
    const std::string last = std::max(import.last_date.value_or(stored), stored);
    const bool faulty = import.not_read > 0 || import.left_out > 0 || !import.missing.empty() ||
                        (import.units != units_ && import.settled.empty());
    if (faulty && first <= to && (!from || last >= *from)) {
      return true;
    }
  }
  return std::any_of(stored_.begin(), stored_.end(), [&](const ModelRow& row) {
    const auto date = DateOf(row);
    return (row.import == 0 || !row.number) &&
           (!date || (*date <= to && (!from || *date >= *from)));
  });
}

std::vector<HoldingLine> Model::ReadHolding(const HoldingQuestion& question) const {
  const std::string on = StoredText(question.on);
  const auto is_asked = [&](const ModelRow& row) {
    return row.IsLoad() && row.ingredient &&
           std::count(question.ingredients.begin(), question.ingredients.end(), *row.ingredient) >
               0;
  };
  struct Wagon {
    std::optional<std::int64_t> number;
    bool held = false;
    Wide left = 0;
  };
  std::vector<Wagon> batches;
  std::map<std::size_t, std::size_t> batch_of;  // by row
  for (const ModelBatch& rows : Batches()) {
    Wagon wagon;
    bool counts = false;
    for (const std::size_t i : rows) {
      const auto date = DateOf(rows_[i]);
      if (date && *date > on) {
        continue;
      }
      counts = true;
      batch_of[i] = batches.size();
      wagon.number = rows_[i].number;
      wagon.held = wagon.held || is_asked(rows_[i]);
      if (rows_[i].IsLoad()) {
        wagon.left += rows_[i].Actual();
      } else if (date) {
        wagon.left -= rows_[i].Actual();
      }
    }
    if (counts) {
      batches.push_back(wagon);
    }
  }
  std::map<std::optional<std::string>, std::vector<std::size_t>> pens;
  for (const auto& [row, batch] : batch_of) {
    if (rows_[row].IsDelivery()) {
      pens[NameOr(rows_[row].pen)].push_back(row);
    }
  }
  const auto follows = [&](const Wagon& wagon) {
    const Wagon* before = nullptr;
    for (const Wagon& other : batches) {
      if (wagon.number && other.number && *other.number < *wagon.number &&
          (before == nullptr || *before->number < *other.number)) {
        before = &other;
      }
    }
    return before != nullptr && before->held &&
           before->left > static_cast<Wide>(question.division * 1000 + 0.5) * (kBillion / 1000);
  };
  std::vector<HoldingLine> lines;
  for (auto& [pen, rows] : pens) {
    if (question.pen && pen != question.pen) {
      continue;
    }
    HoldingLine line{.pen = pen};
    bool unknown = false;
    using Key = std::pair<std::string, std::optional<int>>;
    std::vector<std::pair<Key, std::size_t>> ordered;
    for (const std::size_t i : rows) {
      unknown = unknown || !DateOf(rows_[i]) || !MinuteOf(rows_[i]);
      if (DateOf(rows_[i])) {
        ordered.push_back({{*rows_[i].date, MinuteOf(rows_[i]).value_or(0)}, i});
      }
    }
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const auto& one, const auto& other) { return one.first < other.first; });
    std::size_t after = 0;  // the first delivery after the last one with an ingredient
    for (std::size_t i = 0; i < ordered.size(); ++i) {
      if (batches[batch_of.at(ordered[i].second)].held) {
        after = i + 1;
      }
    }
    const auto moment = [&](std::size_t i) {
      const auto& [date, minute] = ordered[i].first;
      return Moment{*ParseStoredDate(date), {*minute / 60, *minute % 60, 0}};
    };
    std::optional<std::string> last_day;
    if (after > 0) {
      line.last = moment(after - 1);
      last_day = StoredText(line.last->date);
      line.state = HoldingState::kHeld;
      if (after < ordered.size()) {
        line.since = line.until = moment(after);
        line.until->date =
            Date(std::chrono::sys_days(line.until->date) + std::chrono::days(question.days));
        const bool midnight = line.until->time == TimeOfDay{0, 0, 0};
        const Date next(std::chrono::sys_days(question.on) + std::chrono::days(1));
        if (line.until->date <= question.on || (line.until->date == next && midnight)) {
          line.state = HoldingState::kPassed;
        }
      }
    }
    for (std::size_t i = after; i < ordered.size(); ++i) {
      unknown = unknown || follows(batches[batch_of.at(ordered[i].second)]);
    }
    if (unknown || IsIncomplete(last_day, on)) {
      line.state = HoldingState::kUnknown;
    }
    lines.push_back(line);
  }
  return lines;
}

Statement Model::ReadStatement(const std::optional<Date>& from,
                               const std::optional<Date>& to) const {
  Statement answer{.from = from, .to = to};
  const Question question{.from = from, .to = to};
  Wide loaded = 0;
  Wide fed = 0;
  for (const ModelBatch& batch : Chosen(question)) {
    ++answer.batches;
    for (const std::size_t i : batch) {
      const ModelRow& row = rows_[i];
      ++(row.IsLoad() ? answer.loads : answer.deliveries);
      (row.IsLoad() ? loaded : fed) += row.Actual();
      answer.not_recorded += row.import == 0 || !row.number ? 1 : 0;
    }
  }
  if (answer.loads > 0) {
    answer.loaded = Weight(loaded);
  }
  if (answer.deliveries > 0) {
    answer.fed = Weight(fed);
  }
  for (std::size_t i = 0; i < imports_.size(); ++i) {
    const ModelImport& import = imports_[i];
    const std::string first = import.first_date.value_or(import.at.substr(0, 10));
    const std::string last = import.last_date.value_or(import.at.substr(0, 10));
    if ((from && last < StoredText(*from)) || (to && first > StoredText(*to))) {
      continue;
    }
    const auto number = static_cast<std::int64_t>(i + 1);
    ++answer.imports;
    answer.not_read += import.not_read;
    answer.left_out += import.left_out;
    if (!import.missing.empty()) {
      answer.missing.push_back({number, "", import.missing});
    }
    for (std::size_t before = i; before-- > 0;) {
      if (imports_[before].high) {
        if (import.low && *import.low - *imports_[before].high > 1) {
          answer.gaps.push_back({static_cast<std::int64_t>(before + 1), number,
                                 *imports_[before].high + 1, *import.low - 1});
        }
        break;
      }
    }
    if (import.last_date && *import.last_date > import.at.substr(0, 10)) {
      answer.odd_dates.push_back({number, *ParseStoredDate(*import.last_date), true});
    }
    if (i > 0 && import.first_date && imports_[i - 1].first_date &&
        *import.first_date < *imports_[i - 1].first_date) {
      answer.odd_dates.push_back({number, *ParseStoredDate(*import.first_date), false});
    }
    if (import.units != units_) {
      answer.other_units.push_back({number, "", import.units, import.settled});
    }
  }
  std::set<std::string> days;
  for (const ModelRow& row : stored_) {
    if (DateOf(row)) {
      days.insert(*row.date);
    }
  }
  if (!days.empty()) {
    for (int day = DayOfText(*days.begin()); day < DayOfText(*days.rbegin()); ++day) {
      const std::string text = TextOfDay(day);
      if (!days.contains(text) && (!from || text >= StoredText(*from)) &&
          (!to || text <= StoredText(*to))) {
        ++answer.days_without;
        answer.first_days_without.push_back(*ParseStoredDate(text));
      }
    }
  }
  const Balance balance = ReadBalance({.about = question});
  answer.never_fed = balance.never_fed;
  answer.out = balance.out;
  return answer;
}

}  // namespace vrx::testing
