#pragma once

#include <optional>
#include <string>

#include "base/date.h"
#include "insight/tables.h"

namespace vrx {

// Cells of values that may be missing.
template <typename Value>
AnswerCell CellOf(const std::optional<Value>& value) {
  return value ? AnswerCell(*value) : AnswerCell();
}
[[nodiscard]] inline AnswerCell CellOf(const std::optional<Date>& day) {
  return day ? AnswerCell(StoredText(*day)) : AnswerCell();
}
[[nodiscard]] inline AnswerCell CellOf(const std::optional<TimeOfDay>& time) {
  constexpr std::size_t kHoursAndMinutes = 5;
  return time ? AnswerCell(StoredText(*time).substr(0, kHoursAndMinutes)) : AnswerCell();
}
[[nodiscard]] inline AnswerCell CellOf(const std::string& text) {
  return text.empty() ? AnswerCell() : AnswerCell(text);
}

}  // namespace vrx
