#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <string_view>
#include <utility>
#include <variant>

#include "base/english_texts.h"
#include "base/number.h"
#include "report/period_page.h"

namespace vrx {
namespace {

constexpr std::size_t kMostRows = 100;  // of single loads and batches

using Keys = std::initializer_list<std::string_view>;

bool IsEmptyColumn(const AnswerTable& table, std::size_t column) {
  return std::ranges::all_of(table.rows, [column](const std::vector<AnswerCell>& row) {
    return std::holds_alternative<std::monostate>(row.at(column));
  });
}

// The columns with these keys, in their order, without those that are empty. A table without rows
// is nothing.
AnswerTable Chosen(const AnswerTable& table, Keys keys) {
  AnswerTable chosen;
  if (table.rows.empty()) {
    return chosen;
  }
  chosen.rows.resize(table.rows.size());
  for (const std::string_view key : keys) {
    const auto column = std::ranges::find(table.columns, key, &AnswerColumn::key);
    const auto at = static_cast<std::size_t>(column - table.columns.begin());
    if (IsEmptyColumn(table, at) && column->kind != CellKind::kName) {
      continue;
    }
    chosen.columns.push_back(table.columns.at(at));
    for (std::size_t row = 0; row < table.rows.size(); ++row) {
      chosen.rows[row].push_back(table.rows[row].at(at));
    }
    if (!table.total.empty()) {
      chosen.total.push_back(table.total.at(at));
    }
  }
  return chosen;
}

// Both tables have a row for the same things in the same order; the second one has no total.
AnswerTable Joined(AnswerTable table, const AnswerTable& more) {
  table.columns.insert(table.columns.end(), more.columns.begin(), more.columns.end());
  for (std::size_t row = 0; row < table.rows.size(); ++row) {
    const std::vector<AnswerCell>& cells = more.rows.at(row);
    table.rows[row].insert(table.rows[row].end(), cells.begin(), cells.end());
  }
  table.total.resize(table.columns.size());
  return table;
}

void AddTable(PageSection& section, AnswerTable table) {
  if (!table.rows.empty()) {
    section.tables.push_back(std::move(table));
  }
}

// The first rows, with a sentence if there are more than these.
void AddRows(PageSection& section, AnswerTable table, std::size_t all) {
  if (table.rows.size() > kMostRows) {
    table.rows.resize(kMostRows);
  }
  if (table.rows.size() < all) {
    section.sentences.push_back(FilledIn("These are the first %1 of %2.",
                                         {std::to_string(table.rows.size()), std::to_string(all)}));
  }
  AddTable(section, std::move(table));
}

std::string WeightText(double weight) {
  return ShownText({.key = {}, .caption = {}, .kind = CellKind::kWeight}, weight);
}

PageSection Loaded(const PageAnswers& answers) {
  const AnswerTable table = TableOf(answers.by_ingredient, {});
  PageSection section{.heading = "Loaded by ingredient", .how = std::string(table.how)};
  WeightChart chart = WeightChartOf(answers.by_ingredient);
  if (!chart.weights.empty()) {
    chart.texts.title = "Where the weight goes";
    section.charts.emplace_back(std::move(chart));
  }
  AddTable(section, Chosen(table, {"key.ingredient", "n", "target", "actual", "net", "netPercent",
                                   "gross", "withoutTarget.actual"}));
  return section;
}

PageSection CalledAndDelivered(const PageAnswers& answers, PeriodKind kind) {
  const AnswerTable totals = TableOf(TotalsOf(answers.delivered));
  PageSection section{.heading = "Called and delivered by pen", .how = std::string(totals.how)};
  if (kind != PeriodKind::kDay) {
    AddTable(section,
             Chosen(totals, {"pen", "called", "delivered", "difference", "differencePercent",
                             "feedings", "days", "missedDays", "recipeChanges"}));
    return section;
  }
  const AnswerTable day = TableOf(answers.delivered);
  section.how = std::string(day.how);
  AddTable(
      section,
      Joined(Chosen(totals,
                    {"pen", "called", "delivered", "difference", "differencePercent", "feedings"}),
             Chosen(day, {"mean7", "recipe", "recipeChanged", "first", "firstShift", "missed"})));
  return section;
}

// What the columns of shares count.
std::string LimitsOf(const AccuracyLimits& limits, const std::string& units) {
  std::string text =
      FilledIn("Within limit: less than %1 % from the target. Far off: more than %2 %3 from it.",
               {DefaultText(limits.percent), WeightText(limits.beyond.weight), units});
  if (limits.division > 0) {
    text += ' ' +
            FilledIn("A deviation of up to %1 %2, the division of the scale, is within the limit.",
                     {WeightText(limits.division), units});
  }
  return text;
}

PageSection AccuracyOfLoading(const PageAnswers& answers, PeriodKind kind) {
  const Accuracy& by_ingredient = answers.by_ingredient;
  PageSection section{.heading = "Accuracy of loading",
                      .how = LimitsOf(by_ingredient.limits, by_ingredient.notes.units)};
  if (kind != PeriodKind::kDay && !answers.loads.dots.empty()) {
    DeviationChart chart = DeviationChartOf(answers.loads, answers.by_day);
    chart.texts.title = "Deviation over time";
    section.charts.emplace_back(std::move(chart));
  }
  AddTable(section, Chosen(TableOf(by_ingredient, {}),
                           {"key.ingredient", "n", "grossPercent", "within", "weightWithin",
                            "beyond", "below", "median", "q1", "q3"}));
  if (by_ingredient.yardstick) {
    std::ranges::move(SentencesOf(*by_ingredient.yardstick), std::back_inserter(section.sentences));
  }
  return section;
}

PageSection Operators(const PageAnswers& answers) {
  PageSection section{
      .heading = "Operators",
      .how =
          "Operators are compared within each ingredient; the standardized share is the mean "
          "over the ingredients that they loaded. Fewer than 20 loads have no share. An "
          "operator stops short when nearly all loads end below the target."};
  AddTable(section, Chosen(TableOf(answers.by_operator, {.by = {AccuracyKey::kOperator}}),
                           {"key.operator", "n", "standardized", "below", "median", "marked"}));
  return section;
}

PageSection NotLoaded(const PageAnswers& answers) {
  PageSection section{.heading = "Not loaded",
                      .how = "Loads with a target of which nothing was loaded."};
  AddRows(section,
          Chosen(TableOf(answers.loads.not_loaded, false),
                 {"date", "time", "ingredient", "target", "operator", "recipe", "transaction"}),
          static_cast<std::size_t>(answers.loads.not_loaded_count));
  if (answers.loads.not_loaded_count == 0) {
    section.sentences.push_back("Every load with a target was loaded.");
  }
  return section;
}

PageSection LargestDeviations(const PageAnswers& answers) {
  PageSection section{.heading = "The five largest deviations", .how = "By weight, of all loads."};
  AddTable(section, Chosen(TableOf(answers.loads.largest, false),
                           {"date", "time", "ingredient", "operator", "target", "actual",
                            "difference", "percent", "recipe", "transaction"}));
  if (section.tables.empty()) {
    section.sentences.push_back("No load deviates from its target.");
  }
  return section;
}

PageSection OutOfBalance(const PageAnswers& answers, PeriodKind kind) {
  Balance others = answers.balance;
  std::erase_if(others.lines,
                [](const BalanceLine& line) { return line.state == BalanceState::kBalanced; });
  const AnswerTable table = TableOf(others);
  PageSection section{.heading = "Batches out of balance", .how = std::string(table.how)};
  if (kind != PeriodKind::kDay && !answers.balance.lines.empty()) {
    BalanceChart chart = BalanceChartOf(answers.balance);
    chart.texts.title = "What was left of each batch";
    section.charts.emplace_back(std::move(chart));
  }
  AddRows(section,
          Chosen(table, {"date", "transaction", "recipe", "operator", "loaded", "fed", "left",
                         "leftPercent", "state"}),
          others.lines.size());
  if (others.lines.empty()) {
    section.sentences.push_back("No batch is out of balance.");
  }
  return section;
}

std::string MinutesText(const TimesRange& range) {
  return DefaultText(range.lowest) + "-" + DefaultText(range.highest);
}

PageSection TimesOfBatches(const PageAnswers& answers) {
  const AnswerTable table = TableOf(answers.times, TimesKey::kRecipe);
  PageSection section{.heading = "Times", .how = std::string(table.how)};
  AddTable(section, Chosen(table, {"key", "batches", "leftOut", "preparing.median",
                                   "waiting.median", "feeding.median"}));
  section.sentences.push_back(FilledIn(
      "Medians in minutes. For comparison, the medians of %1: preparing %2, waiting %3, feeding "
      "%4.",
      {std::string(kTimesSource), MinutesText(kPreparingOfDairies), MinutesText(kWaitingOfDairies),
       MinutesText(kFeedingOfDairies)}));
  return section;
}

// A line for each column of the statement; the period is at the top of the page.
PageSection StatementOfPeriod(const Statement& statement) {
  const AnswerTable wide = TableOf(statement);
  PageSection section{.heading = "Statement", .how = std::string(wide.how)};
  AnswerTable lines{.columns = {{"what", TrMark("Of the period"), CellKind::kText},
                                {"value", TrMark("Value"), CellKind::kText}}};
  for (std::size_t i = 0; i < wide.columns.size(); ++i) {
    const AnswerColumn& column = wide.columns[i];
    const std::string text = ShownText(column, wide.rows.at(0).at(i));
    if (column.key != "from" && column.key != "to" && !text.empty()) {
      lines.rows.push_back({std::string(column.caption), text});
    }
  }
  AddTable(section, std::move(lines));
  return section;
}

// Operators who take the tolerance for the target, with their medians.
std::string StopsShort(const Accuracy& by_operator) {
  std::string text;
  for (const AccuracyGroup& group : by_operator.groups) {
    if (group.figures.marked.value_or(false) && group.figures.median) {
      text += (text.empty() ? "" : ", ") + group.key.at(0).value_or("(none)") + " (" +
              Format(*group.figures.median, "0.0") + " %)";
    }
  }
  return text;
}

}  // namespace

std::vector<PageFigure> FiguresOf(const PageAnswers& answers) {
  const Statement& statement = answers.statement;
  std::vector<PageFigure> figures;
  const auto weight = [&](const std::string& caption, const std::optional<double>& value) {
    if (value) {
      figures.push_back({caption, WeightText(*value) + ' ' + statement.notes.units});
    }
  };
  weight("Loaded", statement.loaded);
  weight("Fed", statement.fed);
  figures.push_back({"Batches", std::to_string(statement.batches)});
  figures.push_back({"Not loaded", std::to_string(answers.loads.not_loaded_count)});
  if (answers.by_ingredient.total.within) {
    figures.push_back({FilledIn("Within %1 %", {DefaultText(answers.by_ingredient.limits.percent)}),
                       Format(*answers.by_ingredient.total.within, "0.0") + " %"});
  }
  figures.push_back({"Batches out of balance", std::to_string(answers.balance.out)});
  figures.push_back({"Batches never fed", std::to_string(answers.balance.never_fed)});
  if (const std::string text = StopsShort(answers.by_operator); !text.empty()) {
    figures.push_back({"Operators who stop short", text});
  }
  return figures;
}

std::vector<PageSection> SectionsOf(const PageAnswers& answers, PeriodKind kind) {
  return {Loaded(answers),
          CalledAndDelivered(answers, kind),
          AccuracyOfLoading(answers, kind),
          Operators(answers),
          NotLoaded(answers),
          LargestDeviations(answers),
          OutOfBalance(answers, kind),
          TimesOfBatches(answers),
          StatementOfPeriod(answers.statement)};
}

}  // namespace vrx
