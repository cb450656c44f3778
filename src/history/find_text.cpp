#include "history/find_text.h"

#include <cmath>
#include <cstddef>

#include "base/number.h"
#include "base/text.h"
#include "history/row_format.h"

namespace vrx {
namespace {

// Numbers that differ by less can have the same 15 digits.
constexpr double kSameDigits = 1e-13;

bool IsDigitAt(std::string_view text, std::size_t at) {
  return at < text.size() && IsDigitChar(text[at]);
}

// True if the number that ends before `at` goes on there, with a digit or a decimal.
bool GoesOnAt(std::string_view text, std::size_t at) {
  return IsDigitAt(text, at) || (at < text.size() && text[at] == '.' && IsDigitAt(text, at + 1));
}

bool BeganBefore(std::string_view text, std::size_t at) {
  return at > 0 &&
         (IsDigitAt(text, at - 1) || (text[at - 1] == '.' && at > 1 && IsDigitAt(text, at - 2)));
}

}  // namespace

FindText::FindText(std::string_view typed)
    : upper_(UnicodeUpperCase(TrimBlanks(typed))),
      day_(ParseTypedDate(upper_)),
      number_(ParseNumber(upper_)),
      // The signs and letters of 1.5E+15, -Inf and Inf.
      like_a_number_(upper_.find_first_not_of("0123456789.-+EINF") == std::string::npos) {
  if (number_) {
    shown_number_ = DefaultText(*number_);
  }
}

bool FindText::IsInText(const HistoryColumn& column, std::string_view text) const {
  if (column.content == ColumnContent::kDate) {
    if (const std::optional<Date> date = ParseStoredDate(text)) {
      return day_ ? day_ == date : !number_ && IsPartOf(MediumText(*date));
    }
  }
  if (column.content == ColumnContent::kTime && ParseStoredTime(text)) {
    return !number_ && IsPartOf(ShownValue(column, std::string(text)));
  }
  return IsPartOf(text);
}

bool FindText::IsInNumber(double value) const {
  if (number_) {
    return value == *number_ || (std::abs(value - *number_) <= kSameDigits * std::abs(*number_) &&
                                 DefaultText(value) == shown_number_);
  }
  return like_a_number_ && IsPartOf(ShownValue(HistoryColumnAt(kTargetColumn), value));
}

bool FindText::IsPartOf(std::string_view shown) const {
  if (IsEmpty()) {
    return false;
  }
  const std::string upper = UnicodeUpperCase(shown);
  if (number_) {
    return IsWholeNumberIn(upper) || ParseNumber(upper) == number_;
  }
  return upper.find(upper_) != std::string::npos;
}

bool FindText::IsWholeNumberIn(std::string_view upper) const {
  for (std::size_t at = upper.find(upper_); at != std::string_view::npos;
       at = upper.find(upper_, at + 1)) {
    if (!BeganBefore(upper, at) && !GoesOnAt(upper, at + upper_.size())) {
      return true;
    }
  }
  return false;
}

bool BeginsWith(std::string_view shown, std::string_view typed) {
  return UnicodeUpperCase(shown).starts_with(UnicodeUpperCase(typed));
}

}  // namespace vrx
