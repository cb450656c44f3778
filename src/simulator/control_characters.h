#pragma once

// What stands for something else than data on the line, by its ASCII name.
namespace vrx::simulator {

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

}  // namespace vrx::simulator
