#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

// What stands for something else than data on the line, by its ASCII name.

namespace vrx::simulator {

using Clock = std::chrono::steady_clock;
using Time = Clock::time_point;
using Duration = std::chrono::nanoseconds;

// Bytes that leave without a gap, after a pause.
struct Segment {
  std::string bytes;
  Duration pause_before{0};
};

// What a device sends in one go.
struct Transmission {
  std::vector<Segment> segments;
  // Whether the next transmission takes the place of what is left of this one; else it comes after.
  bool gives_way = false;
};

inline constexpr char kXon = 0x11;   // the other side takes bytes again
inline constexpr char kXoff = 0x13;  // the other side takes no more bytes
inline constexpr char kDc4 = 0x14;   // clear memory
inline constexpr char kNak = 0x15;   // dump
inline constexpr char kSyn = 0x16;   // 1200 baud
inline constexpr char kEtb = 0x17;   // 2400 baud
inline constexpr char kCan = 0x18;   // 9600 baud
inline constexpr char kEm = 0x19;    // 19200 baud
inline constexpr char kFs = 0x1C;    // dump all
inline constexpr char kUs = 0x1F;    // closes every reply

// What is played at the far end of the line.
class Device {
 public:
  Device() = default;
  virtual ~Device() = default;
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  // A byte that arrived, flow control taken out, and what it makes the device send. A command that
  // stays unanswered gives an empty transmission: it still ends one that gives way.
  virtual std::optional<Transmission> Receive(char byte) = 0;
};

}  // namespace vrx::simulator
