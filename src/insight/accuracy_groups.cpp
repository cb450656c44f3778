#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <unordered_map>
#include <utility>

#include "database/connection.h"
#include "insight/accuracy.h"
#include "insight/accuracy_figures.h"
#include "insight/names.h"
#include "insight/record_reader.h"
#include "insight/report_period.h"

namespace vrx {
namespace {

constexpr std::size_t kMostKeys = 2;
constexpr std::int64_t kFewestForShares = 20;  // loads of an operator

std::optional<NameKind> NameOf(AccuracyKey key) {
  switch (key) {
    case AccuracyKey::kIngredient:
      return NameKind::kIngredient;
    case AccuracyKey::kRecipe:
      return NameKind::kRecipe;
    case AccuracyKey::kOperator:
      return NameKind::kOperator;
    case AccuracyKey::kPen:
      return NameKind::kPen;
    default:
      return std::nullopt;
  }
}

unsigned FlagOf(AccuracyKey key) {
  switch (key) {
    case AccuracyKey::kIngredient:
      return kReadIngredient;
    case AccuracyKey::kRecipe:
      return kReadRecipe;
    case AccuracyKey::kOperator:
      return kReadOperator;
    case AccuracyKey::kPen:
      return kReadPen;
    default:
      return kReadBatch | kReadBatchDay;
  }
}

bool IsByDay(AccuracyKey key) { return !NameOf(key); }

// The first day of the day, week or month.
DayNumber PeriodStart(AccuracyKey key, DayNumber day) {
  if (day == kNoDay || key == AccuracyKey::kDay) {
    return day;
  }
  const std::chrono::sys_days date{std::chrono::days(day)};
  if (key == AccuracyKey::kWeek) {
    return day - static_cast<DayNumber>(std::chrono::weekday(date).iso_encoding()) + 1;
  }
  const Date parts(date);
  return ToDayNumber(parts.year() / parts.month() / 1);
}

std::optional<std::string> PeriodText(AccuracyKey key, DayNumber start) {
  const std::optional<Date> date = ToDate(start);
  if (!date) {
    return std::nullopt;
  }
  if (key == AccuracyKey::kWeek) {
    return WeekText(*date);
  }
  const std::string text = StoredText(*date);
  return key == AccuracyKey::kMonth ? text.substr(0, text.size() - 3) : text;
}

void CheckKeys(const AccuracyQuestion& question) {
  const std::vector<AccuracyKey>& by = question.by;
  if (by.empty() || by.size() > kMostKeys || (by.size() == kMostKeys && by[0] == by[1])) {
    throw QuestionError("accuracy is by one key or by two different ones");
  }
  const AccuracyKey other = question.deliveries ? AccuracyKey::kIngredient : AccuracyKey::kPen;
  if (std::find(by.begin(), by.end(), other) != by.end()) {
    throw QuestionError(question.deliveries ? "deliveries have no ingredient"
                                            : "loads have no pen");
  }
}

// Two numbers as one key of a hash table.
std::uint64_t Joined(std::uint32_t high, std::uint32_t low) {
  return (std::uint64_t{high} << 32U) | low;
}

class AccuracyAnswer {
 public:
  AccuracyAnswer(SQLite::Database& database, const AccuracyQuestion& question,
                 const InsightProgress& progress)
      : question_(question),
        reader_(database, question.about, progress),
        tests_(question.limits, reader_.Unit()),
        standardizes_(!question.deliveries && question.by == std::vector{AccuracyKey::kOperator}) {
    ingredient_ = reader_.IdOf(question.about.ingredient, NameKind::kIngredient);
    pen_ = reader_.IdOf(question.about.pen, NameKind::kPen);
  }

  Accuracy Read() {
    unsigned flags = kReadWeights | (question_.deliveries ? kReadDeliveries : kReadLoads);
    for (const AccuracyKey key : question_.by) {
      flags |= FlagOf(key);
      if (IsByDay(key) && question_.deliveries) {
        reader_.FindDays();
      }
    }
    flags |= ingredient_ != kNoName || standardizes_ ? kReadIngredient : 0U;
    flags |= pen_ != kNoName ? kReadPen : 0U;
    reader_.Read(flags, [this](const Record& record) { Take(record); });
    return Answer();
  }

 private:
  struct Group {
    std::array<std::uint32_t, kMostKeys> key{};
    AccuracySums sums;
  };
  struct Share {  // of an operator's loads of an ingredient
    std::int64_t n = 0;
    std::int64_t within = 0;
  };

  void Take(const Record& record) {
    if ((record.is_load && ingredient_ != kNoName && record.ingredient != ingredient_) ||
        (!record.is_load && pen_ != kNoName && record.pen != pen_)) {
      return;
    }
    const bool within = GroupOf(record).sums.Add(record.target, record.actual, tests_);
    if (standardizes_ && record.target.Sign() > 0 && record.actual.Sign() > 0) {
      Share& share = shares_[Joined(record.operator_id, record.ingredient)];
      ++share.n;
      share.within += within ? 1 : 0;
      targets_[record.ingredient] += record.target;
    }
  }

  [[nodiscard]] std::uint32_t KeyOf(AccuracyKey key, const Record& record) const {
    switch (key) {
      case AccuracyKey::kIngredient:
        return record.ingredient;
      case AccuracyKey::kRecipe:
        return record.recipe;
      case AccuracyKey::kOperator:
        return record.operator_id;
      case AccuracyKey::kPen:
        return record.pen;
      default:
        return static_cast<std::uint32_t>(PeriodStart(key, reader_.Batches()[record.batch].day));
    }
  }

  Group& GroupOf(const Record& record) {
    std::array<std::uint32_t, kMostKeys> key{};
    for (std::size_t i = 0; i < question_.by.size(); ++i) {
      key.at(i) = KeyOf(question_.by[i], record);
    }
    if (last_ < groups_.size() && groups_[last_].key == key) {
      return groups_[last_];
    }
    const auto [found, is_new] = index_.try_emplace(Joined(key[0], key[1]), groups_.size());
    if (is_new) {
      groups_.push_back({.key = key, .sums = {}});
    }
    last_ = found->second;
    return groups_[last_];
  }

  [[nodiscard]] std::optional<std::string> KeyText(AccuracyKey key, std::uint32_t value) const {
    const std::optional<NameKind> kind = NameOf(key);
    return kind ? reader_.NamesOf(*kind).Name(value)
                : PeriodText(key, static_cast<DayNumber>(value));
  }

  Accuracy Answer() {
    Accuracy answer;
    std::vector<AccuracySums*> all;
    for (Group& group : groups_) {
      reader_.Report(100);
      AccuracyGroup shown;
      for (std::size_t i = 0; i < question_.by.size(); ++i) {
        shown.key.push_back(KeyText(question_.by[i], group.key.at(i)));
      }
      shown.figures = group.sums.Figures(question_.deliveries);
      Standardize(group.key[0], shown.figures);
      HideFew(shown.figures);
      answer.groups.push_back(std::move(shown));
      all.push_back(&group.sums);
    }
    Sort(answer.groups);
    answer.total = AccuracySums::FiguresOf(all, question_.deliveries);
    answer.notes = reader_.Notes();
    answer.limits = question_.limits;
    for (WeightLimit* const limit : {&answer.limits.weight, &answer.limits.beyond}) {
      *limit = {limit->In(reader_.Unit()), reader_.Unit()};
    }
    AddYardstick(answer);
    return answer;
  }

  void Sort(std::vector<AccuracyGroup>& groups) const {
    std::sort(groups.begin(), groups.end(),
              [this](const AccuracyGroup& left, const AccuracyGroup& right) {
                for (std::size_t i = 0; i < question_.by.size(); ++i) {
                  const NameKind kind = NameOf(question_.by[i]).value_or(NameKind::kRecipe);
                  if (left.key[i] != right.key[i]) {
                    return NameIsBefore(kind, left.key[i], right.key[i]);
                  }
                }
                return false;
              });
  }

  void Standardize(std::uint32_t operator_id, AccuracyFigures& figures) const {
    if (!standardizes_ || figures.n == 0) {
      return;
    }
    // The sum of target * within / n over the sum of targets. Counts of loads have no common
    // denominator that stays small, so the numerator is kept as a fraction.
    Exact numerator;
    Exact denominator = Exact::Whole(1);
    Exact weights;
    for (const auto& [ingredient, target] : targets_) {
      const auto share = shares_.find(Joined(operator_id, ingredient));
      if (share == shares_.end()) {
        continue;
      }
      const Exact n = Exact::Whole(share->second.n);
      numerator = numerator * n + denominator * target * Exact::Whole(share->second.within);
      denominator = denominator * n;
      weights += target;
    }
    figures.standardized = Quotient(numerator * Exact::Whole(100), denominator * weights);
  }

  // Few loads show their count and no share.
  void HideFew(AccuracyFigures& figures) const {
    const bool by_operator = std::find(question_.by.begin(), question_.by.end(),
                                       AccuracyKey::kOperator) != question_.by.end();
    if (question_.deliveries || !by_operator || figures.n >= kFewestForShares) {
      return;
    }
    for (auto* const share : {&figures.within, &figures.weight_within, &figures.within_weight,
                              &figures.beyond, &figures.below, &figures.standardized}) {
      share->reset();
    }
  }

  void AddYardstick(Accuracy& answer) const {
    constexpr AccuracyLimits kUnchanged;
    const AccuracyLimits& limits = question_.limits;
    if (question_.deliveries || question_.about.HasName() || answer.total.n == 0 ||
        limits.percent != kUnchanged.percent || limits.weight != kUnchanged.weight ||
        limits.beyond != kUnchanged.beyond) {
      return;
    }
    answer.yardstick = {
        .within = {46.7, 10.8, 80.6, 42.7, *answer.total.within},
        .within_weight = {24.1, 4.3, 73.9, 19.8, *answer.total.within_weight},
        .beyond = {11.85, 1.3, 35.3, std::nullopt, *answer.total.beyond},
    };
  }

  const AccuracyQuestion& question_;
  RecordReader reader_;
  AccuracyTests tests_;
  bool standardizes_;
  NameId ingredient_ = kNoName;
  NameId pen_ = kNoName;
  std::vector<Group> groups_;
  std::unordered_map<std::uint64_t, std::size_t> index_;
  std::size_t last_ = 0;  // the group of the last record
  std::unordered_map<std::uint64_t, Share> shares_;
  std::unordered_map<NameId, Exact> targets_;  // of all operators, by ingredient
};

}  // namespace

Accuracy ReadAccuracy(SQLite::Database& database, const AccuracyQuestion& question,
                      const InsightProgress& progress) {
  CheckKeys(question);
  return WithDatabaseErrors(database,
                            [&] { return AccuracyAnswer(database, question, progress).Read(); });
}

}  // namespace vrx
