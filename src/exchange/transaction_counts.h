#pragma once

#include <cstdint>
#include <string_view>

namespace vrx {

struct BatchCounts {
  std::int64_t batches = 0;
  std::int64_t rows = 0;
};

// Counts by marks alone, ahead of any reading of records: a "B," counts as a batch wherever it
// stands, and the text between the two ";" behind it as its list of times. Both counts are 0 when
// one of the ";" is missing. Linear in the section's length.
BatchCounts CountBatchRows(std::string_view section);

// Every "B" counts, one in a pen or user field too. `section` may be a part of the feed section.
std::int64_t CountFeedRecords(std::string_view section);

// A count as it is kept; -1 for one beyond 32 bits.
std::int32_t KeptCount(std::int64_t count);

}  // namespace vrx
