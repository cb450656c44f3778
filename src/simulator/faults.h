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
