#pragma once

#include <string>
#include <vector>

#include "exchange/imported_data.h"

namespace vrx {

// What the records are left out of: they "were not read" or "were not stored".
enum class LeftOutOf { kImport, kStore };

// Message about the unread feed records, each with its number and its fields: "2 feed records fit
// no batch of the file and were not read: ...".
[[nodiscard]] std::string UnreadFeedsText(const std::vector<UnreadFeed>& feeds, LeftOutOf where);

// All unread feed records if the message lists only the first ones; else empty.
[[nodiscard]] std::string UnreadFeedsList(const std::vector<UnreadFeed>& feeds);

}  // namespace vrx
