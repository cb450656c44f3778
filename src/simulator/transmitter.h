#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>

#include "simulator/device.h"

namespace vrx::simulator {

// Paces bytes like a real line, with 10 bits per byte. The schedule is computed from the first byte
// of a segment, so that late wake-ups do not add up. It reads no clock: the caller passes the time,
// which never goes back.
class Transmitter {
 public:
  static constexpr std::uint32_t kMaxBaud = 4'000'000;

  // In bits per second; 0 disables pacing.
  explicit Transmitter(std::uint32_t baud);

  // Queues a transmission; first drops queued ones that give way. Returns whether it dropped any.
  bool Start(Transmission transmission, Time now);

  // Drops transmissions that give way. Returns whether there were any.
  bool GiveWay(Time now);

  // The bytes that are due and not sent yet; valid until the next call. Pauses and segments split
  // them, so call it again after Sent until it is empty.
  [[nodiscard]] std::string_view Due(Time now) const;

  // Marks due bytes as sent.
  void Sent(std::size_t count, Time now);

  // Suspend or resume sending. Held bytes are not caught up: the schedule continues when the last
  // hold ends.
  void HoldForLine(bool hold, Time now);
  void HoldForFlowControl(bool hold, Time now);
  [[nodiscard]] bool HeldForLine() const { return held_for_line_; }

  // When the next portion of about 8 ms is due; empty while held or without bytes.
  [[nodiscard]] std::optional<Time> NextPortion() const;

 private:
  struct Waiting {
    Segment segment;
    bool gives_way;
  };

  [[nodiscard]] bool Held() const { return held_for_line_ || held_for_flow_control_; }
  void Hold(bool& reason, bool hold, Time now);
  void DropDone(Time now);
  [[nodiscard]] Duration TimeOf(std::size_t bytes) const;

  std::uint32_t baud_;
  std::deque<Waiting> waiting_;
  std::size_t sent_ = 0;  // bytes of the first waiting segment
  Time origin_;           // when the first byte of that segment starts
  bool held_for_line_ = false;
  bool held_for_flow_control_ = false;
};

// Simulated faults; they can be combined.
struct Faults {
  // Answers nothing.
  bool silent = false;
  // Sends a wrong first byte of each reply.
  bool garbage = false;
  // Inserts a US into the data of a dump.
  bool extra_us = false;
  // Sends only that many bytes of each reply.
  std::optional<std::uint32_t> cut_after = std::nullopt;
  // Pauses halfway through each reply.
  std::optional<std::chrono::milliseconds> stall = std::nullopt;
  // Hangs up after that many bytes of all replies.
  std::optional<std::uint32_t> hang_up = std::nullopt;
  // Sends that many extra bytes after each dump.
  std::optional<std::uint32_t> strays = std::nullopt;
  // Sends an XOFF, but no XON, after that many bytes have arrived and are answered.
  std::optional<std::uint32_t> xoff = std::nullopt;
  // Stops reading after that many bytes.
  std::optional<std::uint32_t> deaf = std::nullopt;
};

// Adds the fault of one --fault: "silent", "garbage", "extra-us", "cut-after=N", "stall=MS",
// "hang-up=N", "strays=N", "xoff=N" or "deaf=N". Throws std::invalid_argument with a text for the
// user for any other text and for a fault that was already added.
void AddFault(Faults& faults, std::string_view text);

}  // namespace vrx::simulator
