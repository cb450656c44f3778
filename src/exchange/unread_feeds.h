#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "exchange/imported_data.h"

namespace vrx {

// What the operator reads about the contents of a file.

// What the records are left out of: they "were not read" or "were not stored".
enum class LeftOutOf { kImport, kStore };

// Message about the unread feed records, each with its number and its fields: "2 feed records fit
// no batch of the file and were not read: ...".
[[nodiscard]] std::string UnreadFeedsText(const std::vector<UnreadFeed>& feeds, LeftOutOf where);

// All unread feed records if the message lists only the first ones; else empty.
[[nodiscard]] std::string UnreadFeedsList(const std::vector<UnreadFeed>& feeds);

// What a data file of the indicator holds.
struct DataFileFacts {
  std::string summary;                    // "11-Jan-26 to 12-Jan-26, 19 batches"; empty: unknown
  std::optional<Date> first_record = {};  // of a transaction file whose first record has a date
};

// By the mark at the beginning of the text, which is bytes as received. A transaction file that an
// import would refuse is summed up as "not readable".
[[nodiscard]] DataFileFacts ReadDataFileFacts(std::string_view text);

}  // namespace vrx
