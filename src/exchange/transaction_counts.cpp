#include "exchange/transaction_counts.h"

#include <algorithm>
#include <limits>

namespace vrx {

namespace {

// The entries of a list of times up to the first that is none. What stands behind the last comma is
// not looked at.
std::int64_t CountTimes(std::string_view list) {
  std::int64_t count = 0;
  for (;;) {
    const std::size_t comma = list.find(',');
    if (comma == std::string_view::npos || (comma != 4 && comma != 6)) {
      return count;
    }
    ++count;
    list.remove_prefix(comma + 1);
  }
}

}  // namespace

BatchCounts CountBatchRows(std::string_view section) {
  constexpr std::size_t kNone = std::string_view::npos;
  BatchCounts counts;
  std::size_t list_start = 0;  // the ";" ahead of the list that was counted last; 0: none yet
  std::int64_t times = 0;
  for (std::size_t mark = section.find("B,"); mark != kNone; mark = section.find("B,", mark + 1)) {
    if (list_start <= mark) {
      list_start = section.find(';', mark);
      const std::size_t list_end = list_start == kNone ? kNone : section.find(';', list_start + 1);
      if (list_end == kNone) {
        return {};
      }
      times = CountTimes(section.substr(list_start + 1, list_end - list_start - 1));
    }
    ++counts.batches;
    counts.rows += times;
  }
  return counts;
}

std::int64_t CountFeedRecords(std::string_view section) {
  return std::count(section.begin(), section.end(), 'B');
}

std::int32_t KeptCount(std::int64_t count) {
  return count > std::numeric_limits<std::int32_t>::max() ? -1 : static_cast<std::int32_t>(count);
}

}  // namespace vrx
