#pragma once

#include <array>
#include <string>
#include <string_view>

namespace vrx {

// The months within a date's final form, January first.
inline constexpr std::array<std::string_view, 12> kMonthMarks = {
    "-Jan-", "-Feb-", "-Mar-", "-Apr-", "-May-", "-Jun-",
    "-Jul-", "-Aug-", "-Sep-", "-Oct-", "-Nov-", "-Dec-"};

// The forms in which a transaction's time and date are stored; "" stays "". Neither checks: hours
// or months that are no number read as 0, and a text too short gives what there is.

// "1405" and "0205pm" to "02:05 pm" and "02:05 PM".
std::string FormatTransactionTime(std::string_view text);

// "01152009" to "15-Jan-2009"; a month outside 1 to 12 is "XXX".
std::string FormatTransactionDate(std::string_view text);

}  // namespace vrx
