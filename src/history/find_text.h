#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"
#include "history/columns.h"
#include "history/found_rows.h"
#include "history/group_query.h"

namespace vrx {

// What an operator looks for in the history. A cell has it if its shown text does, ignoring case:
// - A text is found as a part of a cell.
// - A number is found as a whole: 5200 in 5200 and in "PEN 5200", not in 15200, 5200.5 or
//   "PEN 52001". It is not sought in dates and times.
// - A day in any form of ParseTypedDate is found in the dates, and as a part of the texts.
class FindText : public CellTest {
 public:
  // Blanks at both ends do not count.
  explicit FindText(std::string_view typed);

  [[nodiscard]] bool IsEmpty() const { return upper_.empty(); }
  [[nodiscard]] const std::optional<Date>& Day() const { return day_; }

  // CellTest.
  [[nodiscard]] bool IsInText(const HistoryColumn& column, std::string_view text) const override;
  [[nodiscard]] bool IsInNumber(double value) const override;

 private:
  [[nodiscard]] bool IsPartOf(std::string_view shown) const;
  [[nodiscard]] bool IsWholeNumberIn(std::string_view upper) const;

  std::string upper_;
  std::optional<Date> day_;
  std::optional<double> number_;
  std::string shown_number_;
  bool like_a_number_;  // only of characters that shown numbers have
};

// True if the text of a cell, as it is shown, begins with what was typed, ignoring case.
[[nodiscard]] bool BeginsWith(std::string_view shown, std::string_view typed);

}  // namespace vrx
