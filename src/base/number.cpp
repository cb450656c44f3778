#include "base/number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "base/error.h"
#include "base/text.h"

namespace vrx {
namespace {

std::size_t SkipDigits(std::string_view text, std::size_t at) {
  while (at < text.size() && IsDigitChar(text[at])) {
    ++at;
  }
  return at;
}

std::size_t SkipSign(std::string_view text, std::size_t at) {
  return at < text.size() && (text[at] == '+' || text[at] == '-') ? at + 1 : at;
}

// The grammar; std::from_chars alone would let "inf", "nan" and trailing text pass.
bool HasNumberForm(std::string_view text) {
  const std::size_t first = SkipSign(text, 0);
  std::size_t at = SkipDigits(text, first);
  std::size_t digits = at - first;
  if (at < text.size() && text[at] == '.') {
    const std::size_t after_point = SkipDigits(text, at + 1);
    digits += after_point - (at + 1);
    at = after_point;
  }
  if (digits == 0) {
    return false;
  }
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    const std::size_t exponent = SkipSign(text, at + 1);
    at = SkipDigits(text, exponent);
    if (at == exponent) {
      return false;
    }
  }
  return at == text.size();
}

// Tells the two ways out of a double's range apart, for a text of number form without sign.
bool IsTooSmall(std::string_view text) {
  const std::size_t mark = text.find_first_of("eE");
  const std::string_view mantissa = text.substr(0, mark);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t leading = mantissa.find_first_of("123456789");
  if (leading == std::string_view::npos) {
    return true;
  }
  const auto magnitude = static_cast<double>(point) - static_cast<double>(leading);
  if (mark == std::string_view::npos) {
    return magnitude < 0;
  }
  std::string_view exponent = text.substr(mark + 1);
  const bool negative = exponent.front() == '-';
  exponent.remove_prefix(SkipSign(exponent, 0));
  long long value = std::numeric_limits<int>::max();  // stays for an exponent beyond its own range
  std::from_chars(exponent.data(), exponent.data() + exponent.size(), value);
  return magnitude + static_cast<double>(negative ? -value : value) < 0;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
  text = text.substr(first, text.find_last_not_of(' ') + 1 - first);
  if (!HasNumberForm(text)) {
    return std::nullopt;
  }
  const bool negative = text.front() == '-';
  const std::string_view magnitude = text.substr(SkipSign(text, 0));
  double value = 0;
  const auto result = std::from_chars(magnitude.data(), magnitude.data() + magnitude.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    if (!IsTooSmall(magnitude)) {
      return std::nullopt;
    }
    value = 0;
  }
  return negative ? -value : value;
}

std::optional<std::int32_t> RoundToLong(double value) {
  if (!std::isfinite(value)) {
    return std::nullopt;
  }
  // Truncation and what it leaves are exact, so the mode of the floating-point unit has no say.
  double whole = 0;
  const double rest = std::abs(std::modf(value, &whole));
  const bool odd = std::fmod(whole, 2.0) != 0.0;
  if (rest > 0.5 || (rest == 0.5 && odd)) {
    whole += std::signbit(value) ? -1.0 : 1.0;
  }
  using Limits = std::numeric_limits<std::int32_t>;
  if (whole < Limits::min() || whole > Limits::max()) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(whole);
}

std::optional<std::int32_t> ParseLong(std::string_view text) {
  const std::optional<double> value = ParseNumber(text);
  return value ? RoundToLong(*value) : std::nullopt;
}

std::int32_t TextToLong(std::string_view text) { return ParseLong(text).value_or(0); }

std::int16_t TextToInt(std::string_view text) {
  if (text.empty()) {
    return 0;
  }
  const std::optional<std::int32_t> value = ParseLong(text);
  using Limits = std::numeric_limits<std::int16_t>;
  if (!value || *value < Limits::min() || *value > Limits::max()) {
    throw ConversionError("\"" + std::string(text) + "\" is no whole number from -32768 to 32767");
  }
  return static_cast<std::int16_t>(*value);
}

float TextToSingle(std::string_view text) {
  if (text.empty()) {
    return 0.0F;
  }
  const std::optional<double> value = ParseNumber(text);
  if (!value || std::abs(*value) > static_cast<double>(std::numeric_limits<float>::max())) {
    throw ConversionError("\"" + std::string(text) + "\" is no number");
  }
  return static_cast<float>(*value);
}

}  // namespace vrx
