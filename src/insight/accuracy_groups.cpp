#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <numeric>
#include <unordered_map>
#include <utility>

#include "database/connection.h"
#include "insight/accuracy.h"
#include "insight/accuracy_figures.h"
#include "insight/names.h"
#include "insight/record_parts.h"
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

// Whether two days are in different groups.
bool AreApart(AccuracyKey key, const Date& left, const Date& right) {
  return PeriodStart(key, ToDayNumber(left)) != PeriodStart(key, ToDayNumber(right));
}

// The groups of the batches of one reader.
class AccuracyGroups {
 public:
  AccuracyGroups(RecordReader& reader, const AccuracyQuestion& question)
      : question_(question),
        reader_(reader),
        tests_(question.limits, reader.Unit()),
        standardizes_(!question.deliveries && question.by == std::vector{AccuracyKey::kOperator}) {
    ingredient_ = reader_.IdOf(question.about.ingredient, NameKind::kIngredient);
    pen_ = reader_.IdOf(question.about.pen, NameKind::kPen);
  }

  void Read() {
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
  }

  // Ascending by key.
  void Pass(const TakeLine<AccuracyGroup>& take) {
    Sort();
    for (Group& group : groups_) {
      reader_.Report(kAllPercent);
      AccuracyGroup shown;
      for (std::size_t i = 0; i < question_.by.size(); ++i) {
        shown.key.push_back(KeyText(question_.by[i], group.key.at(i)));
      }
      shown.figures = group.sums.Figures(question_.deliveries);
      Standardize(group.key[0], shown.figures);
      HideFew(shown.figures);
      take(std::move(shown));
    }
  }

  // The sums of the groups, which lose them.
  [[nodiscard]] std::vector<AccuracySums> MoveSums() {
    std::vector<AccuracySums> all;
    for (Group& group : groups_) {
      all.push_back(std::move(group.sums));
    }
    groups_.clear();
    return all;
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

  // The place of each name in the order of the groups.
  [[nodiscard]] std::vector<std::int64_t> PlacesOf(NameKind kind) const {
    const Names& names = reader_.NamesOf(kind);
    std::vector<NameId> order(names.Count());
    std::iota(order.begin(), order.end(), kNoName);
    std::ranges::sort(order, [&](NameId left, NameId right) {
      return NameIsBefore(kind, names.Name(left), names.Name(right));
    });
    std::vector<std::int64_t> places(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
      places[order[i]] = static_cast<std::int64_t>(i);
    }
    return places;
  }

  void Sort() {
    index_.clear();
    std::array<std::vector<std::int64_t>, kMostKeys> places;
    for (std::size_t i = 0; i < question_.by.size(); ++i) {
      if (const std::optional<NameKind> kind = NameOf(question_.by[i])) {
        places.at(i) = PlacesOf(*kind);
      }
    }
    const auto place = [&](const Group& group, std::size_t i) {
      const std::uint32_t value = group.key.at(i);
      return places.at(i).empty() ? std::int64_t{static_cast<DayNumber>(value)}
                                  : places.at(i)[value];
    };
    std::ranges::sort(groups_, {}, [&](const Group& group) {
      return std::pair(place(group, 0), question_.by.size() == 1 ? 0 : place(group, 1));
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

  const AccuracyQuestion& question_;
  RecordReader& reader_;
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

std::optional<Yardstick> YardstickOf(const AccuracyQuestion& question,
                                     const AccuracyFigures& total) {
  constexpr AccuracyLimits kUnchanged;
  const AccuracyLimits& limits = question.limits;
  if (question.deliveries || question.about.HasName() || total.n == 0 ||
      limits.percent != kUnchanged.percent || limits.weight != kUnchanged.weight ||
      limits.beyond != kUnchanged.beyond) {
    return std::nullopt;
  }
  return Yardstick{
      .within = {46.7, 10.8, 80.6, 42.7, *total.within},
      .within_weight = {24.1, 4.3, 73.9, 19.8, *total.within_weight},
      .beyond = {11.85, 1.3, 35.3, std::nullopt, *total.beyond},
  };
}

// Reads the groups of all records at once, or, of days, weeks or months and something else, part by
// part: years of days of hundreds of pens are a million groups.
class AccuracyAnswer {
 public:
  AccuracyAnswer(const AccuracyQuestion& question, const TakeLine<AccuracyGroup>& take)
      : question_(question), take_(take) {}

  Accuracy Read(SQLite::Database& database, const InsightProgress& progress) {
    const AccuracyKey first = question_.by.front();
    if (question_.by.size() == kMostKeys && IsByDay(first)) {
      BatchParts parts(
          database, question_.about, progress,
          [first](const Date& left, const Date& right) { return AreApart(first, left, right); });
      answer_.notes = parts.Read([this](RecordReader& reader) {
        AccuracySums& part = sums_.emplace_back();
        for (AccuracySums& sums : PassGroups(reader)) {
          part.Append(std::move(sums));
        }
      });
    } else {
      RecordReader reader(database, question_.about, progress);
      sums_ = PassGroups(reader);
      answer_.notes = reader.Notes();
    }
    answer_.limits = LimitsIn(ReadWeightUnit(database), question_.limits);
    answer_.total = AccuracySums::FiguresOf(sums_, question_.deliveries);
    answer_.yardstick = YardstickOf(question_, answer_.total);
    return std::move(answer_);
  }

 private:
  std::vector<AccuracySums> PassGroups(RecordReader& reader) {
    AccuracyGroups groups(reader, question_);
    groups.Read();
    groups.Pass(take_);
    return groups.MoveSums();
  }

  const AccuracyQuestion& question_;
  const TakeLine<AccuracyGroup>& take_;
  std::vector<AccuracySums> sums_;  // of the groups, or of the parts
  Accuracy answer_;
};

}  // namespace

AccuracyLimits LimitsIn(WeightUnit unit, const AccuracyLimits& limits) {
  AccuracyLimits shown = limits;
  for (WeightLimit* const limit : {&shown.weight, &shown.beyond}) {
    *limit = {limit->In(unit), unit};
  }
  return shown;
}

Accuracy StreamAccuracy(SQLite::Database& database, const AccuracyQuestion& question,
                        const TakeLine<AccuracyGroup>& take, const InsightProgress& progress) {
  CheckKeys(question);
  return WithDatabaseErrors(
      database, [&] { return AccuracyAnswer(question, take).Read(database, progress); });
}

Accuracy ReadAccuracy(SQLite::Database& database, const AccuracyQuestion& question,
                      const InsightProgress& progress) {
  std::vector<AccuracyGroup> groups;
  Accuracy answer = StreamAccuracy(
      database, question, [&](AccuracyGroup&& group) { groups.push_back(std::move(group)); },
      progress);
  answer.groups = std::move(groups);
  return answer;
}

}  // namespace vrx
