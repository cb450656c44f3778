#include <utility>

#include "base/translation.h"
#include "insight/table_cells.h"
#include "insight/tables.h"

namespace vrx {
namespace {

constexpr std::string_view kHowTrace = TrMark(
    "The ingredient's share of a batch, times what each pen was fed of it. By names as stored; "
    "the weights can differ by tenths from those in the records, which were rounded on the way.");

AnswerCell MomentCell(const std::optional<Moment>& moment) {
  return moment ? AnswerCell(TextOf(*moment)) : AnswerCell();
}

AnswerRow CellsOf(AnswerCell pen, const PenTotal& total) {
  return {std::move(pen),
          CellOf(total.called),
          CellOf(total.delivered),
          CellOf(total.difference),
          CellOf(total.difference_percent),
          total.feedings,
          total.days,
          total.missed_days,
          total.recipe_changes};
}

}  // namespace

AnswerTable TableOf(const Delivered& answer) {
  AnswerTable table{
      .columns = {{"pen", TrMark("Pen"), CellKind::kName},
                  {"date", TrMark("Date"), CellKind::kDay},
                  {"called", TrMark("Called"), CellKind::kWeight},
                  {"delivered", TrMark("Delivered"), CellKind::kWeight},
                  {"feedings", TrMark("Feedings"), CellKind::kCount},
                  {"mean7", TrMark("Mean of 7 days"), CellKind::kWeight},
                  {"recipe", TrMark("Recipe"), CellKind::kText},
                  {"recipeChanged", TrMark("Recipe changed"), CellKind::kYesNo},
                  {"first", TrMark("First"), CellKind::kText},
                  {"firstShift", TrMark("Later than usual"), CellKind::kMinutes},
                  {"missed", TrMark("Missed"), CellKind::kYesNo},
                  {"perHead", TrMark("Per head"), CellKind::kWeight}},
      .how = TrMark("What each pen was called for and was fed on each day, with the mean of seven "
                    "days and the time of the first delivery, in minutes after the median of the "
                    "14 days before.")};
  for (const DeliveredLine& line : answer.lines) {
    table.rows.push_back(RowOf(line));
  }
  return table;
}

AnswerRow RowOf(const DeliveredLine& line) {
  return {CellOf(line.pen),   StoredText(line.date),    CellOf(line.called), CellOf(line.delivered),
          line.feedings,      CellOf(line.mean7),       CellOf(line.recipe), line.recipe_changed,
          CellOf(line.first), CellOf(line.first_shift), line.missed,         CellOf(line.per_head)};
}

AnswerTable TableOf(const PenTotals& answer) {
  AnswerTable table{.columns = {{"pen", "Pen", CellKind::kName},
                                {"called", "Called", CellKind::kWeight},
                                {"delivered", "Delivered", CellKind::kWeight},
                                {"difference", "Difference", CellKind::kWeight},
                                {"differencePercent", "Difference %", CellKind::kPercent},
                                {"feedings", "Feedings", CellKind::kCount},
                                {"days", "Days", CellKind::kCount},
                                {"missedDays", "Missed days", CellKind::kCount},
                                {"recipeChanges", "Recipe changes", CellKind::kCount}},
                    .how =
                        "What each pen was called for and was fed. A missed day is one without a "
                        "delivery between two days with one."};
  for (const PenTotal& pen : answer.pens) {
    table.rows.push_back(CellsOf(CellOf(pen.pen), pen));
  }
  table.total = CellsOf(std::string("Total"), answer.all);
  return table;
}

AnswerTable ForwardTable(const Trace& answer) {
  AnswerTable table{.columns = {{"transaction", TrMark("Batch"), CellKind::kCount},
                                {"date", TrMark("Date"), CellKind::kDay},
                                {"recipe", TrMark("Recipe"), CellKind::kName},
                                {"operator", TrMark("Operator"), CellKind::kName},
                                {"pen", TrMark("Pen"), CellKind::kText},
                                {"weight", TrMark("Weight"), CellKind::kWeight},
                                {"share", TrMark("Share %"), CellKind::kPercent}},
                    .how = kHowTrace};
  for (const TraceLine& line : answer.lines) {
    table.rows.push_back(ForwardRow(line));
  }
  return table;
}

AnswerRow ForwardRow(const TraceLine& line) {
  return {CellOf(line.transaction), CellOf(line.date), CellOf(line.recipe),
          CellOf(line.operator_id), CellOf(line.pen),  CellOf(line.weight),
          CellOf(line.share)};
}

AnswerTable BackwardTable(const Trace& answer) {
  AnswerTable table{.columns = {{"transaction", TrMark("Batch"), CellKind::kCount},
                                {"date", TrMark("Date"), CellKind::kDay},
                                {"recipe", TrMark("Recipe"), CellKind::kName},
                                {"operator", TrMark("Operator"), CellKind::kName},
                                {"ingredient", TrMark("Ingredient"), CellKind::kName},
                                {"weight", TrMark("Weight"), CellKind::kWeight}},
                    .how = kHowTrace};
  for (const TraceLine& line : answer.lines) {
    table.rows.push_back(BackwardRow(line));
  }
  return table;
}

AnswerRow BackwardRow(const TraceLine& line) {
  return {CellOf(line.transaction), CellOf(line.date),       CellOf(line.recipe),
          CellOf(line.operator_id), CellOf(line.ingredient), CellOf(line.weight)};
}

AnswerTable TableOf(const Holding& answer) {
  AnswerTable table{.columns = {{"pen", TrMark("Pen"), CellKind::kName},
                                {"last", TrMark("Last with it"), CellKind::kMoment},
                                {"since", TrMark("Without it since"), CellKind::kMoment},
                                {"until", TrMark("Until"), CellKind::kMoment},
                                {"state", TrMark("State"), CellKind::kWord},
                                {"why", TrMark("Why"), CellKind::kText}},
                    .how = TrMark("The days begin with a pen's first delivery without the "
                                  "ingredient. Pens, not animals; names, not drug lots. It is no "
                                  "proof that the wagon was cleaned.")};
  for (const HoldingLine& line : answer.lines) {
    table.rows.push_back({CellOf(line.pen), MomentCell(line.last), MomentCell(line.since),
                          MomentCell(line.until), std::string(TextOf(line.state)),
                          CellOf(line.why)});
  }
  return table;
}

AnswerTable TableOf(const Use& answer) {
  AnswerTable table{.columns = {{"ingredient", TrMark("Ingredient"), CellKind::kName},
                                {"used", TrMark("Used"), CellKind::kWeight},
                                {"cost", TrMark("Cost"), CellKind::kMoney},
                                {"over", TrMark("Cost of over"), CellKind::kMoney},
                                {"under", TrMark("Cost of under"), CellKind::kMoney},
                                {"net", TrMark("Net cost"), CellKind::kMoney},
                                {"shrink", TrMark("Shrink %"), CellKind::kPercent}},
                    .how = TrMark("What was loaded of each ingredient. Cost comes from a file of "
                                  "prices, shrink from a file of stock: what is gone and was not "
                                  "used.")};
  for (const UseLine& line : answer.lines) {
    table.rows.push_back({CellOf(line.ingredient), line.used, CellOf(line.cost), CellOf(line.over),
                          CellOf(line.under), CellOf(line.net), CellOf(line.shrink)});
  }
  return table;
}

}  // namespace vrx
