#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vrx::simulator {

using Clock = std::chrono::steady_clock;
using Time = Clock::time_point;
using Duration = std::chrono::nanoseconds;

// The rate of the line when nothing else is set.
inline constexpr std::uint32_t kLineBaud = 19200;

// Bytes sent without a gap, after a pause.
struct Segment {
  std::string bytes;
  Duration pause_before{0};
};

// A reply of a device, or several segments sent together.
struct Transmission {
  std::vector<Segment> segments;
  // Whether the next transmission replaces the unsent rest of this one; otherwise it is queued.
  bool gives_way = false;
};

// The control characters of the line, by their ASCII names.
inline constexpr char kXon = 0x11;   // the other side accepts bytes again
inline constexpr char kXoff = 0x13;  // the other side accepts no more bytes
inline constexpr char kDc4 = 0x14;   // clear memory
inline constexpr char kNak = 0x15;   // dump
inline constexpr char kSyn = 0x16;   // 1200 baud
inline constexpr char kEtb = 0x17;   // 2400 baud
inline constexpr char kCan = 0x18;   // 9600 baud
inline constexpr char kEm = 0x19;    // 19200 baud
inline constexpr char kFs = 0x1C;    // dump all
inline constexpr char kUs = 0x1F;    // ends every reply

// A simulated device at the far end of the line.
class Device {
 public:
  Device() = default;
  virtual ~Device() = default;
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  // Handles a received byte, without flow control characters, and returns what the device sends in
  // response. A command without an answer returns an empty transmission, which still replaces a
  // stalled one.
  virtual std::optional<Transmission> Receive(char byte) = 0;
};

}  // namespace vrx::simulator
