#pragma once

#include <chrono>
#include <string>
#include <vector>

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

}  // namespace vrx::simulator
