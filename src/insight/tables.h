#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "insight/accuracy.h"
#include "insight/batches.h"
#include "insight/completeness.h"
#include "insight/loads.h"
#include "insight/pens.h"
#include "insight/use.h"

namespace vrx {

// The answers as tables: the same columns and figures in the window, on a page, in CSV and JSON.

enum class CellKind {
  kName,  // "(none)" if it is missing
  kText,
  kWord,    // English; Tr translates it
  kDay,     // YYYY-MM-DD
  kMoment,  // YYYY-MM-DDTHH:MM
  kCount,
  kWeight,   // in the database's unit
  kPercent,  // also percentage points
  kMinutes,
  kMoney,
  kYesNo,
};

// Numbers are at the right of their column.
[[nodiscard]] bool IsNumber(CellKind kind);

// Nothing, or a value of the kind of its column.
using AnswerCell = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

struct AnswerColumn {
  std::string_view key;      // in CSV and JSON; a point separates an inner object
  std::string_view caption;  // in English; Tr translates it
  CellKind kind = CellKind::kText;
};

using AnswerRow = std::vector<AnswerCell>;

struct AnswerTable {
  std::vector<AnswerColumn> columns = {};
  std::vector<AnswerRow> rows = {};
  AnswerRow total = {};       // of all rows; empty if there is no such line
  std::string_view how = {};  // how the figures are made, in a sentence or two; Tr translates it
};

// With all digits, percentages with one decimal: as CSV has it.
[[nodiscard]] std::string TextOf(const AnswerColumn& column, const AnswerCell& cell);

// Rounded for the eye, halves away from zero: percentages, minutes and weights to one decimal,
// money to two, without zeros at the end of weights and minutes.
[[nodiscard]] std::string ShownText(const AnswerColumn& column, const AnswerCell& cell);

// "ingredient", "recipe", "operator", "pen", "day", "week", "month"
[[nodiscard]] std::string_view WordOf(AccuracyKey key);

[[nodiscard]] AnswerTable TableOf(const Accuracy& answer, const AccuracyQuestion& question);
// Of single loads or deliveries: `lines` of Loads.
[[nodiscard]] AnswerTable TableOf(const std::vector<LoadLine>& lines, bool deliveries);
[[nodiscard]] AnswerTable TableOf(const Composition& answer);
[[nodiscard]] AnswerTable TableOf(const Balance& answer);
[[nodiscard]] AnswerTable TableOfDays(const Balance& answer);
[[nodiscard]] AnswerTable TableOf(const Times& answer, TimesKey by);
[[nodiscard]] AnswerTable TableOfBatches(const Times& answer);
[[nodiscard]] AnswerTable TableOf(const Delivered& answer);
[[nodiscard]] AnswerTable TableOf(const PenTotals& answer);
[[nodiscard]] AnswerTable ForwardTable(const Trace& answer);   // of an ingredient
[[nodiscard]] AnswerTable BackwardTable(const Trace& answer);  // of a pen
[[nodiscard]] AnswerTable TableOf(const Holding& answer);
[[nodiscard]] AnswerTable TableOf(const Use& answer);
// One row, with a list as one text: "2: 3-5,9; 4: 1".
[[nodiscard]] AnswerTable TableOf(const Statement& answer);

// The rows of answers that may be long: of the tables above.
[[nodiscard]] AnswerRow RowOf(const AccuracyGroup& group);
[[nodiscard]] AnswerRow RowOf(const CompositionLine& line);
[[nodiscard]] AnswerRow RowOf(const BalanceLine& line);
[[nodiscard]] AnswerRow RowOf(const BatchTimes& batch);
[[nodiscard]] AnswerRow RowOf(const DeliveredLine& line);
[[nodiscard]] AnswerRow ForwardRow(const TraceLine& line);
[[nodiscard]] AnswerRow BackwardRow(const TraceLine& line);

// Where the yard lies among the herds, in English: "below the range", "in the lower half of the
// range". Tr translates it.
[[nodiscard]] std::string_view PlaceOf(const YardstickShare& share);
// The source, and a sentence for each share, in the language of Tr.
[[nodiscard]] std::vector<std::string> SentencesOf(const Yardstick& yardstick);

// What is left out and which names are alike, a sentence each, in the language of Tr.
[[nodiscard]] std::vector<std::string> SentencesOf(const InsightNotes& notes);

}  // namespace vrx
