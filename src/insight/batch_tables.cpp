#include "base/translation.h"
#include "insight/table_cells.h"
#include "insight/tables.h"

namespace vrx {
namespace {

void AddFigures(AnswerRow& row, const TimesFigures& figures) {
  for (const auto& figure : {figures.median, figures.q1, figures.q3}) {
    row.push_back(CellOf(figure));
  }
}

constexpr std::string_view kHowTimes = TrMark(
    "Preparing is from the first load to the last one, waiting from there to the first delivery, "
    "feeding from there to the last delivery. The resolution is one minute; the work before the "
    "first record is not in the times.");

}  // namespace

AnswerTable TableOf(const Balance& answer) {
  AnswerTable table{
      .columns = {{"transaction", TrMark("Batch"), CellKind::kCount},
                  {"date", TrMark("Date"), CellKind::kDay},
                  {"recipe", TrMark("Recipe"), CellKind::kName},
                  {"operator", TrMark("Operator"), CellKind::kName},
                  {"loaded", TrMark("Loaded"), CellKind::kWeight},
                  {"fed", TrMark("Fed"), CellKind::kWeight},
                  {"left", TrMark("Left"), CellKind::kWeight},
                  {"leftPercent", TrMark("Left %"), CellKind::kPercent},
                  {"state", TrMark("State"), CellKind::kWord}},
      .how = TrMark("What was loaded less what was fed, of each batch. A batch is out of balance "
                    "when both limits are passed.")};
  for (const BalanceLine& line : answer.lines) {
    table.rows.push_back(RowOf(line));
  }
  return table;
}

AnswerRow RowOf(const BalanceLine& line) {
  return {CellOf(line.transaction),
          CellOf(line.date),
          CellOf(line.recipe),
          CellOf(line.operator_id),
          CellOf(line.loaded),
          CellOf(line.fed),
          line.left,
          CellOf(line.left_percent),
          std::string(TextOf(line.state))};
}

AnswerTable TableOfDays(const Balance& answer) {
  AnswerTable table{
      .columns = {{"date", TrMark("Date"), CellKind::kDay},
                  {"loaded", TrMark("Loaded"), CellKind::kWeight},
                  {"left", TrMark("Left"), CellKind::kWeight},
                  {"leftPercent", TrMark("Left %"), CellKind::kPercent},
                  {"median", TrMark("Median of 30 days %"), CellKind::kPercent}},
      .how = TrMark("Fed against loaded of all batches of a day: scale error, spilled and "
                    "carried-over feed together. It is not the feed left in the wagon.")};
  for (const BalanceDay& day : answer.days) {
    table.rows.push_back(
        {StoredText(day.date), day.loaded, day.left, CellOf(day.left_percent), CellOf(day.median)});
  }
  return table;
}

AnswerTable TableOf(const Times& answer, TimesKey by) {
  AnswerTable table{
      .columns = {{"key", by == TimesKey::kOperator ? TrMark("Operator") : TrMark("Recipe"),
                   CellKind::kName},
                  {"batches", TrMark("Batches"), CellKind::kCount},
                  {"leftOut", TrMark("Left out"), CellKind::kCount},
                  {"preparing.median", TrMark("Preparing"), CellKind::kMinutes},
                  {"preparing.q1", TrMark("Preparing, lower quartile"), CellKind::kMinutes},
                  {"preparing.q3", TrMark("Preparing, upper quartile"), CellKind::kMinutes},
                  {"waiting.median", TrMark("Waiting"), CellKind::kMinutes},
                  {"waiting.q1", TrMark("Waiting, lower quartile"), CellKind::kMinutes},
                  {"waiting.q3", TrMark("Waiting, upper quartile"), CellKind::kMinutes},
                  {"feeding.median", TrMark("Feeding"), CellKind::kMinutes},
                  {"feeding.q1", TrMark("Feeding, lower quartile"), CellKind::kMinutes},
                  {"feeding.q3", TrMark("Feeding, upper quartile"), CellKind::kMinutes}},
      .how = kHowTimes};
  for (const TimesGroup& group : answer.groups) {
    AnswerRow row{CellOf(group.key), group.batches, group.left_out};
    AddFigures(row, group.preparing);
    AddFigures(row, group.waiting);
    AddFigures(row, group.feeding);
    table.rows.push_back(std::move(row));
  }
  return table;
}

AnswerTable TableOfBatches(const Times& answer) {
  AnswerTable table{.columns = {{"transaction", TrMark("Batch"), CellKind::kCount},
                                {"date", TrMark("Date"), CellKind::kDay},
                                {"recipe", TrMark("Recipe"), CellKind::kName},
                                {"operator", TrMark("Operator"), CellKind::kName},
                                {"leftOut", TrMark("Left out"), CellKind::kYesNo},
                                {"preparing", TrMark("Preparing"), CellKind::kMinutes},
                                {"waiting", TrMark("Waiting"), CellKind::kMinutes},
                                {"feeding", TrMark("Feeding"), CellKind::kMinutes}},
                    .how = kHowTimes};
  for (const BatchTimes& batch : answer.batches) {
    table.rows.push_back(RowOf(batch));
  }
  return table;
}

AnswerRow RowOf(const BatchTimes& batch) {
  return {CellOf(batch.transaction), CellOf(batch.date),   CellOf(batch.recipe),
          CellOf(batch.operator_id), batch.left_out,       CellOf(batch.preparing),
          CellOf(batch.waiting),     CellOf(batch.feeding)};
}

}  // namespace vrx
