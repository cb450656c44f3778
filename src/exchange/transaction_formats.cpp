#include "exchange/transaction_formats.h"

#include <algorithm>

#include "base/number.h"
#include "base/text.h"

namespace vrx {

namespace {

// Two digits from place `from`, counted from 0; less where the text ends.
std::string_view Pair(std::string_view text, std::size_t from) {
  return text.substr(std::min(from, text.size()), 2);
}

std::string_view Last(std::string_view text, std::size_t count) {
  return text.substr(text.size() - std::min(count, text.size()));
}

std::string Assemble(std::string_view hours, std::string_view minutes, std::string_view suffix) {
  return std::string(hours).append(":").append(minutes).append(" ").append(suffix);
}

}  // namespace

std::string FormatTransactionTime(std::string_view text) {
  constexpr std::size_t kTwentyFourHourForm = 4;
  if (text.empty()) {
    return {};
  }
  if (text.size() > kTwentyFourHourForm) {
    return Assemble(Pair(text, 0), Pair(text, 2), UpperCase(Last(text, 2)));
  }
  const std::string_view minutes = Last(text, 2);
  const int hour = TextToLong(Pair(text, 0));
  if (hour < 0 || hour > 23) {
    return Assemble("", minutes, "");
  }
  const int twelve_hour = hour % 12 == 0 ? 12 : hour % 12;
  return Assemble(Format(static_cast<double>(twelve_hour), "00"), minutes, hour < 12 ? "am" : "pm");
}

std::string FormatTransactionDate(std::string_view text) {
  if (text.empty()) {
    return {};
  }
  const int month = TextToLong(Pair(text, 0));
  const std::string_view name =
      month >= 1 && month <= 12 ? kMonthMarks[static_cast<std::size_t>(month - 1)] : "-XXX-";
  return std::string(Pair(text, 2)).append(name).append(Last(text, 4));
}

}  // namespace vrx
