#include "insight/tables.h"

#include "base/number.h"
#include "base/translation.h"

namespace vrx {
namespace {

// "12.50" without the zeros that say nothing.
std::string WithoutZeros(std::string text) {
  while (text.back() == '0') {
    text.pop_back();
  }
  if (text.back() == '.') {
    text.pop_back();
  }
  return text;
}

std::string RoundedText(CellKind kind, double value) {
  switch (kind) {
    case CellKind::kPercent:
      return Format(value, "0.0");
    case CellKind::kMoney:
      return Format(value, "0.00");
    case CellKind::kWeight:
    case CellKind::kMinutes:
      return WithoutZeros(Format(value, "0.0"));
    default:
      return DefaultText(value);
  }
}

std::string TextOfCell(const AnswerColumn& column, const AnswerCell& cell, bool rounds) {
  if (const auto* const text = std::get_if<std::string>(&cell)) {
    return *text;
  }
  if (const auto* const number = std::get_if<double>(&cell)) {
    return rounds || column.kind == CellKind::kPercent ? RoundedText(column.kind, *number)
                                                       : DefaultText(*number);
  }
  if (const auto* const count = std::get_if<std::int64_t>(&cell)) {
    return std::to_string(*count);
  }
  if (const auto* const yes = std::get_if<bool>(&cell)) {
    return std::string(*yes ? TrMark("Yes") : TrMark("No"));
  }
  return std::string(column.kind == CellKind::kName ? TrMark("(none)") : "");
}

}  // namespace

bool IsNumber(CellKind kind) {
  switch (kind) {
    case CellKind::kCount:
    case CellKind::kWeight:
    case CellKind::kPercent:
    case CellKind::kMinutes:
    case CellKind::kMoney:
      return true;
    default:
      return false;
  }
}

std::string TextOf(const AnswerColumn& column, const AnswerCell& cell) {
  return TextOfCell(column, cell, false);
}

std::string ShownText(const AnswerColumn& column, const AnswerCell& cell) {
  return TextOfCell(column, cell, true);
}

std::vector<std::string> SentencesOf(const InsightNotes& notes) {
  std::vector<std::string> sentences;
  for (const LeftOutImport& import : notes.left_out) {
    sentences.push_back(
        Tr(import.rows == 1
               ? TrMark("Import %1 (%2) is left out: its %3 row is in %4, the database is in %5. "
                        "Say with imports --settle whether to keep or to convert them.")
               : TrMark("Import %1 (%2) is left out: its %3 rows are in %4, the database is in "
                        "%5. Say with imports --settle whether to keep or to convert them."),
           {std::to_string(import.import), import.file, std::to_string(import.rows), import.units,
            notes.units}));
  }
  if (notes.undated > 0) {
    sentences.push_back(Tr(notes.undated == 1
                               ? TrMark("%1 row has no date and may be left out of the period.")
                               : TrMark("%1 rows have no date and may be left out of the period."),
                           {std::to_string(notes.undated)}));
  }
  for (const std::vector<std::string>& alike : notes.alike) {
    std::string names;
    for (const std::string& name : alike) {
      names += (names.empty() ? "" : ", ") + name;
    }
    sentences.push_back(Tr("These names differ by case only and are different: %1.", {names}));
  }
  return sentences;
}

}  // namespace vrx
