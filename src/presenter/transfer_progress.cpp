#include "presenter/transfer_progress.h"

#include <algorithm>
#include <chrono>

#include "base/translation.h"

namespace vrx {
namespace {

constexpr Milliseconds kShortestMeasured{1000};
constexpr std::int64_t kSecondsPerMinute = 60;

std::string Duration(std::int64_t seconds) {
  const std::string rest = std::to_string(seconds % kSecondsPerMinute) + " s";
  return seconds < kSecondsPerMinute ? rest
                                     : std::to_string(seconds / kSecondsPerMinute) + " min " + rest;
}

}  // namespace

std::string TransferProgress::Text(std::int64_t bytes, Milliseconds now) {
  if (bytes <= bytes_at_start_ || bytes_at_start_ < 0) {
    bytes_at_start_ = bytes;
    start_ = now;
  }
  std::string text = Tr(texts_.begins) + Tr("%1 bytes", {std::to_string(bytes)});
  if (bytes > bytes_at_start_ && whole_ > 0) {
    constexpr std::int64_t kPercent = 100;
    const std::int64_t percent = std::min(kPercent, bytes * kPercent / whole_);
    text += ", " + Tr(texts_.percent, {std::to_string(percent)}) + TimeLeft(bytes, now);
  }
  return text;
}

std::string TransferProgress::TimeLeft(std::int64_t bytes, Milliseconds now) const {
  const Milliseconds measured = now - start_;
  const std::int64_t left = whole_ - bytes;
  if (measured < kShortestMeasured || left <= 0) {
    return {};
  }
  const std::int64_t moved = bytes - bytes_at_start_;
  const std::int64_t milliseconds = left * measured.count() / moved;
  const std::int64_t seconds =
      std::chrono::ceil<std::chrono::seconds>(Milliseconds{milliseconds}).count();
  return ", " + Tr(texts_.time_left, {Duration(seconds)});
}

}  // namespace vrx
