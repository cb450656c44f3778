#pragma once

#include <cstdint>
#include <string>

namespace vrx::testing {

// Numbers of 32 and 64 bits worked out with whole numbers only, so that no floating-point unit has
// a say. None of them is negative.

// `digits` times two to the power of `exponent`.
struct Binary {
  std::uint64_t digits = 0;
  int exponent = 0;
};

// `digits` over ten to the power of `decimals`; these may be negative.
struct Decimal {
  std::uint64_t digits = 0;
  int decimals = 0;
};

inline constexpr int kSingleBits = 24;
inline constexpr int kDoubleBits = 53;
inline constexpr int kSingleDigits = 7;
inline constexpr int kDoubleDigits = 15;

Binary FromWhole(std::uint64_t value);

// To so many binary digits, a half to the even neighbour.
Binary Rounded(Binary value, int bits);
Binary Quotient(Binary a, Binary b, int bits);
Binary Product(Binary a, Binary b, int bits);
Binary Sum(Binary a, Binary b, int bits);  // exact where `bits` would let it be

// The text of a number, to so many significant decimal digits, a half to the even neighbour.
Decimal Significant(Binary value, int digits);

// To the nearest whole number, a half to the even neighbour.
std::uint64_t Whole(Binary value);
std::uint64_t Whole(Decimal value);

// With so many decimals, a half away from zero.
std::string Fixed(Decimal value, int decimals);

// A plain decimal text as it stands; "" is 0.
Decimal ReadDecimal(const std::string& text);
Binary ReadSingle(const std::string& text);

}  // namespace vrx::testing
