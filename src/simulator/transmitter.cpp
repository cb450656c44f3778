#include "simulator/transmitter.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace vrx::simulator {

namespace {

constexpr std::int64_t kBitsPerByte = 10;  // start bit, 8 data bits, stop bit
constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kPortionsPerSecond = 125;

[[noreturn]] void Refuse(std::string_view text, std::string_view reason) {
  throw std::invalid_argument("fault \"" + std::string(text) + "\": " + std::string(reason));
}

// A parsed fault: "stall=500" has the kind "stall" and the value "500".
struct Written {
  std::string_view text;
  std::string_view kind;
  std::optional<std::string_view> value;
};

Written TakeApart(std::string_view text) {
  const auto equals = text.find('=');
  if (equals == std::string_view::npos) {
    return {text, text, std::nullopt};
  }
  return {text, text.substr(0, equals), text.substr(equals + 1)};
}

void SetSwitch(bool& fault, const Written& written) {
  if (written.value) {
    Refuse(written.text, "takes no value");
  }
  if (fault) {
    Refuse(written.text, "given twice");
  }
  fault = true;
}

template <typename Number>
void SetNumber(std::optional<Number>& fault, const Written& written) {
  if (!written.value) {
    Refuse(written.text, "needs a number: " + std::string(written.kind) + "=N");
  }
  std::uint32_t number = 0;
  const char* end = written.value->data() + written.value->size();
  const auto [stop, error] = std::from_chars(written.value->data(), end, number);
  if (error != std::errc{} || stop != end) {
    Refuse(written.text, "needs a whole number from 0 to 4294967295");
  }
  if (fault) {
    Refuse(written.text, "given twice");
  }
  fault = Number{number};
}

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
    // Below 2^63, because the elapsed time is less than the duration of this segment.
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

// Removes segments that are completely sent. The next one follows on schedule, or now if pacing is
// off.
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

// Rounded up, so that the bytes are due at that time.
Duration Transmitter::TimeOf(std::size_t bytes) const {
  if (baud_ == 0) {
    return Duration{0};
  }
  const std::int64_t bits = static_cast<std::int64_t>(bytes) * kBitsPerByte;
  return Duration{(bits * kNanosecondsPerSecond + baud_ - 1) / baud_};
}

void AddFault(Faults& faults, std::string_view text) {
  const Written written = TakeApart(text);
  if (written.kind == "silent") {
    SetSwitch(faults.silent, written);
  } else if (written.kind == "garbage") {
    SetSwitch(faults.garbage, written);
  } else if (written.kind == "extra-us") {
    SetSwitch(faults.extra_us, written);
  } else if (written.kind == "cut-after") {
    SetNumber(faults.cut_after, written);
  } else if (written.kind == "stall") {
    SetNumber(faults.stall, written);
  } else if (written.kind == "hang-up") {
    SetNumber(faults.hang_up, written);
  } else if (written.kind == "strays") {
    SetNumber(faults.strays, written);
  } else if (written.kind == "xoff") {
    SetNumber(faults.xoff, written);
  } else if (written.kind == "deaf") {
    SetNumber(faults.deaf, written);
  } else {
    Refuse(text,
           "unknown; there are silent, garbage, cut-after=N, extra-us, stall=MS, hang-up=N, "
           "strays=N, xoff=N, deaf=N");
  }
}

}  // namespace vrx::simulator
