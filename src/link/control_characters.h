#pragma once

// Control characters of the module protocol, by their ASCII names.
namespace vrx::KRMConst {

inline constexpr char FF = 0x0C;   // alternative start mark of a report file
inline constexpr char DC4 = 0x14;  // command: clear memory
inline constexpr char NAK = 0x15;  // command: send memory contents
inline constexpr char SYN = 0x16;  // command: set 1200 baud
inline constexpr char ETB = 0x17;  // command: set 2400 baud
inline constexpr char CAN = 0x18;  // command: set 9600 baud
inline constexpr char EM = 0x19;   // command: set 19200 baud
inline constexpr char FS = 0x1C;   // command: send all of memory
inline constexpr char US = 0x1F;   // closes every reply

}  // namespace vrx::KRMConst
