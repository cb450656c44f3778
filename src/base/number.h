#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

// Parsing. A number is: blanks, a sign, digits with at most one point, an optional exponent,
// blanks. The point is "." in every locale. Returns nothing for any other text and for a number
// too large for a double; a number too small for a double is 0.
[[nodiscard]] std::optional<double> ParseNumber(std::string_view text);

// Rounds to the nearest whole number, halves to even. Nothing outside the range of 32 bits.
[[nodiscard]] std::optional<std::int32_t> RoundToLong(double value);

// RoundToLong of ParseNumber: nothing if either returns nothing.
[[nodiscard]] std::optional<std::int32_t> ParseLong(std::string_view text);

// TextToLong returns 0 where ParseLong returns nothing. TextToInt (16 bits) and TextToSingle
// (32-bit float) return 0 for "" and throw ConversionError for other texts that do not convert.
[[nodiscard]] std::int32_t TextToLong(std::string_view text);
std::int16_t TextToInt(std::string_view text);
float TextToSingle(std::string_view text);

// Formatting. `pattern` is "0", "00", "000", "#0", or "0." with one 0 per decimal. The value is
// first reduced to 15 significant decimal digits (a single: 7), then rounded, halves away from
// zero: 1.5625 with "0.000" is 1.563, 2.675 with "0.00" is 2.68. A zero has no sign. Infinity and
// NaN throw ConversionError, also in DefaultText.
[[nodiscard]] std::string Format(double value, std::string_view pattern);
[[nodiscard]] std::string Format(float value, std::string_view pattern);
[[nodiscard]] std::string Format(std::integral auto value, std::string_view pattern) {
  return Format(static_cast<double>(value), pattern);
}

// Default text form of a number: up to 15 significant digits (a single: 7), no trailing zeros:
// 500.5, 500, 0. From 1E+15 on and below 0.00001 with an exponent: 1.5E+15, 1.5E-06.
[[nodiscard]] std::string DefaultText(double value);
[[nodiscard]] std::string DefaultText(float value);
[[nodiscard]] std::string DefaultText(std::integral auto value) {
  return DefaultText(static_cast<double>(value));
}

}  // namespace vrx
