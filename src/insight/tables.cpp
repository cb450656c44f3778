#include "insight/tables.h"

#include "base/number.h"

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
    return *yes ? "Yes" : "No";
  }
  return column.kind == CellKind::kName ? "(none)" : "";
}

}  // namespace

std::string TextOf(const AnswerColumn& column, const AnswerCell& cell) {
  return TextOfCell(column, cell, false);
}

std::string ShownText(const AnswerColumn& column, const AnswerCell& cell) {
  return TextOfCell(column, cell, true);
}

std::vector<std::string> SentencesOf(const InsightNotes& notes) {
  std::vector<std::string> sentences;
  for (const LeftOutImport& import : notes.left_out) {
    sentences.push_back("Import " + std::to_string(import.import) + " (" + import.file +
                        ") is left out: its " + std::to_string(import.rows) +
                        (import.rows == 1 ? " row is" : " rows are") + " in " + import.units +
                        ", the database is in " + notes.units +
                        ". Say with imports --settle whether to keep or to convert them.");
  }
  if (notes.undated > 0) {
    sentences.push_back(std::to_string(notes.undated) +
                        (notes.undated == 1 ? " row has" : " rows have") +
                        " no date and may be left out of the period.");
  }
  for (const std::vector<std::string>& alike : notes.alike) {
    std::string names;
    for (const std::string& name : alike) {
      names += (names.empty() ? "" : ", ") + name;
    }
    sentences.push_back("These names differ by case only and are different: " + names + ".");
  }
  return sentences;
}

}  // namespace vrx
