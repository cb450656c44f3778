#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "exchange/imported_data.h"

namespace vrx {

// What the operator reads about the feed records that fit no batch, each with its number and its
// fields as they are in the file: "2 feed records fit no batch of the file and were not read: ...".
// `what` is "read" or "stored".
std::string UnreadFeedsText(const std::vector<UnreadFeed>& feeds, std::string_view what);

// All of them where the text names only the first ones; else empty.
std::string UnreadFeedsList(const std::vector<UnreadFeed>& feeds);

}  // namespace vrx
