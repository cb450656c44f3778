#include <algorithm>
#include <array>
#include <utility>

#include "base/number.h"
#include "base/translation.h"
#include "insight/table_cells.h"
#include "insight/tables.h"

namespace vrx {
namespace {

struct KeyColumn {
  AccuracyKey key;
  std::string_view word;
  AnswerColumn column;
};

constexpr std::array<KeyColumn, 7> kKeyColumns{{
    {AccuracyKey::kIngredient,
     "ingredient",
     {"key.ingredient", TrMark("Ingredient"), CellKind::kName}},
    {AccuracyKey::kRecipe, "recipe", {"key.recipe", TrMark("Recipe"), CellKind::kName}},
    {AccuracyKey::kOperator, "operator", {"key.operator", TrMark("Operator"), CellKind::kName}},
    {AccuracyKey::kPen, "pen", {"key.pen", TrMark("Pen"), CellKind::kName}},
    {AccuracyKey::kDay, "day", {"key.day", TrMark("Day"), CellKind::kName}},
    {AccuracyKey::kWeek, "week", {"key.week", TrMark("Week"), CellKind::kName}},
    {AccuracyKey::kMonth, "month", {"key.month", TrMark("Month"), CellKind::kName}},
}};

constexpr std::array<AnswerColumn, 19> kAccuracyColumns{{
    {"n", TrMark("Loads"), CellKind::kCount},
    {"notLoaded.n", TrMark("Not loaded"), CellKind::kCount},
    {"notLoaded.target", TrMark("Not loaded, target"), CellKind::kWeight},
    {"withoutTarget.n", TrMark("Without target"), CellKind::kCount},
    {"withoutTarget.actual", TrMark("Without target, actual"), CellKind::kWeight},
    {"target", TrMark("Target"), CellKind::kWeight},
    {"actual", TrMark("Actual"), CellKind::kWeight},
    {"net", TrMark("Net"), CellKind::kWeight},
    {"netPercent", TrMark("Net %"), CellKind::kPercent},
    {"gross", TrMark("Gross"), CellKind::kWeight},
    {"grossPercent", TrMark("Gross %"), CellKind::kPercent},
    {"within", TrMark("Within limit %"), CellKind::kPercent},
    {"weightWithin", TrMark("Weight within %"), CellKind::kPercent},
    {"withinWeight", TrMark("Within weight %"), CellKind::kPercent},
    {"beyond", TrMark("Far off %"), CellKind::kPercent},
    {"below", TrMark("Below target %"), CellKind::kPercent},
    {"median", TrMark("Median %"), CellKind::kPercent},
    {"q1", TrMark("Lower quartile %"), CellKind::kPercent},
    {"q3", TrMark("Upper quartile %"), CellKind::kPercent},
}};
constexpr AnswerColumn kStandardized{"standardized", TrMark("Standardized %"), CellKind::kPercent};
constexpr AnswerColumn kMarked{"marked", TrMark("Stops short"), CellKind::kYesNo};

AnswerRow CellsOf(const AccuracyFigures& figures) {
  return {figures.n,
          figures.not_loaded.n,
          CellOf(figures.not_loaded.weight),
          figures.without_target.n,
          CellOf(figures.without_target.weight),
          CellOf(figures.target),
          CellOf(figures.actual),
          CellOf(figures.net),
          CellOf(figures.net_percent),
          CellOf(figures.gross),
          CellOf(figures.gross_percent),
          CellOf(figures.within),
          CellOf(figures.weight_within),
          CellOf(figures.within_weight),
          CellOf(figures.beyond),
          CellOf(figures.below),
          CellOf(figures.median),
          CellOf(figures.q1),
          CellOf(figures.q3),
          CellOf(figures.standardized),
          CellOf(figures.marked)};
}

constexpr std::string_view kHowLoads = TrMark(
    "Each load's actual weight is compared with its target. Net adds the differences, gross adds "
    "their amounts; the shares count loads. Loads without an actual weight or without a target "
    "are counted apart.");
constexpr std::string_view kHowDeliveries = TrMark(
    "Each delivery's weight is compared with what was called for. Net adds the differences, gross "
    "adds their amounts; the shares count deliveries.");

void CallThemDeliveries(std::vector<AnswerColumn>& columns) {
  constexpr std::array<AnswerColumn, 3> kOther{{
      {"n", TrMark("Deliveries"), CellKind::kCount},
      {"notLoaded.n", TrMark("Not delivered"), CellKind::kCount},
      {"notLoaded.target", TrMark("Not delivered, target"), CellKind::kWeight},
  }};
  for (const AnswerColumn& other : kOther) {
    *std::ranges::find(columns, other.key, &AnswerColumn::key) = other;
  }
}

std::string Sentence(std::string_view what, const YardstickShare& share) {
  return Tr(
      share.median ? TrMark("%1: %2 % of their loads (herds %3 to %4, median %5); this yard "
                            "%6 %, %7")
                   : TrMark("%1: %2 % of their loads (herds %3 to %4); this yard %6 %, %7"),
      {Tr(what), DefaultText(share.loads), DefaultText(share.lowest), DefaultText(share.highest),
       DefaultText(share.median.value_or(0)), Format(share.yard, "0.0"), Tr(PlaceOf(share))});
}

}  // namespace

std::string_view WordOf(AccuracyKey key) {
  return std::find_if(kKeyColumns.begin(), kKeyColumns.end(),
                      [key](const KeyColumn& column) { return column.key == key; })
      ->word;
}

AnswerTable TableOf(const Accuracy& answer, const AccuracyQuestion& question) {
  AnswerTable table{.how = question.deliveries ? kHowDeliveries : kHowLoads};
  for (const AccuracyKey key : question.by) {
    table.columns.push_back(
        std::find_if(kKeyColumns.begin(), kKeyColumns.end(), [key](const KeyColumn& column) {
          return column.key == key;
        })->column);
  }
  table.columns.insert(table.columns.end(), kAccuracyColumns.begin(), kAccuracyColumns.end());
  table.columns.push_back(kStandardized);
  table.columns.push_back(kMarked);
  if (question.deliveries) {
    CallThemDeliveries(table.columns);
  }
  for (const AccuracyGroup& group : answer.groups) {
    table.rows.push_back(RowOf(group));
  }
  table.total = {std::string("Total")};
  table.total.resize(question.by.size(), std::string());
  std::ranges::move(CellsOf(answer.total), std::back_inserter(table.total));
  return table;
}

AnswerRow RowOf(const AccuracyGroup& group) {
  AnswerRow row;
  for (const auto& key : group.key) {
    row.push_back(CellOf(key));
  }
  std::ranges::move(CellsOf(group.figures), std::back_inserter(row));
  return row;
}

AnswerTable TableOf(const std::vector<LoadLine>& lines, bool deliveries) {
  AnswerTable table{
      .columns = {{"transaction", TrMark("Batch"), CellKind::kCount},
                  {"date", TrMark("Date"), CellKind::kDay},
                  {"time", TrMark("Time"), CellKind::kText},
                  {"recipe", TrMark("Recipe"), CellKind::kName},
                  {"operator", TrMark("Operator"), CellKind::kName},
                  deliveries ? AnswerColumn{"pen", TrMark("Pen"), CellKind::kName}
                             : AnswerColumn{"ingredient", TrMark("Ingredient"), CellKind::kName},
                  {"target", TrMark("Target"), CellKind::kWeight},
                  {"actual", TrMark("Actual"), CellKind::kWeight},
                  {"difference", TrMark("Difference"), CellKind::kWeight},
                  {"percent", TrMark("Difference %"), CellKind::kPercent}}};
  for (const LoadLine& line : lines) {
    table.rows.push_back({CellOf(line.transaction), CellOf(line.date), CellOf(line.time),
                          CellOf(line.recipe), CellOf(line.operator_id),
                          CellOf(deliveries ? line.pen : line.ingredient), line.target, line.actual,
                          line.difference, CellOf(line.percent)});
  }
  return table;
}

AnswerTable TableOf(const Composition& answer) {
  AnswerTable table{
      .columns = {{"transaction", TrMark("Batch"), CellKind::kCount},
                  {"recipe", TrMark("Recipe"), CellKind::kName},
                  {"ingredient", TrMark("Ingredient"), CellKind::kName},
                  {"points", TrMark("Points"), CellKind::kPercent}},
      .how = TrMark("The ingredient's share of what was loaded less its share of the targets, in "
                    "percentage points: a batch that is too large throughout is still the right "
                    "ration.")};
  for (const CompositionLine& line : answer.lines) {
    table.rows.push_back(RowOf(line));
  }
  return table;
}

AnswerRow RowOf(const CompositionLine& line) {
  return {CellOf(line.transaction), CellOf(line.recipe), CellOf(line.ingredient),
          CellOf(line.points)};
}

std::string_view PlaceOf(const YardstickShare& share) {
  if (share.yard < share.lowest) {
    return TrMark("below the range");
  }
  if (share.yard > share.highest) {
    return TrMark("above the range");
  }
  if (!share.median) {
    return TrMark("within the range");
  }
  return share.yard < *share.median   ? TrMark("in the lower half of the range")
         : share.yard > *share.median ? TrMark("in the upper half of the range")
                                      : TrMark("at the median");
}

std::vector<std::string> SentencesOf(const Yardstick& yardstick) {
  return {Tr("33 dairy herds, 386,011 loads (%1):", {std::string(kYardstickSource)}),
          Sentence(TrMark("within 2 %"), yardstick.within),
          Sentence(TrMark("within 5 kg"), yardstick.within_weight),
          Sentence(TrMark("beyond 62.5 kg"), yardstick.beyond)};
}

}  // namespace vrx
