// Where the records of an answer are.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>
#include <string_view>
#include <variant>

#include <SQLiteCpp/Statement.h>

#include "base/number.h"
#include "base/translation.h"
#include "database/connection.h"
#include "presenter/insight.h"
#include "presenter/report_failure.h"

namespace vrx {
namespace {

// Data groups of the `Batched/Fed` tab by their outermost level.
enum PlaceGroup {
  kByTransaction = 1,
  kByDate = 2,
  kByRecipe = 3,
  kByIngredient = 6,
  kByPen = 8,
  kByOperator = 12,
};

constexpr FailureReport kPlaceFailure{.title = "Transaction Data Error",
                                      .text = FailureText::kDatabaseWords};

struct PlaceColumn {
  std::string_view key;
  PlaceGroup group;
};

// The first column of a table that is among these leads to the records of a row.
constexpr std::array kPlaceColumns = std::to_array<PlaceColumn>({
    {"transaction", kByTransaction},
    {"key.ingredient", kByIngredient},
    {"ingredient", kByIngredient},
    {"key.pen", kByPen},
    {"pen", kByPen},
    {"key.recipe", kByRecipe},
    {"key.operator", kByOperator},
    {"key.day", kByDate},
    {"key.week", kByDate},
    {"key.month", kByDate},
    {"date", kByDate},
});

std::optional<std::size_t> ColumnOf(const AnswerTable& table, std::string_view key) {
  for (std::size_t column = 0; column < table.columns.size(); ++column) {
    if (table.columns[column].key == key) {
      return column;
    }
  }
  return std::nullopt;
}

Period DaysFrom(const Date& first, int days) {
  return {.from = first, .to = Date(std::chrono::sys_days(first) + std::chrono::days(days - 1))};
}

// "2026-01-05", "2026-W02" or "2026-01".
std::optional<Period> PeriodOfKey(const std::string& key) {
  using std::chrono::days;
  using std::chrono::sys_days;
  if (const std::optional<Date> day = ParseStoredDate(key)) {
    return DaysFrom(*day, 1);
  }
  if (const std::optional<Date> first = ParseStoredDate(key + "-01")) {
    return Period{.from = first, .to = Date(first->year() / first->month() / std::chrono::last)};
  }
  const std::size_t mark = key.find("-W");
  if (mark == std::string::npos) {
    return std::nullopt;
  }
  const std::optional<double> year = ParseNumber(key.substr(0, mark));
  const std::optional<double> week = ParseNumber(key.substr(mark + 2));
  if (!year || !week) {
    return std::nullopt;
  }
  // The first week of a year has its fourth of January.
  constexpr int kWeek = 7;
  const sys_days fourth = std::chrono::year(static_cast<int>(*year)) / std::chrono::January / 4;
  const std::chrono::weekday weekday(fourth);
  const sys_days monday = fourth - (weekday - std::chrono::Monday);
  return DaysFrom(Date(monday + days(kWeek * (static_cast<int>(*week) - 1))), kWeek);
}

std::string DayText(double day) {
  return MediumText(Date(std::chrono::sys_days(std::chrono::days(std::lround(std::floor(day))))));
}

std::string PercentText(double percent) {
  return (percent > 0 ? "+" : "") + Format(percent, "0.0") + " %";
}

// A batch is shown whole, whatever the period of the question is.
RecordsPlace PlaceOfTransaction(std::int64_t number) {
  return {.group = kByTransaction, .period = {}, .value = std::to_string(number)};
}

// Empty for a missing name.
std::string NameIn(const AnswerCell& cell) {
  const auto* const name = std::get_if<std::string>(&cell);
  return name != nullptr ? *name : std::string();
}

std::string PeriodText(const Question& about) {
  if (!about.HasPeriod()) {
    return Tr("all records");
  }
  if (!about.to) {
    return Tr("from %1", {MediumText(*about.from)});
  }
  return about.from ? Tr("%1 to %2", {MediumText(*about.from), MediumText(*about.to)})
                    : Tr("up to %1", {MediumText(*about.to)});
}

std::string OrNone(const std::optional<std::string>& name) { return name ? *name : Tr("(none)"); }

}  // namespace

Period InsightPresenter::AnsweredPeriod() const {
  return {.from = answer_->asked.about.from, .to = answer_->asked.about.to};
}

std::optional<RecordsPlace> InsightPresenter::PlaceOfRow(std::size_t row) const {
  if (!answer_ || row >= answer_->table.rows.size() ||
      answer_->asked.topic == InsightTopic::kCompleteness) {
    return std::nullopt;
  }
  const AnswerTable& table = answer_->table;
  const InsightRows rows = answer_->asked.Table().rows;
  RecordsPlace place{.period = AnsweredPeriod()};
  if (rows == InsightRows::kRecipes || rows == InsightRows::kOperators) {
    place.group = rows == InsightRows::kOperators ? kByOperator : kByRecipe;
    place.value = NameIn(table.rows[row].front());
    return place;
  }
  for (const PlaceColumn& candidate : kPlaceColumns) {
    const std::optional<std::size_t> column = ColumnOf(table, candidate.key);
    if (!column) {
      continue;
    }
    const AnswerCell& cell = table.rows[row][*column];
    if (candidate.group == kByTransaction) {
      const auto* const number = std::get_if<std::int64_t>(&cell);
      if (number == nullptr) {
        if (answer_->asked.topic == InsightTopic::kTrace) {
          return std::nullopt;  // the other columns are of more than this line
        }
        continue;
      }
      return PlaceOfTransaction(*number);
    }
    place.group = candidate.group;
    if (candidate.group == kByDate) {
      place.period = PeriodOfKey(NameIn(cell)).value_or(place.period);
      return place;
    }
    place.value = NameIn(cell);
    if (answer_->delivered) {
      place.period = DaysFrom(answer_->delivered->lines[row].date, 1);
    }
    return place;
  }
  return std::nullopt;
}

std::optional<RecordsPlace> InsightPresenter::PlaceOfRecord(std::int64_t record) {
  std::optional<RecordsPlace> place;
  RunReported(services_.op, kPlaceFailure, [&] {
    WithDatabaseErrors(*connection_, [&] {
      SQLite::Statement query(*connection_,
                              "SELECT [Transaction] FROM Transactions WHERE rowid = ?");
      query.bind(1, record);
      if (query.executeStep() && !query.getColumn(0).isNull()) {
        place = PlaceOfTransaction(query.getColumn(0).getInt64());
      }
    });
  });
  return place;
}

std::optional<RecordsPlace> InsightPresenter::PlaceOfMark(std::size_t index) {
  if (!answer_) {
    return std::nullopt;
  }
  switch (answer_->asked.Picture()) {
    case InsightPicture::kDeviations:
      return PlaceOfRecord(answer_->loads->dots.at(index).record);
    case InsightPicture::kOperators:
      return RecordsPlace{.group = kByIngredient,
                          .period = AnsweredPeriod(),
                          .value = answer_->accuracy->groups.at(index).key.at(0).value_or("")};
    case InsightPicture::kWeights:
      return RecordsPlace{.group = kByIngredient,
                          .period = AnsweredPeriod(),
                          .value = GroupOfWeight(index).key.at(0).value_or("")};
    case InsightPicture::kDelivered:
      return RecordsPlace{.group = kByPen,
                          .period = DaysFrom(LineOfPen(index).date, 1),
                          .value = pen_.value_or("")};
    case InsightPicture::kBalance:
      if (const auto number = answer_->balance->lines.at(index).transaction) {
        return PlaceOfTransaction(*number);
      }
      break;
    case InsightPicture::kDistribution:
    case InsightPicture::kNone:
      break;
  }
  return std::nullopt;
}

const AccuracyGroup& InsightPresenter::GroupOfWeight(std::size_t index) const {
  std::size_t before = 0;
  for (const AccuracyGroup& group : answer_->accuracy->groups) {
    if (group.figures.gross && before++ == index) {
      return group;
    }
  }
  return answer_->accuracy->groups.at(index);
}

const DeliveredLine& InsightPresenter::LineOfPen(std::size_t index) const {
  std::size_t before = 0;
  for (const DeliveredLine& line : answer_->delivered->lines) {
    if (line.pen == pen_ && before++ == index) {
      return line;
    }
  }
  return answer_->delivered->lines.at(index);
}

std::string InsightPresenter::AnsweredText() const {
  if (!answer_) {
    return {};
  }
  const Question& about = answer_->asked.about;
  std::string text = path_.filename().string() + ", " + PeriodText(about);
  const auto add = [&text](const std::string& caption, const std::optional<std::string>& name) {
    text += name ? ", " + caption + " " + *name : "";
  };
  add(Tr("Recipe"), about.recipe);
  add(Tr("Ingredient"), about.ingredient);
  add(Tr("Operator"), about.operator_id);
  add(Tr("Pen"), about.pen);
  return text;
}

std::string InsightPresenter::TextOfMark(std::size_t index, std::size_t count) const {
  if (!answer_) {
    return {};
  }
  switch (answer_->asked.Picture()) {
    case InsightPicture::kDeviations: {
      const DeviationLoad& load = answer_->loads->dots.at(index);
      const std::string text = DayText(load.day) + ": " + PercentText(load.percent);
      const std::int64_t loads = std::max(load.loads, static_cast<std::int64_t>(count));
      return loads == 1 ? text : Tr("%1 (the farthest of %2)", {text, std::to_string(loads)});
    }
    case InsightPicture::kDistribution: {
      const DeviationRange& range = answer_->loads->ranges.at(index);
      return Tr("%1 to %2: %3",
                {PercentText(range.from), PercentText(range.to), std::to_string(range.count)});
    }
    case InsightPicture::kOperators: {
      const AccuracyGroup& group = answer_->accuracy->groups.at(index);
      return Tr("%1, operator %2: %3 loads", {OrNone(group.key.at(0)), OrNone(group.key.at(1)),
                                              std::to_string(group.figures.n)});
    }
    case InsightPicture::kWeights: {
      const AccuracyGroup& group = GroupOfWeight(index);
      return OrNone(group.key.at(0)) + ": " + Format(group.figures.gross.value_or(0), "0.0") + " " +
             answer_->units;
    }
    case InsightPicture::kBalance: {
      const BalanceLine& line = answer_->balance->lines.at(index);
      return Tr("Batch %1: left %2",
                {line.transaction ? std::to_string(*line.transaction) : Tr("(none)"),
                 Format(line.left, "0.0") + " " + answer_->units});
    }
    case InsightPicture::kDelivered: {
      const DeliveredLine& line = LineOfPen(index);
      const std::string day = MediumText(line.date);
      return line.missed ? Tr("%1: missed", {day})
                         : Tr("%1: called %2, delivered %3",
                              {day, Format(line.called.value_or(0), "0.0"),
                               Format(line.delivered.value_or(0), "0.0") + " " + answer_->units});
    }
    case InsightPicture::kNone:
      break;
  }
  return {};
}

}  // namespace vrx
