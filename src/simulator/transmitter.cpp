#include "simulator/transmitter.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace vrx::simulator {
namespace {

constexpr std::int64_t kBitsPerByte = 10;  // start bit, 8 data bits, stop bit
constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kPortionsPerSecond = 125;

}  // namespace

Transmitter::Transmitter(std::uint32_t baud) : baud_(std::min(baud, kMaxBaud)) {}

bool Transmitter::Start(Transmission transmission, Time now) {
  const bool cut = GiveWay(now);
  const bool idle = waiting_.empty();
  for (Segment& segment : transmission.segments) {
    waiting_.push_back({std::move(segment), transmission.gives_way});
  }
  if (idle && !waiting_.empty()) {
    origin_ = now + waiting_.front().segment.pause_before;
    DropDone(now);
  }
  return cut;
}

bool Transmitter::GiveWay(Time now) {
  const bool first_goes = !waiting_.empty() && waiting_.front().gives_way;
  const auto cut = std::erase_if(waiting_, [](const Waiting& each) { return each.gives_way; });
  if (first_goes) {
    sent_ = 0;
    origin_ = now;
  }
  return cut > 0;
}

std::string_view Transmitter::Due(Time now) const {
  if (Held() || waiting_.empty() || now < origin_) {
    return {};
  }
  const std::string_view bytes = waiting_.front().segment.bytes;
  std::size_t due = bytes.size();
  if (const Duration passed = now - origin_; passed < TimeOf(due)) {
    // Below 2^63: the elapsed time is less than what this segment takes at this pace.
    due = static_cast<std::size_t>(passed.count() * baud_ / (kBitsPerByte * kNanosecondsPerSecond));
  }
  return due > sent_ ? bytes.substr(sent_, due - sent_) : std::string_view{};
}

void Transmitter::Sent(std::size_t count, Time now) {
  sent_ += count;
  DropDone(now);
}

void Transmitter::HoldForLine(bool hold, Time now) { Hold(held_for_line_, hold, now); }

void Transmitter::HoldForFlowControl(bool hold, Time now) {
  Hold(held_for_flow_control_, hold, now);
}

void Transmitter::Hold(bool& reason, bool hold, Time now) {
  const bool was_held = Held();
  reason = hold;
  if (was_held && !Held()) {
    origin_ = std::max(origin_, now - TimeOf(sent_));
  }
}

std::optional<Time> Transmitter::NextPortion() const {
  if (Held() || waiting_.empty()) {
    return std::nullopt;
  }
  const auto portion = std::max<std::size_t>(baud_ / (kBitsPerByte * kPortionsPerSecond), 1);
  return origin_ + TimeOf(std::min(sent_ + portion, waiting_.front().segment.bytes.size()));
}

// Takes the segments off that are out whole. The next one follows on the schedule; without pace
// there is none, and it follows from now.
void Transmitter::DropDone(Time now) {
  while (!waiting_.empty() && sent_ >= waiting_.front().segment.bytes.size()) {
    const Time end = baud_ == 0 ? std::max(origin_, now) : origin_ + TimeOf(sent_);
    waiting_.pop_front();
    sent_ = 0;
    if (!waiting_.empty()) {
      origin_ = end + waiting_.front().segment.pause_before;
    }
  }
}

// Rounded up, so that at that time the bytes really are due.
Duration Transmitter::TimeOf(std::size_t bytes) const {
  if (baud_ == 0) {
    return Duration{0};
  }
  const std::int64_t bits = static_cast<std::int64_t>(bytes) * kBitsPerByte;
  return Duration{(bits * kNanosecondsPerSecond + baud_ - 1) / baud_};
}

}  // namespace vrx::simulator
