#pragma once

#include <cstdint>
#include <string>

namespace vrx::testing {

// Floating-point numbers of 32 and 64 bits computed with whole numbers only, so that results do not
// depend on the floating-point unit. All numbers are 0 or positive.

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

// Rounds to a number of binary digits, halves to even.
Binary Rounded(Binary value, int bits);
Binary Quotient(Binary a, Binary b, int bits);
Binary Product(Binary a, Binary b, int bits);
Binary Sum(Binary a, Binary b, int bits);  // exact if the sum fits `bits`

// Text with a number of significant decimal digits, rounded halves to even.
Decimal Significant(Binary value, int digits);

// Rounds to the nearest whole number, halves to even.
std::uint64_t Whole(Binary value);
std::uint64_t Whole(Decimal value);

// Rounds to a number of decimals, halves away from zero.
std::string Fixed(Decimal value, int decimals);

// Exact value of a plain decimal text; "" is 0.
Decimal ReadDecimal(const std::string& text);
Binary ReadSingle(const std::string& text);

}  // namespace vrx::testing
