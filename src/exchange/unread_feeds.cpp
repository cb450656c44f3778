#include "exchange/unread_feeds.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "base/encoding.h"
#include "base/translation.h"

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
    lines += Tr("Transaction %1: %2", {Shown(feed.transaction), Shown(feed.text)});
  }
  if (feeds.size() > most) {
    lines += "\r\n" + Tr("and %1 more", {std::to_string(feeds.size() - most)});
  }
  return lines;
}

}  // namespace

std::string UnreadFeedsText(const std::vector<UnreadFeed>& feeds, LeftOutOf where) {
  const bool import = where == LeftOutOf::kImport;
  const std::string count = std::to_string(feeds.size());
  std::string head;
  if (feeds.size() == 1) {
    head = import ? Tr("1 feed record fits no batch of the file and was not read:")
                  : Tr("1 feed record fits no batch of the file and was not stored:");
  } else {
    head = import ? Tr("%1 feed records fit no batch of the file and were not read:", {count})
                  : Tr("%1 feed records fit no batch of the file and were not stored:", {count});
  }
  return head + "\r\n" + Lines(feeds, kMostInText);
}

std::string UnreadFeedsList(const std::vector<UnreadFeed>& feeds) {
  return feeds.size() > kMostInText ? Lines(feeds, kMostInList) : std::string();
}

}  // namespace vrx
