#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

// Reading. A text is a number when it is blanks, a sign, digits with at most one point, an optional
// exponent, blanks; the point is "." in every locale. Anything else is no number, and so is what a
// double cannot hold; what is too small for one is 0.
std::optional<double> ParseNumber(std::string_view text);

// Rounds to the nearest whole number, an exact half to the even neighbour; nothing outside 32 bits.
std::optional<std::int32_t> RoundToLong(double value);

// The whole number of a text: rounds halves to even; nothing for no number or one outside 32 bits.
std::optional<std::int32_t> ParseLong(std::string_view text);

// TextToLong gives 0 where ParseLong gives nothing. TextToInt reads 16 bits and TextToSingle a
// 32-bit float; both give 0 for "" and throw ConversionError for what does not convert.
std::int32_t TextToLong(std::string_view text);
std::int16_t TextToInt(std::string_view text);
float TextToSingle(std::string_view text);

// Writing. `pattern` is one of "0", "00", "000", "#0" or "0." with one 0 per decimal. Halves round
// away from zero on the value's decimal digits, 15 significant ones for a double and 7 for a
// single, so 1.5625 by "0.000" is 1.563 and 2.675 by "0.00" is 2.68. What rounds to zero has no
// sign. An infinite value or NaN throws ConversionError, here and in DefaultText.
std::string Format(double value, std::string_view pattern);
std::string Format(float value, std::string_view pattern);
std::string Format(std::integral auto value, std::string_view pattern) {
  return Format(static_cast<double>(value), pattern);
}

// The default text form of a number: up to 15 significant digits (7 for a single), no trailing
// zeros, no exponent for ordinary sizes: 500.5, 500, 0. From 1E+15 on and below 0.00001 the form
// is 1.5E+15, 1.5E-06.
std::string DefaultText(double value);
std::string DefaultText(float value);
std::string DefaultText(std::integral auto value) {
  return DefaultText(static_cast<double>(value));
}

}  // namespace vrx
