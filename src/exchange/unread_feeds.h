#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "exchange/imported_data.h"

namespace vrx {

// Message about the unread feed records, each with its number and its fields: "2 feed records fit
// no batch of the file and were not read: ...". `what` is "read" or "stored".
[[nodiscard]] std::string UnreadFeedsText(const std::vector<UnreadFeed>& feeds,
                                          std::string_view what);

// All unread feed records if the message lists only the first ones; else empty.
[[nodiscard]] std::string UnreadFeedsList(const std::vector<UnreadFeed>& feeds);

}  // namespace vrx
