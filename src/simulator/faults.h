#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vrx::simulator {

// What goes wrong on purpose. All of them combine.
struct Faults {
  bool silent = false;                             // nothing is answered
  bool garbage = false;                            // the first byte of a reply is wrong
  bool extra_us = false;                           // one US inside the data of a dump
  std::optional<std::uint32_t> cut_after;          // bytes of each reply, then nothing
  std::optional<std::chrono::milliseconds> stall;  // pause halfway through each reply
  std::optional<std::uint32_t> hang_up;            // bytes of all replies together, then no line
};

// Adds the fault of one --fault: "silent", "garbage", "extra-us", "cut-after=N", "stall=MS" or
// "hang-up=N". Throws std::invalid_argument, its text for the user, for any other text and for a
// kind that is there already.
void AddFault(Faults& faults, std::string_view text);

}  // namespace vrx::simulator
