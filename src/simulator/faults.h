#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vrx::simulator {

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
};

// Adds the fault of one --fault: "silent", "garbage", "extra-us", "cut-after=N", "stall=MS" or
// "hang-up=N". Throws std::invalid_argument, its text for the user, for any other text and for a
// kind that is there already.
void AddFault(Faults& faults, std::string_view text);

}  // namespace vrx::simulator
