#include "exchange/unread_feeds.h"

#include <algorithm>
#include <cstddef>

#include "base/encoding.h"

namespace vrx {
namespace {

constexpr std::size_t kMostInText = 10;     // records
constexpr std::size_t kMostInList = 500;    // records
constexpr std::size_t kMostOfRecord = 120;  // bytes; a valid record has about 50

// A damaged record may contain control sequences of a terminal.
std::string Shown(std::string_view bytes) {
  std::string shown(bytes.substr(0, kMostOfRecord));
  std::replace_if(
      shown.begin(), shown.end(),
      [](char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; }, ' ');
  return Windows1252ToUtf8(shown) + (bytes.size() > kMostOfRecord ? "..." : "");
}

std::string Lines(const std::vector<UnreadFeed>& feeds, std::size_t most) {
  std::string lines;
  for (std::size_t i = 0; i < std::min(feeds.size(), most); ++i) {
    const UnreadFeed& feed = feeds[i];
    lines += lines.empty() ? "" : "\r\n";
    lines += "Transaction " + Shown(feed.transaction) + ": " + Shown(feed.text);
  }
  if (feeds.size() > most) {
    lines += "\r\nand " + std::to_string(feeds.size() - most) + " more";
  }
  return lines;
}

}  // namespace

std::string UnreadFeedsText(const std::vector<UnreadFeed>& feeds, std::string_view what) {
  const bool one = feeds.size() == 1;
  return std::to_string(feeds.size()) +
         (one ? " feed record fits no batch of the file and was not "
              : " feed records fit no batch of the file and were not ") +
         std::string(what) + ":\r\n" + Lines(feeds, kMostInText);
}

std::string UnreadFeedsList(const std::vector<UnreadFeed>& feeds) {
  return feeds.size() > kMostInText ? Lines(feeds, kMostInList) : std::string();
}

}  // namespace vrx
