#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>

#include "simulator/device.h"

namespace vrx::simulator {

// Lets bytes leave at the pace of a real line: 10 bits a byte, on a schedule that is reckoned from
// the first byte of a segment, so that late wake-ups never add up. It reads no clock: the time
// comes with each call and never goes back.
class Transmitter {
 public:
  static constexpr std::uint32_t kMaxBaud = 4'000'000;

  // Bits a second; 0 does not pace.
  explicit Transmitter(std::uint32_t baud);

  // Queues behind what is waiting, or in place of it where that gives way. True when it cut
  // something off.
  bool Start(Transmission transmission, Time now);

  // Drops what gives way, without anything in its place. True when there was something.
  bool GiveWay(Time now);

  // The bytes that should be out by now and are not; valid until the next call. Pauses and ends of
  // segments divide them: ask again after Sent until it is empty.
  std::string_view Due(Time now) const;

  // That many of the due bytes are out.
  void Sent(std::size_t count, Time now);

  // The line takes no more bytes, or takes them again. What was held back is not caught up: the
  // schedule goes on from the moment when the last hold ends.
  void HoldForLine(bool hold, Time now);
  void HoldForFlowControl(bool hold, Time now);
  bool HeldForLine() const { return held_for_line_; }

  // When the next portion of about 8 ms is due; nothing while held or without bytes.
  std::optional<Time> NextPortion() const;

 private:
  struct Waiting {
    Segment segment;
    bool gives_way;
  };

  bool Held() const { return held_for_line_ || held_for_flow_control_; }
  void Hold(bool& reason, bool hold, Time now);
  void DropDone(Time now);
  Duration TimeOf(std::size_t bytes) const;

  std::uint32_t baud_;
  std::deque<Waiting> waiting_;
  std::size_t sent_ = 0;  // bytes of the first waiting segment
  Time origin_;           // when the first byte of that segment begins to leave
  bool held_for_line_ = false;
  bool held_for_flow_control_ = false;
};

// What goes wrong on purpose. All of them combine.
struct Faults {
  // Nothing is answered.
  bool silent = false;
  // The first byte of a reply is wrong.
  bool garbage = false;
  // One US inside the data of a dump.
  bool extra_us = false;
  // So many bytes of each reply, then nothing.
  std::optional<std::uint32_t> cut_after = std::nullopt;
  // A pause halfway through each reply.
  std::optional<std::chrono::milliseconds> stall = std::nullopt;
  // So many bytes of all replies together, then no line.
  std::optional<std::uint32_t> hang_up = std::nullopt;
  // So many bytes after the end of each dump.
  std::optional<std::uint32_t> strays = std::nullopt;
  // One XOFF once that many bytes have arrived and are answered, and no XON.
  std::optional<std::uint32_t> xoff = std::nullopt;
  // No byte is read any more once that many have arrived.
  std::optional<std::uint32_t> deaf = std::nullopt;
};

// Adds the fault of one --fault: "silent", "garbage", "extra-us", "cut-after=N", "stall=MS",
// "hang-up=N", "strays=N", "xoff=N" or "deaf=N". Throws std::invalid_argument, its text for the
// user, for any other text and for a kind that is there already.
void AddFault(Faults& faults, std::string_view text);

}  // namespace vrx::simulator
